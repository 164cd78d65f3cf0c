#include "errorhandling/errorhandler.h"
#include "errorhandling/quality.h"
#include "errorhandling/timedcall.h"

#include "kvtest.h"
#include "ordertracer.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <thread>

using KvTest::field;

namespace {

// Stand-ins for the application's message dialog and live log.
struct Dialog : IMessageDialog
{
    QStringList calls;
    int ShowText(const QString& t, unsigned char l, bool a, int n, bool b, bool c) override
    {
        calls << QString("show %1 %2 %3 %4 %5 %6").arg(t).arg(l).arg(a).arg(n).arg(b).arg(c);
        return 17;
    }
    int ShowException(const KvException& e, unsigned char l, bool, int, bool, bool) override
    {
        calls << QString("show exception %1 %2").arg(e.GetErrorReason()).arg(l);
        return 23;
    }
    void ShowMessageList() override {}
    void PostException(KvException& e, unsigned char l, bool, int n, bool) override
    {
        calls << QString("post exception %1 %2 %3").arg(e.GetErrorReason()).arg(l).arg(n);
    }
    void PostText(const QString& t, unsigned char l, bool, int, bool) override
    {
        calls << QString("post %1 %2").arg(t).arg(l);
    }
};

struct Tracer : ILogTracer
{
    QStringList traces;
    bool open = true;
    void SendDataTrace(QString text) override { traces << text; }
    void ReportException(QString) override {}
    bool IsOpen() override { return open; }
};

} // namespace

// Everything that reports through the error handler: messages, contract
// checks, developer traces and timed calls.
class TestErrorHandler : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;

    static ErrorHandler& handler() { return ErrorHandler::Instance(); }
    static int listSize() { return static_cast<int>(handler().GetMessages()->GetList().size()); }
    static void protocol(const QString& reason, std::uint8_t level)
    {
        handler().ProtocolMessage(reason, QString("calc"), QString("Calc"), QString("Run"), 42, level);
    }
    // The messages `fn` records, oldest first, as code, reason, file and line of their field list.
    template <typename Fn>
    static QStringList recorded(Fn fn, int expected)
    {
        handler().GetMessages()->DeleteMessageList();
        fn();
        (void)QTest::qWaitFor([&] { return listSize() >= expected; }, 5000);
        QCoreApplication::processEvents();
        QStringList result;
        for (const auto& message : handler().GetMessages()->GetList())
            result.prepend(message->GetText().section('@', 0, 3));
        return result;
    }
    // The reasons a walk at `level` yields, newest first.
    static QStringList walk(unsigned char level)
    {
        QStringList reasons;
        bool atEnd = false;
        handler().InitGetNextMessage(atEnd, level);
        for (QString text = handler().GetNextMessage(atEnd); !atEnd; text = handler().GetNextMessage(atEnd))
            reasons << text.section('@', 1, 1);
        return reasons;
    }

