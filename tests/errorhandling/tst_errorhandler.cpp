#include "errorhandling/quality.h"

#include "kvtest.h"
#include "recorders.h"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>

#include <thread>

class TestErrorHandler : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;

    static ErrorHandler& handler() { return ErrorHandler::Instance(); }
    static int listSize() { return static_cast<int>(handler().GetMessages()->GetList().size()); }
    static void protocol(const QString& reason, std::uint8_t level)
    {
        handler().ProtocolMessage(reason, QStringLiteral("calc"), QStringLiteral("Calc"),
                                  QStringLiteral("Run"), 42, level);
    }
    static QString logFile()
    {
        QFile file(QDir::tempPath() + QLatin1String("/Logger.txt"));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    // The reasons a walk at `level` yields, newest first.
    static QStringList walk(unsigned char level)
    {
        QStringList reasons;
        bool atEnd = false;
        handler().InitGetNextMessage(atEnd, level);
        for (QString text = handler().GetNextMessage(atEnd); !atEnd; text = handler().GetNextMessage(atEnd))
            reasons << text.section(QLatin1Char('@'), 1, 1);
        return reasons;
    }

private Q_SLOTS:
    // Logger.txt goes to a directory of this run's own.
    void initTestCase() { qputenv("TMPDIR", QFile::encodeName(m_tmp.path())); }

    void init() { handler().GetMessages()->DeleteMessageList(); }

    void fileIsTheFallbackOfAnOpenTracer()
    {
        protocol(QStringLiteral("no tracer"), 2);
        QTRY_COMPARE(listSize(), 1);
        const QString time =
            handler().GetMessages()->GetList().front()->GetTimeStamp().toString(Qt::TextDate);
        QCOMPARE(
            logFile(),
            QStringLiteral(
                "Warning (Level 2):\t%1:\tno tracer in file calc in class Calc in method Run in line 42\n\n")
                .arg(time));
        auto tracer = std::make_unique<RecordingTracer>();
        RecordingTracer* seen = tracer.get();
        ErrorHandler::SetLogTracer(std::move(tracer));
        protocol(QStringLiteral("open tracer"), 255);
        QTRY_COMPARE(listSize(), 2);
        seen->open = false;
        protocol(QStringLiteral("closed tracer"), 1);
        QTRY_COMPARE(listSize(), 3);
        // Configured once, with the mask in decimal, before the first message the tracer gets.
        QCOMPARE(seen->calls.value(0),
                 QStringLiteral("ErrorHandler::Configure() - MessageMask: 32 Configuration applied"));
        QStringList traces;
        for (const QString& trace : seen->calls.mid(1))
            traces << trace.section(QLatin1Char('@'), 0, 5);
        QCOMPARE(traces, QStringList({"@open tracer@calc@42@Calc@Run", "!@closed tracer@calc@42@Calc@Run"}));
        ErrorHandler::SetLogTracer(nullptr);
        const QString file = logFile();
        QVERIFY2(file.contains(QLatin1String("Error::\t")), qPrintable(file));
        QVERIFY2(file.contains(QLatin1String("closed tracer")), qPrintable(file));
        QVERIFY2(!file.contains(QLatin1String("open tracer")), qPrintable(file));
    }

    void blockersDoNotNest()
    {
        const KvException e;
        {
            ErrorHandler::ExceptionBlocker outer;
            handler().ProtocolException(e);
            QCOMPARE(listSize(), 0);
            {
                ErrorHandler::ExceptionBlocker inner;
            }
            handler().ProtocolException(e);
            QCOMPARE(listSize(), 1);
        }
    }

    // Newest first; a level skips the milder (numerically greater) messages.
    void walksAreNewestFirst()
    {
        QCOMPARE(walk(1), QStringList());
        protocol(QStringLiteral("a"), 255);
        protocol(QStringLiteral("b"), 1);
        protocol(QStringLiteral("c"), 3);
        protocol(QStringLiteral("d"), 1);
        QTRY_COMPARE(listSize(), 4);
        QCOMPARE(walk(0), QStringList({"d", "c", "b", "a"}));
        QCOMPARE(walk(1), QStringList({"d", "b"}));
        QCOMPARE(walk(3), QStringList({"d", "c", "b"}));
        // More messages than the 8-bit cursor reaches: the walk stops after 256.
        handler().GetMessages()->SetMaxNumber(0);
        for (int i = 0; i < 300; ++i)
            handler().GetMessages()->AddMessage(
                std::make_shared<Message>(QString::number(i), QTime(1, 0), 255));
        QCOMPARE(walk(0).size(), 256);
        QCOMPARE(walk(1), QStringList());
        handler().GetMessages()->SetMaxNumber(100);
    }

    // Errors at level 1, warnings at 254 with fixed arguments, -2 without a dialog.
    void dialogs()
    {
        KvException e(QStringLiteral("boom"), QString(), QString(), QString(), 1, 1);
        auto dialog = std::make_unique<RecordingDialog>();
        RecordingDialog* seen = dialog.get();
        ErrorHandler::SetMessageDlg(std::move(dialog));
        QCOMPARE(handler().ShowErrorDialog(e, true, 5, false, true), 23);
        QCOMPARE(handler().ShowErrorDialog(QStringLiteral("text"), false, -7, true, false), 17);
        handler().ShowWarningDialog(QStringLiteral("careful"));
        handler().PostErrorDialog(e, true, 5, false);
        handler().errorDialog(QStringLiteral("posted"), false, 3, true);
        QCOMPARE(seen->calls,
                 QStringList({"show exception boom 1 true 5 false true", "show text 1 false -7 true false",
                              "show careful 254 true -1 true false", "post exception boom 1 true 5 false",
                              "post posted 1 false 3 true"}));
        ErrorHandler::SetMessageDlg(nullptr);
        QCOMPARE(handler().ShowErrorDialog(QStringLiteral("text"), true, 5, false, true), -2);
    }

    void reportsFromManyThreadsAreAllRecorded()
    {
        constexpr int threads = 4, perThread = 250;
        handler().GetMessages()->SetMaxNumber(0);
        std::vector<std::thread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([t] {
                for (int i = 0; i < perThread; ++i) {
                    const QString id = QStringLiteral("%1-%2").arg(t).arg(i);
                    if (i % 2)
                        protocol(id, 2);
                    else
                        _Q_assert(id.toStdWString().c_str(), L"calc", 1);
                }
            });
        for (auto& worker : workers)
            worker.join();
        QTRY_COMPARE_WITH_TIMEOUT(listSize(), threads * perThread, 30000);
        QSet<QString> ids;
        for (const auto& message : handler().GetMessages()->GetList())
            ids.insert(message->GetText()
                           .section(QLatin1Char('@'), 1, 1)
                           .remove(QStringLiteral("ASSERTION FAILED ")));
        QCOMPARE(ids.size(), threads * perThread);
        handler().GetMessages()->SetMaxNumber(100);
    }

    void dialogIsDroppedWhenTheApplicationQuits()
    {
        ErrorHandler::SetMessageDlg(std::make_unique<RecordingDialog>());
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        QCOMPARE(ErrorHandler::GetMessageDlg(), nullptr);
    }
};

QTEST_GUILESS_MAIN(TestErrorHandler)
#include "tst_errorhandler.moc"
