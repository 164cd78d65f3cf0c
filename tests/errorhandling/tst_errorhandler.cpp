#include "ordertracer.h"

#include "errorhandling/errorhandler.h"
#include "errorhandling/quality.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <thread>

namespace {

struct TestTracer : ILogTracer
{
    explicit TestTracer(bool open) : open(open) {}
    void SendDataTrace(QString text) override
    {
        traces << text;
        ++count;
    }
    void ReportException(QString) override {}
    bool IsOpen() override { return open; }
    bool open;
    QStringList traces;
    std::atomic<int> count{0};
};

struct TestDialog : IMessageDialog
{
    QStringList calls;
    int ShowText(const QString& text, unsigned char level, bool b1, int n, bool b2, bool b3) override
    {
        calls << QStringLiteral("show %1 %2 %3 %4 %5 %6").arg(text).arg(level).arg(b1).arg(n).arg(b2).arg(b3);
        return 17;
    }
    int ShowException(const KvException& e, unsigned char level, bool b1, int n, bool b2, bool b3) override
    {
        return ShowText(e.GetErrorReason(), level, b1, n, b2, b3) + 6;
    }
    void ShowMessageList() override {}
    void PostException(KvException& e, unsigned char level, bool, int, bool) override
    {
        PostText(e.GetErrorReason(), level, 0, 0, 0);
    }
    void PostText(const QString& text, unsigned char level, bool, int, bool) override
    {
        calls << QStringLiteral("post %1 %2").arg(text).arg(level);
    }
};

ErrorHandler& handler()
{
    return ErrorHandler::Instance();
}

QString logFileText()
{
    QFile file(QDir::tempPath() + QLatin1String("/Logger.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(file.readAll());
}

int listSize()
{
    return static_cast<int>(handler().GetMessages()->GetList().size());
}

void protocol(const QString& reason, std::uint8_t level)
{
    handler().ProtocolMessage(reason, QStringLiteral("calc"), QStringLiteral("Calc"), QStringLiteral("Run"),
                              42, level);
}

QStringList readAll(unsigned char level)
{
    QStringList reasons;
    bool atEnd = false;
    handler().InitGetNextMessage(atEnd, level);
    while (!atEnd) {
        const QString text = handler().GetNextMessage(atEnd);
        if (!atEnd)
            reasons << text.section(QLatin1Char('@'), 1, 1);
        else
            reasons << QStringLiteral("<end:%1>").arg(text);
    }
    return reasons;
}

} // namespace

class TestErrorHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fileIsTheFallbackOfAnOpenTracer();
    void messageMaskBits();
    void blockersDoNotNest();
    void filteredIterationIsNewestFirst();
    void cursorRangeEndsTheWalk();
    void dialogs();
    void uncaughtHandlers();
    void concurrentReportsAreAllRecorded();
    void millionReportsWithoutALoopStayBounded();
    void reportingThreadsDoNotWaitForABusyHandlerThread();
    void reportJustBeforeExitReachesTheLogFile_data();
    void reportJustBeforeExitReachesTheLogFile();
    void dialogIsDroppedWhenTheApplicationQuits();
};

void TestErrorHandler::fileIsTheFallbackOfAnOpenTracer()
{
    QVERIFY(handler().GetLogFile());
    protocol(QStringLiteral("before any tracer"), 2);
    QTRY_COMPARE(listSize(), 1);
    const QString time = handler().GetMessages()->GetList().front()->GetTimeStamp().toString(Qt::TextDate);
    QVERIFY2(
        logFileText().startsWith(QStringLiteral("Warning (Level 2):\t%1:\tbefore any tracer in file calc in "
                                                "class Calc in method Run in line 42\n\n")
                                     .arg(time)),
        qPrintable(logFileText()));

    auto tracer = std::make_unique<TestTracer>(true);
    TestTracer* seen = tracer.get();
    ErrorHandler::SetLogTracer(std::move(tracer));
    QCOMPARE(ErrorHandler::GetLogTracer(), seen);
    protocol(QStringLiteral("with an open tracer"), 255);
    QTRY_COMPARE(listSize(), 2);
    QCOMPARE(seen->traces.size(), 2);
    QCOMPARE(seen->traces.at(0),
             QStringLiteral("ErrorHandler::Configure() - MessageMask: 32 Configuration applied"));
    QVERIFY2(seen->traces.at(1).startsWith(QLatin1String("@with an open tracer@calc@42@Calc@Run@")),
             qPrintable(seen->traces.at(1)));
    QVERIFY(!logFileText().contains(QLatin1String("with an open tracer")));

    seen->open = false;
    protocol(QStringLiteral("with a closed tracer"), 1);
    QTRY_COMPARE(listSize(), 3);
    QCOMPARE(seen->traces.size(), 3);
    QVERIFY(logFileText().contains(QLatin1String("Error::\t")));
    QVERIFY(logFileText().contains(QLatin1String("with a closed tracer")));

    handler().TurnLogFileOff();
    QVERIFY(!handler().GetLogFile());
    protocol(QStringLiteral("log file off"), 1);
    QTRY_COMPARE(listSize(), 4);
    QVERIFY(!logFileText().contains(QLatin1String("log file off")));
    handler().TurnLogFileOn();
    QVERIFY(handler().GetLogFile());
}

void TestErrorHandler::messageMaskBits()
{
    QCOMPARE(handler().GetMessageMask(), 0x20u);
    handler().SetMessageMask(0x4, true);
    QCOMPARE(handler().GetMessageMask(), 0x24u);
    handler().SetMessageMask(0x20, false);
    QCOMPARE(handler().GetMessageMask(), 0x4u);
    handler().SetMessageMask(0x20u);
    QCOMPARE(handler().GetMessageMask(), 0x20u);
}

void TestErrorHandler::blockersDoNotNest()
{
    handler().GetMessages()->DeleteMessageList();
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
    handler().ProtocolException(e);
    QCOMPARE(listSize(), 2);
}

void TestErrorHandler::filteredIterationIsNewestFirst()
{
    handler().GetMessages()->DeleteMessageList();
    QCOMPARE(readAll(1), QStringList());

    protocol(QStringLiteral("a"), 255);
    protocol(QStringLiteral("b"), 1);
    protocol(QStringLiteral("c"), 3);
    protocol(QStringLiteral("d"), 1);
    QTRY_COMPARE(listSize(), 4);

    const QString end = QStringLiteral("<end:>");
    QCOMPARE(readAll(0), QStringList({"d", "c", "b", "a", end}));
    QCOMPARE(readAll(1), QStringList({"d", "b", end}));
    QCOMPARE(readAll(3), QStringList({"d", "c", "b", end}));
    QCOMPARE(readAll(2), QStringList({"d", "b", end}));

    handler().GetMessages()->DeleteMessageList();
    protocol(QStringLiteral("mild"), 200);
    QTRY_COMPARE(listSize(), 1);
    bool atEnd = false;
    handler().InitGetNextMessage(atEnd, 1);
    QVERIFY(atEnd);
}

void TestErrorHandler::cursorRangeEndsTheWalk()
{
    // More messages than the 8-bit cursor reaches: the walk stops after 256.
    MessageList* list = handler().GetMessages();
    list->DeleteMessageList();
    list->SetMaxNumber(0);
    for (int i = 0; i < 300; ++i)
        list->AddMessage(std::make_shared<Message>(QString::number(i), QTime(1, 0), 255));
    QCOMPARE(readAll(0).size(), 257);
    QCOMPARE(readAll(1), QStringList());
    list->DeleteMessageList();
    list->SetMaxNumber(100);
}

void TestErrorHandler::dialogs()
{
    ErrorHandler::SetMessageDlg(nullptr);
    KvException e(QStringLiteral("boom"), QString(), QString(), QString(), 1, 1);
    QCOMPARE(handler().ShowErrorDialog(e, true, 5, false, true), -2);
    QCOMPARE(handler().ShowErrorDialog(QStringLiteral("text"), true, 5, false, true), -2);
    handler().PostErrorDialog(e, true, 5, false);
    handler().ShowWarningDialog(QStringLiteral("nobody sees this"));

    auto dialog = std::make_unique<TestDialog>();
    TestDialog* seen = dialog.get();
    ErrorHandler::SetMessageDlg(std::move(dialog));
    QCOMPARE(handler().ShowErrorDialog(e, true, 5, false, true), 23);
    QCOMPARE(handler().ShowErrorDialog(QStringLiteral("text"), false, -7, true, false), 17);
    handler().ShowWarningDialog(QStringLiteral("careful"));
    handler().PostErrorDialog(e, true, 5, false);
    handler().errorDialog(QStringLiteral("posted"), true, 5, false);
    QCOMPARE(seen->calls, QStringList({"show boom 1 1 5 0 1", "show text 1 0 -7 1 0",
                                       "show careful 254 1 -1 1 0", "post boom 1", "post posted 1"}));
}

void TestErrorHandler::uncaughtHandlers()
{
    QStringList order;
    handler().AddUncaughtHandler([&order] { order << QStringLiteral("first"); });
    handler().AddUncaughtHandler([&order] { order << QStringLiteral("second"); });
    handler().NotifyUncaughtHandlers();
    QCOMPARE(order, QStringList({"first", "second"}));

    handler().AddUncaughtHandler(std::function<void()>());
    QVERIFY_EXCEPTION_THROWN(handler().NotifyUncaughtHandlers(), std::bad_function_call);
}

void TestErrorHandler::concurrentReportsAreAllRecorded()
{
    constexpr int threads = 4;
    constexpr int perThread = 250;
    auto tracer = std::make_unique<TestTracer>(true);
    TestTracer* seen = tracer.get();
    ErrorHandler::SetLogTracer(std::move(tracer));
    ErrorHandler::SetMessageDlg(nullptr);

    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([t] {
            for (int i = 0; i < perThread; ++i) {
                const QString id = QStringLiteral("%1-%2").arg(t).arg(i);
                if (i % 2)
                    protocol(id, 2);
                else
                    _Q_assert(id.toStdWString().c_str(), L"calc", 1);
            }
        });
    }
    for (auto& worker : workers)
        worker.join();
    QTRY_COMPARE_WITH_TIMEOUT(seen->count.load(), threads * perThread, 30000);

