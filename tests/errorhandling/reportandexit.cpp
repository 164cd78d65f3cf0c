// Makes one report and ends at once, in the way its first argument names; the
// second is the report's text. A test then looks for it in "Logger.txt".
#include "errorhandling/errorhandler.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstdlib>
#include <thread>

int main(int argc, char** argv)
{
    const QByteArray way = argc > 1 ? argv[1] : "";
    const QString text = QString::fromLatin1(argc > 2 ? argv[2] : "");
    const auto report = [&text] {
        ErrorHandler::Instance().ProtocolMessage(text, QStringLiteral("exit"), QStringLiteral("Helper"),
                                                 QStringLiteral("main"), 1, 2);
    };
    if (way == "no-application") {
        report();
        return 0;
    }
    QCoreApplication app(argc, argv);
    if (way == "application") {
        report();
    } else if (way == "quit") {
        QTimer::singleShot(0, &app, [&] {
            report();
            QCoreApplication::quit();
        });
        return QCoreApplication::exec();
    } else if (way == "worker") {
        ErrorHandler::Instance();
        std::thread(report).join();
    } else if (way == "exit") {
        report();
        std::exit(0);
    } else {
        return 2;
    }
    return 0;
}
