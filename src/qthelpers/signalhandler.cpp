#include "qthelpers/signalhandler.h"

namespace QObjectHelpers {

SignalHandler::SignalHandler(QObject* parent) : QObject(parent) {}

SignalHandler::~SignalHandler() = default;

SignalHandler* SignalHandler::connectOrDelete(SignalHandler* handler, const QObject* sender,
                                              const char* signal, const char* slot, Qt::ConnectionType type)
{
    if (!QObject::connect(sender, signal, handler, slot, type)) {
        delete handler;
        return nullptr;
    }
    return handler;
}

const char* SignalHandler::slotFor(std::size_t index)
{
    static const char* const texts[] = {nullptr,
                                        "1onSignal()",
                                        "1onSignal(bool)",
                                        "1onSignal(int)",
                                        "1onSignal(long)",
                                        "1onSignal(double)",
                                        "1onSignal(const QString&)",
                                        "1onSignal(QAction*)",
                                        "1onSignal(QObject*)",
                                        "1onSignal(const QModelIndex&, const QModelIndex&)"};
    static_assert(sizeof(texts) / sizeof(texts[0]) == std::variant_size<Callable>::value,
                  "one slot text per alternative of Callable");
    return texts[index];
}

// Calls a copy: a callable that deletes its handler (for example by deleting
// the sender, its parent) must not destroy itself while it runs. A slot of
// another signature than the stored one does nothing.
template <typename Signature, typename... Args>
void SignalHandler::call(const Args&... args) const
{
    const auto* stored = std::get_if<std::function<Signature>>(&m_Callable);
    if (!stored || !*stored)
        return;
    const std::function<Signature> callable = *stored;
    callable(args...);
}

void SignalHandler::onSignal()
{
    call<void()>();
}

void SignalHandler::onSignal(bool value)
{
    call<void(bool)>(value);
}

void SignalHandler::onSignal(int value)
{
    call<void(int)>(value);
}

void SignalHandler::onSignal(long value)
{
    call<void(long)>(value);
}

void SignalHandler::onSignal(double value)
{
    call<void(double)>(value);
}

void SignalHandler::onSignal(const QString& value)
{
    call<void(const QString&)>(value);
}

void SignalHandler::onSignal(QAction* action)
{
    call<void(QAction*)>(action);
}

void SignalHandler::onSignal(QObject* object)
{
    call<void(QObject*)>(object);
}

void SignalHandler::onSignal(const QModelIndex& first, const QModelIndex& second)
{
    call<void(const QModelIndex&, const QModelIndex&)>(first, second);
}

} // namespace QObjectHelpers