    QSet<QString> ids;
    for (const QString& trace : qAsConst(seen->traces)) {
        QString reason = trace.section(QLatin1Char('@'), 1, 1);
        reason.remove(QStringLiteral("ASSERTION FAILED "));
        ids.insert(reason);
    }
    QCOMPARE(ids.size(), threads * perThread);
}

// The handler's thread runs no event loop here: reports wait in a bounded
// queue, which the thread empties itself when it is full.
void TestErrorHandler::millionReportsWithoutALoopStayBounded()
{
    auto owned = std::make_unique<OrderTracer>(true);
    OrderTracer* tracer = owned.get();
    ErrorHandler::SetLogTracer(std::move(owned));
    handler().flush();
    const qint64 before = memoryKb("VmRSS:");
    constexpr int reports = 1000000;
    for (int i = 0; i < reports; ++i)
        handler().ProtocolMessage(QStringLiteral("million:%1").arg(i), QString(), QString(), QString(), 1,
                                  255);
    const qint64 growth = memoryKb("VmHWM:") - before;
    qInfo("%d reports without a loop: peak resident growth %lld kB", reports, growth);
    QVERIFY2(tracer->next.value(QStringLiteral("million")) > reports - ErrorHandler::MaxPendingReports,
             "a full queue is recorded");
    handler().flush();
    QCOMPARE(tracer->firstFault, QString());
    QCOMPARE(tracer->next.value(QStringLiteral("million")), reports);
    QVERIFY2(
        handler().GetMessages()->GetList().front()->GetText().startsWith(QLatin1String("@million:999999@")),
        "newest first");
    QVERIFY2(!kMeasuresMemory || growth < 8 * 1024,
             qPrintable(QStringLiteral("peak grew by %1 kB").arg(growth)));
    ErrorHandler::SetLogTracer(nullptr);
}

