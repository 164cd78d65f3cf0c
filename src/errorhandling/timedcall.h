#ifndef KVBASE_ERRORHANDLING_TIMEDCALL_H
#define KVBASE_ERRORHANDLING_TIMEDCALL_H

/// \file errorhandling/timedcall.h
/// \brief Measuring calls and reporting the slow ones.

#include "kvbase_export.h"

#include <QString>

#include <cstdint>

/// Measures the time since construction with the high-resolution
/// (monotonic) counter and reports calls slower than a threshold.
/// Times are milliseconds as doubles. One thread at a time.
///
/// \code
/// TimedCall timer;
/// scanBand();
/// timer.Evaluate(QStringLiteral("scanBand"), 50.0);   // traces "scanBand 73.2 ms" when slower
/// \endcode
class KVBASE_EXPORT TimedCall
{
public:
    /// Starts the measurement.
    TimedCall();
    virtual ~TimedCall();

    /// \return the milliseconds since construction, 0 or more
    double GetTime() const;
    /// Above thresholdMs, writes "<name> Time <ms>ms" to the debugger output
    /// (standard error off Windows), whatever the error handler's mask.
    /// \param name        what was timed, null-terminated; null writes an empty name
    /// \param thresholdMs milliseconds to stay silent for
    void Evaluate(const wchar_t* name, double thresholdMs) const;
    /// Above thresholdMs, traces "<name> <ms> ms" through the error handler
    /// while its trace bit 0x20 is set.
    /// \param name        what was timed
    /// \param thresholdMs milliseconds to stay silent for
    void Evaluate(QString name, double thresholdMs) const;

private:
    std::int64_t m_nStartCount;
};

/// Reports its lifetime when destroyed. The threshold is the time measured a
/// moment before, so every destruction reports while tracing is on.
class KVBASE_EXPORT AutoTimedCall : public TimedCall
{
public:
    /// Starts the measurement.
    /// \param name what is timed, as the trace names it
    explicit AutoTimedCall(QString name);
    /// Traces "<name> <ms> ms" while the trace bit 0x20 is set.
    ~AutoTimedCall() override;

private:
    QString m_strName;
};

/// Times the enclosing block under the given name.
#define KV_AUTO_TIMED_CALL(name) AutoTimedCall KV_TIMEDCALL_CONCAT(kvTimedCall_, __LINE__)(name)
/// \cond internal
#define KV_TIMEDCALL_CONCAT_(a, b) a##b
#define KV_TIMEDCALL_CONCAT(a, b) KV_TIMEDCALL_CONCAT_(a, b)
/// \endcond

#endif