private Q_SLOTS:
    // Logger.txt goes to a directory of this run's own.
    void initTestCase()
    {
        KvTest::pinLocaleAndZone();
        qputenv("TMPDIR", QFile::encodeName(m_tmp.path()));
    }

    void init()
    {
        QCoreApplication::processEvents(); // what earlier tests left queued
        handler().GetMessages()->DeleteMessageList();
        handler().GetMessages()->SetMaxNumber(0);
    }

    // The tracer gets the field list, after a configuration line once; the
    // readable line goes to Logger.txt while no open tracer takes it.
    void fileIsTheFallbackOfAnOpenTracer()
    {
        protocol("no tracer", 2);
        QTRY_COMPARE(listSize(), 1);
        auto tracer = std::make_unique<Tracer>();
        Tracer* seen = tracer.get();
        ErrorHandler::SetLogTracer(std::move(tracer));
        protocol("open tracer", 255);
        QTRY_COMPARE(listSize(), 2);
        seen->open = false;
        protocol("closed tracer", 1);
        QTRY_COMPARE(listSize(), 3);
        const QRegularExpression time(QString("\\d\\d:\\d\\d:\\d\\d"));
        QCOMPARE(seen->traces.replaceInStrings(time, "t"),
                 QStringList({"ErrorHandler::Configure() - MessageMask: 32 Configuration applied",
                              "@open tracer@calc@42@Calc@Run@t", "!@closed tracer@calc@42@Calc@Run@t"}));
        ErrorHandler::SetLogTracer(nullptr);
        QFile logFile(QDir::tempPath() + "/Logger.txt");
        QVERIFY(logFile.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(logFile.readAll()).replace(time, "t").split('\n', Qt::SkipEmptyParts),
                 QStringList(
                     {"Warning (Level 2):\tt:\tno tracer in file calc in class Calc in method Run in line 42",
                      "Error::\tt:\tclosed tracer in file calc in class Calc in method Run in line 42"}));
    }

    void blockersDoNotNest()
    {
        const KvException e;
        ErrorHandler::ExceptionBlocker outer;
        handler().ProtocolException(e);
        QCOMPARE(listSize(), 0);
        {
            ErrorHandler::ExceptionBlocker inner;
        }
        handler().ProtocolException(e);
        QCOMPARE(listSize(), 1);
    }

    // Newest first; a level skips the milder (numerically greater) messages.
    void walksAreNewestFirst()
    {
        QCOMPARE(walk(1), QStringList());
        for (const char* message : {"a", "b", "c", "d"})
            protocol(message, message[0] == 'a' ? 255 : message[0] == 'c' ? 3 : 1);
        QTRY_COMPARE(listSize(), 4);
        QCOMPARE(walk(0), QStringList({"d", "c", "b", "a"}));
        QCOMPARE(walk(1), QStringList({"d", "b"}));
        QCOMPARE(walk(3), QStringList({"d", "c", "b"}));
        // More messages than the 8-bit cursor reaches: the walk stops after 256.
        for (int i = 0; i < 300; ++i)
            handler().GetMessages()->AddMessage(
                std::make_shared<Message>(QString::number(i), QTime(1, 0), 255));
        QCOMPARE(walk(0).size(), 256);
        QCOMPARE(walk(1), QStringList());
    }

    // Errors at level 1, warnings at 254 with fixed arguments, -2 without a dialog.
    void dialogs()
    {
        KvException e("boom", "", "", "", 1, 1);
        auto dialog = std::make_unique<Dialog>();
        Dialog* seen = dialog.get();
        ErrorHandler::SetMessageDlg(std::move(dialog));
        QCOMPARE(handler().ShowErrorDialog(e, true, 5, false, true), 23);
        QCOMPARE(handler().ShowErrorDialog(QString("text"), false, -7, true, false), 17);
        handler().ShowWarningDialog("careful");
        handler().PostErrorDialog(e, true, 5, false);
        handler().errorDialog("posted", false, 3, true);
        QCOMPARE(seen->calls,
                 QStringList({"show exception boom 1", "show text 1 0 -7 1 0", "show careful 254 1 -1 1 0",
                              "post exception boom 1 5", "post posted 1"}));
        ErrorHandler::SetMessageDlg(nullptr);
        QCOMPARE(handler().ShowErrorDialog(e, true, 5, false, true), -2);
    }

    // The handler's thread runs no event loop here: reports wait in a bounded
    // queue, which the thread empties itself when it is full.
    void millionReportsWithoutALoopStayBounded()
    {
        auto owned = std::make_unique<OrderTracer>(true);
        OrderTracer* tracer = owned.get();
        ErrorHandler::SetLogTracer(std::move(owned));
        handler().GetMessages()->SetMaxNumber(100);
        handler().flush();
        const qint64 before = memoryKb("VmRSS:");
        constexpr int reports = 1000000;
        for (int i = 0; i < reports; ++i)
            handler().ProtocolMessage(QString("million:%1").arg(i), QString(), QString(), QString(), 1, 255);
        const qint64 growth = memoryKb("VmHWM:") - before;
        qInfo("%d reports without a loop: peak resident growth %lld kB", reports, growth);
        QVERIFY2(tracer->next.value("million") > reports - ErrorHandler::MaxPendingReports,
                 "a full queue is recorded");
        handler().flush();
        QCOMPARE(tracer->firstFault, QString());
        QCOMPARE(tracer->next.value("million"), reports);
        QCOMPARE(handler().GetMessages()->GetList().front()->GetText().section('@', 1, 1),
                 QString("million:999999"));
        QVERIFY2(!kMeasuresMemory || growth < 8 * 1024,
                 qPrintable(QString("peak grew by %1 kB").arg(growth)));
        ErrorHandler::SetLogTracer(nullptr);
    }

    // While the handler's thread waits for them, reporting threads must neither
    // wait for it forever nor lose a report.
    void reportingThreadsDoNotWaitForABusyHandlerThread()
    {
        auto owned = std::make_unique<OrderTracer>(true);
        OrderTracer* tracer = owned.get();
        ErrorHandler::SetLogTracer(std::move(owned));
        handler().GetMessages()->SetMaxNumber(100);
        constexpr int perThread = 3 * ErrorHandler::MaxPendingReports;
        std::vector<std::thread> workers;
        for (int t = 0; t < 2; ++t) {
            workers.emplace_back([t] {
                for (int i = 0; i < perThread; ++i)
                    protocol(QString("busy%1:%2").arg(t).arg(i), 2);
            });
        }
        for (auto& worker : workers)
            worker.join();
        handler().flush();
        QCOMPARE(tracer->firstFault, QString());
        QCOMPARE(tracer->count, 2 * perThread);
        ErrorHandler::SetLogTracer(nullptr);
    }

    void reportJustBeforeExitReachesTheLogFile_data()
    {
        QTest::addColumn<QString>("way");
        QTest::newRow("without an application object") << "no-application";
        QTest::newRow("from an application that never runs its loop") << "application";
        QTest::newRow("just before the loop quits") << "quit";
        QTest::newRow("from a worker thread") << "worker";
        QTest::newRow("followed by std::exit") << "exit";
    }

    // A helper program reports and ends at once, in each of these ways.
    void reportJustBeforeExitReachesTheLogFile()
    {
        QFETCH(QString, way);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("TMPDIR", dir.path());
        QProcess helper;
        helper.setProcessEnvironment(environment);
        const QString text = "last words, " + way;
        helper.start(KVBASE_REPORT_HELPER, {way, text});
        QVERIFY(helper.waitForFinished(120000));
        QCOMPARE(helper.exitCode(), 0);
        QFile log(dir.filePath("Logger.txt"));
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QByteArray written = log.readAll();
        QVERIFY2(written.contains(text.toUtf8() + " in file exit in class Helper"), written.constData());
    }

    void dialogIsDroppedWhenTheApplicationQuits()
    {
        ErrorHandler::SetMessageDlg(std::make_unique<Dialog>());
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        QCOMPARE(ErrorHandler::GetMessageDlg(), nullptr);
    }

    void contractChecksReportAndReturn_data()
    {
        KvTest::addRows("errorhandling/contractchecks.txt", "check message posted");
    }

    // Recorded at once, in this thread, as an error with the library's id, and the dialog was asked for.
    void contractChecksReportAndReturn()
    {
        auto dialog = std::make_unique<Dialog>();
        Dialog* seen = dialog.get();
        ErrorHandler::SetMessageDlg(std::move(dialog));
        const int x = 0;
        if (field("check") == "require")
            _Q_require(L"calc", 7);
        else if (field("check") == "ensure")
            _Q_ensure(L"calc", 7);
        else if (field("check") == "assert")
            _Q_assert(L"x>0", L"calc", 7);
        else
            KV_ASSERT(x > 0);
        KV_REQUIRE(x == 0); // holds: no report
        QCOMPARE(seen->calls, QStringList("post exception " + field("posted") + " 1 -1"));
        ErrorHandler::SetMessageDlg(nullptr);
        QCOMPARE(walk(0).size(), 1);
        QCOMPARE(handler().GetMessages()->GetList().front()->GetText().left(field("message").size()),
                 field("message"));
    }

    void traces_data() { KvTest::addRows("errorhandling/traces.txt", "length file line pieces"); }

    void traces()
    {
        QString text;
        for (int i = 0; i < field("length").toInt(); ++i)
            text += QChar('0' + i % 10);
        QStringList expected;
        for (const QString& piece : field("pieces").split(", ")) {
            const QString place = piece.section(':', 0, 0);
            const QString part = text.mid(place.section('+', 0, 0).toInt(), place.section('+', 1).toInt());
            expected << "3@" + part + piece.section(':', 1) + '@' + field("file") + '@' + field("line");
        }
        QCOMPARE(recorded([&] { _Q_Trace(text, field("file"), field("line").toUShort()); }, expected.size()),
                 expected);
    }

    void blockTracesIndentNestedBlocks()
    {
        const QStringList messages = recorded(
            [] {
                BLOCK_TRACE outer("outer");
                BLOCK_TRACE middle("middle");
                KV_BLOCK_TRACE("inner");
            },
            6);
        QCOMPARE(messages.join('|').remove("@errorhandling\\quality"),
                 QString("3@*outer {@129|3@* middle {@129|3@*  inner {@129|3@*  }@136|3@* }@136|3@*}@136"));
        // The depth counts also while the trace bit is off.
        handler().SetMessageMask(ErrorHandler::TraceMask, false);
        const QStringList silent = recorded(
            [] {
                BLOCK_TRACE block("silent");
                QCOMPARE(BLOCK_TRACE::GetIndent(), QString("* "));
            },
            0);
        handler().SetMessageMask(ErrorHandler::TraceMask, true);
        QCOMPARE(silent, QStringList());
    }

    void timedCallsTraceWhileTheMaskSaysSo()
    {
        TimedCall call;
        QThread::msleep(2);
        QVERIFY2(call.GetTime() >= 2.0, qPrintable(QString::number(call.GetTime())));
        const QStringList slow = recorded([&] { call.Evaluate(QString("load"), 1.0); }, 1);
        QCOMPARE(slow.join('|').replace(QRegularExpression(QString(" [0-9.e+]+ ms@")), " t ms@"),
                 QString("3@load t ms@errorhandling\\quality@306"));
        QCOMPARE(recorded([&] { call.Evaluate(QString("fast"), 1e9); }, 0), QStringList());
        handler().SetMessageMask(ErrorHandler::TraceMask, false);
        const QStringList masked = recorded([] { AutoTimedCall automatic("masked"); }, 0);
        handler().SetMessageMask(ErrorHandler::TraceMask, true);
        QCOMPARE(masked, QStringList());
        // An automatic call reports every time while tracing is on.
        QCOMPARE(recorded([] { KV_AUTO_TIMED_CALL("auto"); }, 1).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestErrorHandler)
#include "tst_errorhandler.moc"
