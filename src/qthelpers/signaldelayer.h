#ifndef KVBASE_QTHELPERS_SIGNALDELAYER_H
#define KVBASE_QTHELPERS_SIGNALDELAYER_H

#include "kvbase_export.h"

#include <QObject>
#include <QString>

#include <functional>
#include <type_traits>

// Only pointers pass through; callers that use these overloads have QtWidgets anyway.
class QAction;
class QTimerEvent;

namespace QObjectHelpers {

/// Sits between a signal and a slot and forwards after a delay in milliseconds,
/// coalescing a burst of signals into one call with the newest arguments (e.g. a
/// slider dragging a frequency). Created by connectDelayed as a child of the
/// sender; it also dies with the receiver. Lives in the sender's thread and is
/// used from that thread only; senders elsewhere reach it through queued signals.
class KVBASE_EXPORT SignalDelayer : public QObject
{
    Q_OBJECT

public:
    /// A negative delay forwards as soon as the event loop runs again.
    SignalDelayer(int delay, QObject* parent);
    ~SignalDelayer() override;

    /// Connects `signal` of `sender` (SIGNAL() text) through a new delayer to
    /// `slot` of `receiver` (SLOT() or SIGNAL() text), the last hop with `type`.
    /// Signature is one of void(), void(bool), void(int), void(double),
    /// void(const QString&), void(QString) and void(QAction*); an action is
    /// forwarded as a plain pointer, so it must outlive the delay. Returns null,
    /// leaving nothing behind, when an argument is null or a connection fails.
    template <typename Signature>
    static SignalDelayer* connectDelayed(QObject* sender, const char* signal, QObject* receiver,
                                         const char* slot, int delay,
                                         Qt::ConnectionType type = Qt::AutoConnection)
    {
        static_assert(Kind<Signature>::value != UnsupportedArguments,
                      "SignalDelayer supports void(), void(bool), void(int), void(double), "
                      "void(const QString&), void(QString) and void(QAction*)");
        return connectDelayed(Kind<Signature>::value, sender, signal, receiver, slot, delay, type);
    }

    /// In milliseconds; a new value applies from the next burst on.
    int delay() const { return m_nDelay; }
    void setDelay(int delay) { m_nDelay = delay; }

    /// False (default): the call comes `delay` ms after the first signal of a
    /// burst. True: every signal restarts the wait, so the call comes `delay` ms
    /// after the last one.
    bool isEmitLastSignalOnly() const { return m_bEmitLastSignalOnly; }
    void setEmitLastSignalOnly(bool emitLastSignalOnly) { m_bEmitLastSignalOnly = emitLastSignalOnly; }

    /// Makes `invoker` the one pending call, dropping an older one, and arms the timer.
    void setSlotInvoker(std::function<void()> invoker);

Q_SIGNALS:
    void signalled();
    void signalled(bool value);
    void signalled(int value);
    void signalled(double value);
    void signalled(const QString& value);
    void signalled(QAction* action);

public Q_SLOTS:
    void onSignal();
    void onSignal(bool value);
    void onSignal(int value);
    void onSignal(double value);
    void onSignal(const QString& value);
    void onSignal(QAction* action);

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    enum ArgumentKind
    {
        UnsupportedArguments,
        NoArguments,
        BoolArgument,
        IntArgument,
        DoubleArgument,
        StringArgument,
        ActionArgument
    };

    template <typename Signature>
    struct Kind : std::integral_constant<ArgumentKind, UnsupportedArguments>
    {
    };

    static SignalDelayer* connectDelayed(ArgumentKind kind, QObject* sender, const char* signal,
                                         QObject* receiver, const char* slot, int delay,
                                         Qt::ConnectionType type);

    bool m_bEmitLastSignalOnly = false;
    int m_nDelay;
    int m_nTimerId = 0;
    std::function<void()> m_PendingInvocation;
};

template <>
struct SignalDelayer::Kind<void()> : std::integral_constant<ArgumentKind, NoArguments>
{
};
template <>
struct SignalDelayer::Kind<void(bool)> : std::integral_constant<ArgumentKind, BoolArgument>
{
};
template <>
struct SignalDelayer::Kind<void(int)> : std::integral_constant<ArgumentKind, IntArgument>
{
};
template <>
struct SignalDelayer::Kind<void(double)> : std::integral_constant<ArgumentKind, DoubleArgument>
{
};
template <>
struct SignalDelayer::Kind<void(const QString&)> : std::integral_constant<ArgumentKind, StringArgument>
{
};
template <>
struct SignalDelayer::Kind<void(QString)> : std::integral_constant<ArgumentKind, StringArgument>
{
};
template <>
struct SignalDelayer::Kind<void(QAction*)> : std::integral_constant<ArgumentKind, ActionArgument>
{
};

} // namespace QObjectHelpers

#endif
