// Messages per second through the error handler from 1, 4 and 8 threads into its
// message list and "Logger.txt" (no log tracer): each thread reports kPerThread messages
// with ErrorHandler::ProtocolMessage while the handler's thread (this one) runs its event
// loop as an application's would, then flush() records what is still queued; the time
// runs until every message is recorded, which the end checks in "Logger.txt".
// Named BM_<operation>/KvBase for bench_table.py; there is no peer, the target is a rate.
#include "errorhandling/errorhandler.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int kPerThread = 20000;

QString logPath()
{
    return QDir::tempPath() + QLatin1String("/Logger.txt");
}

// The records in "Logger.txt" from byte offset on: each message's readable line
// (followed by an empty one), read in pieces so that a long run needs little memory.
qint64 logRecords(qint64 offset)
{
    static const QByteArray kRecord("Warning (Level 2):");
    QFile file(logPath());
    if (!file.open(QIODevice::ReadOnly) || !file.seek(offset))
        return -1;
    qint64 records = 0;
    QByteArray carry;
    while (!file.atEnd()) {
        const QByteArray piece = carry + file.read(1 << 20);
        records += piece.count(kRecord);
        // A record cut at the end of the piece is counted with the next one.
        carry = piece.right(kRecord.size() - 1);
    }
    return records;
}

void messagesFromThreads(benchmark::State& state)
{
    const int threads = int(state.range(0));
    ErrorHandler& handler = ErrorHandler::Instance();
    handler.flush();
    const qint64 offset = QFile(logPath()).size();
    for (auto _ : state) {
        std::atomic<int> finished{0};
        std::vector<std::thread> workers;
        for (int t = 0; t < threads; ++t)
            workers.emplace_back([&handler, &finished, t] {
                const QString reason = QStringLiteral("bench message from thread %1").arg(t);
                for (int i = 0; i < kPerThread; ++i)
                    handler.ProtocolMessage(reason, QStringLiteral("bench\\errorhandler"),
                                            QStringLiteral("Bench"), QStringLiteral("report"), 42, 2);
                ++finished;
                QMetaObject::invokeMethod(
                    QCoreApplication::instance(), [] {}, Qt::QueuedConnection);
            });
        while (finished < threads)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        for (std::thread& w : workers)
            w.join();
        handler.flush();
    }
    const qint64 written = logRecords(offset);
    const qint64 sent = qint64(state.iterations()) * threads * kPerThread;
    if (written != sent)
        state.SkipWithError(("Logger.txt has " + std::to_string(written) + " new records for " +
                             std::to_string(sent) + " messages")
                                .c_str());
    state.SetItemsProcessed(sent);
    state.counters["show_rate"] = 1;
    state.SetLabel("ErrorHandler, " + std::to_string(threads) + (threads == 1 ? " thread" : " threads") +
                   " into the list and Logger.txt, messages");
}

} // namespace

int main(int argc, char** argv)
{
    // A "Logger.txt" of its own, removed at the end.
    QTemporaryDir directory;
    qputenv("TMPDIR", directory.path().toLocal8Bit());
    QCoreApplication app(argc, argv);
    benchmark::RegisterBenchmark("BM_ErrorHandler_messages/KvBase", messagesFromThreads)
        ->Arg(1)
        ->Arg(4)
        ->Arg(8)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
