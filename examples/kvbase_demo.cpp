// Reports a failed assertion the way library code does, then shows what the
// error handler recorded and where its text log lives.
#include <KvBase.h>

#include <QCoreApplication>
#include <QDir>
#include <QTimer>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    ErrorHandler& handler = ErrorHandler::Instance();

    const int divisor = 0;
    KV_ASSERT(divisor != 0);
    handler.ProtocolMessage(QStringLiteral("demo started"), QStringLiteral("examples\\kvbase_demo"),
                            QStringLiteral("main"), QString(), 20, 255);

    // Queued messages are recorded once the event loop runs.
    QTimer::singleShot(0, &app, &QCoreApplication::quit);
    app.exec();

    std::printf("Messages recorded by the error handler, newest first:\n");
    bool atEnd = false;
    handler.InitGetNextMessage(atEnd, 0);
    for (QString text = handler.GetNextMessage(atEnd); !atEnd; text = handler.GetNextMessage(atEnd))
        std::printf("  %s\n", qPrintable(text));

    std::printf("Text log: %s\n",
                qPrintable(QDir::toNativeSeparators(QDir::tempPath() + QStringLiteral("/Logger.txt"))));
    return 0;
}
