#include "qthelpers/signaldelayer.h"

#include <QTimerEvent>

#include <utility>

namespace QObjectHelpers {

SignalDelayer::SignalDelayer(int delay, QObject* parent) : QObject(parent), m_nDelay(delay) {}

SignalDelayer::~SignalDelayer() = default;

SignalDelayer* SignalDelayer::connectDelayed(ArgumentKind kind, QObject* sender, const char* signal,
                                             QObject* receiver, const char* slot, int delay,
                                             Qt::ConnectionType type)
{
    if (!sender || !signal || !receiver || !slot)
        return nullptr;

    const char* ownSlot = nullptr;
    const char* ownSignal = nullptr;
    switch (kind) {
    case NoArguments:
        ownSlot = "1onSignal()";
        ownSignal = "2signalled()";
        break;
    case BoolArgument:
        ownSlot = "1onSignal(bool)";
        ownSignal = "2signalled(bool)";
        break;
    case IntArgument:
        ownSlot = "1onSignal(int)";
        ownSignal = "2signalled(int)";
        break;
    case DoubleArgument:
        ownSlot = "1onSignal(double)";
        ownSignal = "2signalled(double)";
        break;
    case StringArgument:
        ownSlot = "1onSignal(const QString&)";
        ownSignal = "2signalled(const QString&)";
        break;
    case ActionArgument:
        ownSlot = "1onSignal(QAction*)";
        ownSignal = "2signalled(QAction*)";
        break;
    case UnsupportedArguments:
        return nullptr;
    }

    auto* delayer = new SignalDelayer(delay, sender);
    const bool connected = QObject::connect(sender, signal, delayer, ownSlot, Qt::AutoConnection) &&
                           QObject::connect(delayer, ownSignal, receiver, slot, type) &&
                           QObject::connect(receiver, "2destroyed()", delayer, "1deleteLater()", type);
    if (!connected) {
        delete delayer;
        return nullptr;
    }
    return delayer;
}

void SignalDelayer::setSlotInvoker(std::function<void()> invoker)
{
    m_PendingInvocation = std::move(invoker);
    if (m_nTimerId != 0) {
        if (!m_bEmitLastSignalOnly)
            return;
        killTimer(m_nTimerId);
        m_nTimerId = 0;
    }
    // QObject::startTimer refuses negative intervals and the burst would then never be forwarded.
    m_nTimerId = startTimer(qMax(0, m_nDelay));
}

void SignalDelayer::onSignal()
{
    setSlotInvoker([this] { Q_EMIT signalled(); });
}

void SignalDelayer::onSignal(bool value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(int value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(double value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(const QString& value)
{
    setSlotInvoker([this, value] { Q_EMIT signalled(value); });
}

void SignalDelayer::onSignal(QAction* action)
{
    setSlotInvoker([this, action] { Q_EMIT signalled(action); });
}

void SignalDelayer::timerEvent(QTimerEvent* event)
{
    if (m_nTimerId == 0 || event->timerId() != m_nTimerId) {
        QObject::timerEvent(event);
        return;
    }
    // Go idle before forwarding: a signal that arrives while the receiver runs
    // then starts a new burst instead of being dropped, and a receiver that
    // deletes this delayer leaves nothing to touch afterwards.
    killTimer(m_nTimerId);
    m_nTimerId = 0;
    const std::function<void()> invocation = std::move(m_PendingInvocation);
    m_PendingInvocation = nullptr;
    if (invocation)
        invocation();
}

} // namespace QObjectHelpers
