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

void SignalHandler::setCallable(const std::function<void()>& callable)
{
    m_fnVoid = callable;
}

void SignalHandler::setCallable(const std::function<void(bool)>& callable)
{
    m_fnBool = callable;
}

void SignalHandler::setCallable(const std::function<void(int)>& callable)
{
    m_fnInt = callable;
}

void SignalHandler::setCallable(const std::function<void(long)>& callable)
{
    m_fnLong = callable;
}

void SignalHandler::setCallable(const std::function<void(double)>& callable)
{
    m_fnDouble = callable;
}

void SignalHandler::setCallable(const std::function<void(const QString&)>& callable)
{
    m_fnString = callable;
}

void SignalHandler::setCallable(const std::function<void(QAction*)>& callable)
{
    m_fnAction = callable;
}

void SignalHandler::setCallable(const std::function<void(QObject*)>& callable)
{
    m_fnObject = callable;
}

void SignalHandler::setCallable(const std::function<void(const QModelIndex&, const QModelIndex&)>& callable)
{
    m_fnIndexPair = callable;
}

const char* SignalHandler::slotFor(const std::function<void()>&)
{
    return "1onSignal()";
}

const char* SignalHandler::slotFor(const std::function<void(bool)>&)
{
    return "1onSignal(bool)";
}

const char* SignalHandler::slotFor(const std::function<void(int)>&)
{
    return "1onSignal(int)";
}

const char* SignalHandler::slotFor(const std::function<void(long)>&)
{
    return "1onSignal(long)";
}

const char* SignalHandler::slotFor(const std::function<void(double)>&)
{
    return "1onSignal(double)";
}

const char* SignalHandler::slotFor(const std::function<void(const QString&)>&)
{
    return "1onSignal(const QString&)";
}

const char* SignalHandler::slotFor(const std::function<void(QAction*)>&)
{
    return "1onSignal(QAction*)";
}

const char* SignalHandler::slotFor(const std::function<void(QObject*)>&)
{
    return "1onSignal(QObject*)";
}

const char* SignalHandler::slotFor(const std::function<void(const QModelIndex&, const QModelIndex&)>&)
{
    return "1onSignal(const QModelIndex&, const QModelIndex&)";
}

// Each slot calls a copy: a callable that deletes its handler (for example by
// deleting the sender, its parent) must not destroy itself while it runs.
void SignalHandler::onSignal()
{
    if (const auto callable = m_fnVoid)
        callable();
}

void SignalHandler::onSignal(bool value)
{
    if (const auto callable = m_fnBool)
        callable(value);
}

void SignalHandler::onSignal(int value)
{
    if (const auto callable = m_fnInt)
        callable(value);
}

void SignalHandler::onSignal(long value)
{
    if (const auto callable = m_fnLong)
        callable(value);
}

void SignalHandler::onSignal(double value)
{
    if (const auto callable = m_fnDouble)
        callable(value);
}

void SignalHandler::onSignal(const QString& value)
{
    if (const auto callable = m_fnString)
        callable(value);
}

void SignalHandler::onSignal(QAction* action)
{
    if (const auto callable = m_fnAction)
        callable(action);
}

void SignalHandler::onSignal(QObject* object)
{
    if (const auto callable = m_fnObject)
        callable(object);
}

void SignalHandler::onSignal(const QModelIndex& first, const QModelIndex& second)
{
    if (const auto callable = m_fnIndexPair)
        callable(first, second);
}

} // namespace QObjectHelpers
