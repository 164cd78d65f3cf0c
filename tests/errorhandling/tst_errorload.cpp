#include "ordertracer.h"

#include "errorhandling/errorhandler.h"
#include "errorhandling/quality.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <thread>
#include <vector>

// Eight threads report while two others fail contract checks and the handler's
// thread runs its loop. Every report must be recorded once, in order, in the
// message list (as far as its bound reaches), through the log tracer and in
// "Logger.txt"; nothing may deadlock and memory must stay bounded.
class TestErrorLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyReportRecordedOnce();
    void cleanupTestCase();
};

namespace {

constexpr int kReporters = 8;
constexpr int kCheckers = 2;
constexpr int kListBound = 1000;

QString logPath()
{
    return QDir(QDir::tempPath()).filePath(QStringLiteral("Logger.txt"));
}

// Reports per reporting thread; a ThreadSanitizer run may ask for fewer.
int reportsPerThread()
{
    const int wanted = qEnvironmentVariableIntValue("KVBASE_LOAD_REPORTS");
    return wanted > 0 ? wanted : 100000;
}

} // namespace

void TestErrorLoad::initTestCase()
{
    // A new log file overwrites an old one only as far as it writes.
    QFile::remove(logPath());
    ErrorHandler::Instance().GetMessages()->SetMaxNumber(kListBound);
}

void TestErrorLoad::everyReportRecordedOnce()
{
    ErrorHandler& handler = ErrorHandler::Instance();
    auto owned = std::make_unique<OrderTracer>(false);
    OrderTracer* tracer = owned.get();
    ErrorHandler::SetLogTracer(std::move(owned));
    const int perThread = reportsPerThread();
    const qint64 rssBefore = memoryKb("VmRSS:");
    QElapsedTimer clock;
    clock.start();

    std::atomic<int> reportersLeft{kReporters};
    std::vector<std::thread> threads;
    for (int t = 0; t < kReporters; ++t) {
        threads.emplace_back([t, perThread, &handler, &reportersLeft] {
            for (int i = 0; i < perThread; ++i)
                handler.ProtocolMessage(QStringLiteral("r%1:%2").arg(t).arg(i), QStringLiteral("load"),
                                        QStringLiteral("Load"), QStringLiteral("report"), 1, 2);
            --reportersLeft;
        });
    }
    std::vector<int> checks(kCheckers, 0);
    for (int c = 0; c < kCheckers; ++c) {
        threads.emplace_back([c, perThread, &checks, &reportersLeft] {
            for (int& n = checks[c]; reportersLeft > 0 && n < perThread / 4; ++n)
                _Q_assert(QStringLiteral("c%1:%2").arg(c).arg(n).toStdWString().c_str(), L"load", 2);
        });
    }
    QEventLoop loop;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &loop, [&] {
        if (reportersLeft == 0)
            loop.quit();
    });
    poll.start(10);
    loop.exec();
    for (auto& thread : threads)
        thread.join();
    handler.flush();
    const qint64 peakGrowth = memoryKb("VmHWM:") - rssBefore;
    qInfo("%d reports and %d contract failures in %lld ms, peak resident growth %lld kB",
          kReporters * perThread, checks[0] + checks[1], clock.elapsed(), peakGrowth);

    // The tracer saw every record once, in order per thread.
    QCOMPARE(tracer->firstFault, QString());
    for (int t = 0; t < kReporters; ++t)
        QCOMPARE(tracer->next.value(QStringLiteral("r%1").arg(t)), perThread);
    for (int c = 0; c < kCheckers; ++c)
        QCOMPARE(tracer->next.value(QStringLiteral("ASSERTION FAILED c%1").arg(c)), checks[c]);

    // The list holds the newest records, newest first.
    const auto& list = handler.GetMessages()->GetList();
    QCOMPARE(int(list.size()), kListBound);
    QVERIFY(list.back());
    QVERIFY2(tracer->last.startsWith(list.front()->GetText()), qPrintable(list.front()->GetText()));
    QHash<QString, int> newer;
    for (const auto& message : list) {
        const QString reason = message->GetText().section(QLatin1Char('@'), 1, 1);
        const int colon = reason.lastIndexOf(QLatin1Char(':'));
        const int n = reason.mid(colon + 1).toInt();
        const auto seen = newer.constFind(reason.left(colon));
        QVERIFY2(seen == newer.cend() || *seen == n + 1, qPrintable(reason));
        newer[reason.left(colon)] = n;
    }

    // The log file has every record once.
    QFile log(logPath());
    QVERIFY(log.open(QIODevice::ReadOnly));
    std::vector<quint8> logged(size_t(kReporters) * size_t(perThread), 0);
    int checkLines = 0;
    for (QByteArray line = log.readLine(); !line.isEmpty(); line = log.readLine()) {
        const int begin = line.indexOf(":\tr");
        const int end = line.indexOf(" in file load");
        if (begin < 0) {
            checkLines += line.contains("ASSERTION FAILED c");
            continue;
        }
        const QList<QByteArray> id = line.mid(begin + 3, end - begin - 3).split(':');
        ++logged.at(size_t(id.value(0).toInt()) * size_t(perThread) + size_t(id.value(1).toInt()));
    }
    const auto once = std::count(logged.begin(), logged.end(), quint8(1));
    QCOMPARE(qint64(once), qint64(logged.size()));
    QCOMPARE(checkLines, checks[0] + checks[1]);

    QVERIFY2(!kMeasuresMemory || peakGrowth < 64 * 1024, qPrintable(QString::number(peakGrowth)));
}

void TestErrorLoad::cleanupTestCase()
{
    ErrorHandler::Instance().TurnLogFileOff();
    QFile::remove(logPath());
}

QTEST_GUILESS_MAIN(TestErrorLoad)
#include "tst_errorload.moc"
