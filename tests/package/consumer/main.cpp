// Builds against the installed package only; compiled with QT_NO_CAST_FROM_ASCII
// so the public headers are checked for implicit conversions too.
#include <KvBase.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const KvException e(QStringLiteral("consumer"), QStringLiteral("package\\consumer"),
                        QStringLiteral("Consumer"), QStringLiteral("main"), 1, 0);
    const std::string text = e.GetExceptionAsciiText(FieldList, 1);
    std::printf("%s\n", text.c_str());
    ErrorHandler::Instance().ProtocolException(e);
    return ErrorHandler::Instance().GetMessages()->GetList().empty() ? 1 : 0;
}
