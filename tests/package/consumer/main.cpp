// Builds against the installed package only (CMake package, pkg-config file or
// unpacked Debian packages); compiled with QT_NO_CAST_FROM_ASCII so the public
// headers are checked for implicit conversions too.
#include <KvBase.h>

#include <QCoreApplication>

#include <cstdio>

static_assert(KVBASE_VERSION >= KVBASE_VERSION_CHECK(1, 0, 0), "version macros");

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Headers and library of one install: the versions agree.
    if (KvBase::versionString() != QLatin1String(KVBASE_VERSION_STRING)) {
        std::printf("headers %s, library %s\n", KVBASE_VERSION_STRING, qPrintable(KvBase::versionString()));
        return 1;
    }
    const KvException e(QStringLiteral("consumer"), QStringLiteral("package\\consumer"),
                        QStringLiteral("Consumer"), QStringLiteral("main"), 1, 0);
    const std::string text = e.GetExceptionAsciiText(FieldList, 1);
    std::printf("KvBase %s on Qt %s: %s\n", KVBASE_VERSION_STRING, qVersion(), text.c_str());
    ErrorHandler::Instance().ProtocolException(e);
    return ErrorHandler::Instance().GetMessages()->GetList().empty() ? 1 : 0;
}
