#ifndef KVBASE_QTHELPERS_SIGNALDELAYER_H
#define KVBASE_QTHELPERS_SIGNALDELAYER_H

/// \file qthelpers/signaldelayer.h
/// \brief Forwarding a burst of signals as one delayed call.

#include "kvbase_export.h"

#include <QObject>
#include <QString>

#include <functional>
#include <type_traits>

// Only pointers pass through; callers that use these overloads have QtWidgets anyway.
class QAction;
class QTimerEvent;

/// Signal wiring without receiver classes.
namespace QObjectHelpers {

/// Sits between a signal and a slot and forwards after a delay in milliseconds,
/// coalescing a burst of signals into one call with the newest arguments (e.g. a
/// slider dragging a frequency). Created by connectDelayed as a child of the
/// sender; it also dies with the receiver. Lives in the sender's thread and is
/// used from that thread only; senders elsewhere reach it through queued signals.
///
/// \code
/// // Tune at most every 200 ms while the slider is dragged, with the newest value.
/// QObjectHelpers::SignalDelayer::connectDelayed<void(int)>(slider, SIGNAL(valueChanged(int)),
///                                                         receiver, SLOT(tuneTo(int)), 200);
/// \endcode
class KVBASE_EXPORT SignalDelayer : public QObject
{
    Q_OBJECT

public:
    /// A delayer without connections; connectDelayed() makes and wires one.
    /// \param delay  milliseconds; a negative delay forwards as soon as the event loop runs again
    /// \param parent owner, normally the sender
    SignalDelayer(int delay, QObject* parent);
    ~SignalDelayer() override;

    /// Connects `signal` of `sender` (SIGNAL() text) through a new delayer to
    /// `slot` of `receiver` (SLOT() or SIGNAL() text), the last hop with `type`.
    /// Signature is one of void(), void(bool), void(int), void(double),
    /// void(const QString&), void(QString) and void(QAction*); an action is
    /// forwarded as a plain pointer, so it must outlive the delay. Call it in
    /// the sender's thread.
    /// \tparam Signature the signal's signature, as listed
    /// \param sender   the object that emits; becomes the delayer's parent
    /// \param signal   SIGNAL() text of the sender's signal
    /// \param receiver the object to call; the delayer dies with it
    /// \param slot     SLOT() or SIGNAL() text of the receiver
    /// \param delay    milliseconds between the first (or last) signal of a burst and the call
    /// \param type     connection type of the hop to the receiver
    /// \return the delayer, or null, leaving nothing behind, when an argument
    ///         is null or a connection fails
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

    /// \return the delay in milliseconds
    int delay() const { return m_nDelay; }
    /// \param delay milliseconds; a new value applies from the next burst on
    void setDelay(int delay) { m_nDelay = delay; }

    /// \return false (default): the call comes `delay` ms after the first
    ///         signal of a burst; true: every signal restarts the wait, so the
    ///         call comes `delay` ms after the last one
    bool isEmitLastSignalOnly() const { return m_bEmitLastSignalOnly; }
    /// \param emitLastSignalOnly see isEmitLastSignalOnly()
    void setEmitLastSignalOnly(bool emitLastSignalOnly) { m_bEmitLastSignalOnly = emitLastSignalOnly; }

    /// Makes `invoker` the one pending call, dropping an older one, and arms the timer.
    /// \param invoker called once when the delay has passed
    void setSlotInvoker(std::function<void()> invoker);

Q_SIGNALS:
    /// The delayed call of a signal without arguments.
    void signalled();
    /// The delayed call with the newest argument of the burst.
    /// \param value the argument
    void signalled(bool value);
    /// The delayed call with the newest argument of the burst.
    /// \param value the argument
    void signalled(int value);
    /// The delayed call with the newest argument of the burst.
    /// \param value the argument
    void signalled(double value);
    /// The delayed call with the newest argument of the burst.
    /// \param value the argument
    void signalled(const QString& value);
    /// The delayed call with the newest argument of the burst.
    /// \param action the action, forwarded as a plain pointer
    void signalled(QAction* action);

public Q_SLOTS:
    /// Receives the sender's signal and (re)arms the delayed call.
    void onSignal();
    /// Receives the sender's signal and (re)arms the delayed call.
    /// \param value kept for the call, replacing an older one
    void onSignal(bool value);
    /// Receives the sender's signal and (re)arms the delayed call.
    /// \param value kept for the call, replacing an older one
    void onSignal(int value);
    /// Receives the sender's signal and (re)arms the delayed call.
    /// \param value kept for the call, replacing an older one
    void onSignal(double value);
    /// Receives the sender's signal and (re)arms the delayed call.
    /// \param value kept for the call, replacing an older one
    void onSignal(const QString& value);
    /// Receives the sender's signal and (re)arms the delayed call.
    /// \param action kept for the call, replacing an older one
    void onSignal(QAction* action);

protected:
    /// Makes the pending call when the delay has passed.
    /// \param event the timer event
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

/// \cond internal
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
/// \endcond

} // namespace QObjectHelpers

#endif