// While the handler's thread waits for them, reporting threads must neither
// wait for it forever nor lose a report.
void TestErrorHandler::reportingThreadsDoNotWaitForABusyHandlerThread()
{
    auto owned = std::make_unique<OrderTracer>(true);
    OrderTracer* tracer = owned.get();
    ErrorHandler::SetLogTracer(std::move(owned));
    constexpr int perThread = 3 * ErrorHandler::MaxPendingReports;
    std::vector<std::thread> workers;
    for (int t = 0; t < 2; ++t) {
        workers.emplace_back([t] {
            for (int i = 0; i < perThread; ++i)
                protocol(QStringLiteral("busy%1:%2").arg(t).arg(i), 2);
        });
    }
    for (auto& worker : workers)
        worker.join();
    handler().flush();
    QCOMPARE(tracer->firstFault, QString());
    QCOMPARE(tracer->count, 2 * perThread);
    ErrorHandler::SetLogTracer(nullptr);
}

void TestErrorHandler::reportJustBeforeExitReachesTheLogFile_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("without an application object") << "no-application";
    QTest::newRow("from an application that never runs its loop") << "application";
    QTest::newRow("just before the loop quits") << "quit";
    QTest::newRow("from a worker thread") << "worker";
    QTest::newRow("followed by std::exit") << "exit";
}

void TestErrorHandler::reportJustBeforeExitReachesTheLogFile()
{
    QFETCH(QString, way);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TMPDIR"), dir.path());
    QProcess helper;
    helper.setProcessEnvironment(environment);
    const QString text = QStringLiteral("last words, ") + way;
    helper.start(QStringLiteral(KVBASE_REPORT_HELPER), {way, text});
    QVERIFY(helper.waitForFinished(120000));
    QCOMPARE(helper.exitCode(), 0);
    QFile log(dir.filePath(QStringLiteral("Logger.txt")));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QByteArray written = log.readAll();
    QVERIFY2(written.contains(text.toUtf8() + " in file exit in class Helper"), written.constData());
}

void TestErrorHandler::dialogIsDroppedWhenTheApplicationQuits()
{
    ErrorHandler::SetMessageDlg(std::make_unique<TestDialog>());
    QVERIFY(ErrorHandler::GetMessageDlg());
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    QVERIFY(!ErrorHandler::GetMessageDlg());
    QCOMPARE(handler().ShowErrorDialog(QStringLiteral("late"), false, 0, false, false), -2);
}

QTEST_GUILESS_MAIN(TestErrorHandler)
#include "tst_errorhandler.moc"
