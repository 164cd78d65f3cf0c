#include "errorhandling/timedcall.h"

#include "errorhandling/errorhandler.h"
#include "errorhandling/quality.h"
#include "errorhandling/quality_p.h"

#include <chrono>
#include <cstdio>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

std::int64_t performanceCount()
{
#ifdef Q_OS_WIN
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return count.QuadPart;
#else
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
#endif
}

double performanceFrequency()
{
#ifdef Q_OS_WIN
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(frequency.QuadPart);
#else
    return 1e9;
#endif
}

// The line timing traces report since their first version (see kQualitySource).
constexpr unsigned short kEvaluateTraceLine = 306;

void debuggerOutput(const QString& text)
{
#ifdef Q_OS_WIN
    OutputDebugStringW(reinterpret_cast<const wchar_t*>(text.utf16()));
#else
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
#endif
}

} // namespace

TimedCall::TimedCall() : m_nStartCount(performanceCount()) {}

TimedCall::~TimedCall() = default;

double TimedCall::GetTime() const
{
    return static_cast<double>(performanceCount() - m_nStartCount) * 1000.0 / performanceFrequency();
}

void TimedCall::Evaluate(const wchar_t* name, double thresholdMs) const
{
    const double elapsed = GetTime();
    if (elapsed > thresholdMs) {
        const QString text =
            QStringLiteral("%1 Time %2\n")
                .arg(name ? QString::fromWCharArray(name) : QString(), QString::asprintf("%4.2fms", elapsed));
        debuggerOutput(text);
    }
}

void TimedCall::Evaluate(QString name, double thresholdMs) const
{
    const double elapsed = GetTime();
    if (elapsed > thresholdMs) {
        const QString text = QString(name + QLatin1String(" %1 ms")).arg(elapsed);
        if (ErrorHandler::Instance().GetMessageMask() & ErrorHandler::TraceMask)
            _Q_Trace(text, kQualitySource, kEvaluateTraceLine);
    }
}

AutoTimedCall::AutoTimedCall(QString name) : m_strName(std::move(name)) {}

AutoTimedCall::~AutoTimedCall()
{
    Evaluate(m_strName, GetTime());
}
