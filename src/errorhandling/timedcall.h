#ifndef KVBASE_ERRORHANDLING_TIMEDCALL_H
#define KVBASE_ERRORHANDLING_TIMEDCALL_H

#include "kvbase_export.h"

#include <QString>

#include <cstdint>

/// Measures the time since construction with the high-resolution
/// (monotonic) counter and reports calls slower than a threshold.
/// Times are milliseconds as doubles. One thread at a time.
class KVBASE_EXPORT TimedCall
{
public:
    TimedCall();
    virtual ~TimedCall();

    /// Milliseconds since construction.
    double GetTime() const;
    /// Above thresholdMs, writes "<name> Time <ms>ms" to the debugger output
    /// (standard error off Windows), whatever the error handler's mask.
    void Evaluate(const wchar_t* name, double thresholdMs) const;
    /// Above thresholdMs, traces "<name> <ms> ms" through the error handler
    /// while its trace bit 0x20 is set.
    void Evaluate(QString name, double thresholdMs) const;

private:
    std::int64_t m_nStartCount;
};

/// Reports its lifetime when destroyed. The threshold is the time measured a
/// moment before, so every destruction reports while tracing is on.
class KVBASE_EXPORT AutoTimedCall : public TimedCall
{
public:
    explicit AutoTimedCall(QString name);
    ~AutoTimedCall() override;

private:
    QString m_strName;
};

/// Times the enclosing block under the given name.
#define KV_AUTO_TIMED_CALL(name) AutoTimedCall KV_TIMEDCALL_CONCAT(kvTimedCall_, __LINE__)(name)
#define KV_TIMEDCALL_CONCAT_(a, b) a##b
#define KV_TIMEDCALL_CONCAT(a, b) KV_TIMEDCALL_CONCAT_(a, b)

#endif
