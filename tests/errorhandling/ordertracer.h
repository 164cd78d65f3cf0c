#ifndef KVBASE_TESTS_ORDERTRACER_H
#define KVBASE_TESTS_ORDERTRACER_H

#include "errorhandling/errorhandler.h"

#include <QFile>
#include <QHash>

// A log tracer that checks records whose reason ends in "<key>:<n>": per key,
// n must come as 0, 1, 2, ... exactly once each. Other records are ignored.
struct OrderTracer : ILogTracer
{
    explicit OrderTracer(bool open) : open(open) {}
    void SendDataTrace(QString text) override
    {
        const QString reason = text.section(QLatin1Char('@'), 1, 1);
        const int colon = reason.lastIndexOf(QLatin1Char(':'));
        if (colon < 0)
            return;
        int& expected = next[reason.left(colon)];
        const int n = reason.mid(colon + 1).toInt();
        if (n != expected && firstFault.isEmpty())
            firstFault = QStringLiteral("%1 after %2").arg(reason).arg(expected - 1);
        expected = n + 1;
        ++count;
        last = text;
    }
    void ReportException(QString) override {}
    bool IsOpen() override { return open; }

    bool open;
    QHash<QString, int> next;
    QString firstFault;
    QString last;
    int count = 0;
};

// Peak and current resident set of this process, in kB (0 where unknown).
inline qint64 memoryKb(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly | QIODevice::Text))
        return 0;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').value(0).toLongLong();
    }
    return 0;
}

// Sanitizer runtimes keep freed memory in quarantine, so resident sizes say
// nothing about the library there.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMeasuresMemory = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kMeasuresMemory = false;
#else
constexpr bool kMeasuresMemory = true;
#endif
#else
constexpr bool kMeasuresMemory = true;
#endif

#endif
