#ifndef KVBASE_QTHELPERS_SIGNALHANDLER_H
#define KVBASE_QTHELPERS_SIGNALHANDLER_H

#include "kvbase_export.h"

#include <QModelIndex>
#include <QObject>
#include <QString>

#include <functional>
#include <type_traits>

// Only pointers pass through; callers that use these overloads have QtWidgets anyway.
class QAction;

namespace QObjectHelpers {

/// Connects a Qt signal to a stored callable, so no receiver class is needed.
/// Owned by its Qt parent (by default the sender, so it lives as long as the
/// sender) and called in the parent's thread. One thread at a time.
class KVBASE_EXPORT SignalHandler : public QObject
{
    Q_OBJECT

public:
    explicit SignalHandler(QObject* parent);
    ~SignalHandler() override;

    /// A new handler, child of `parent`, that calls `callable` from its onSignal
    /// of the same signature. Signature is one of void(), void(bool), void(int),
    /// void(long), void(double), void(const QString&), void(QAction*),
    /// void(QObject*) and void(const QModelIndex&, const QModelIndex&).
    template <typename Signature>
    static SignalHandler* createHandler(const std::function<Signature>& callable, QObject* parent = nullptr)
    {
        static_assert(isSupported<Signature>(), "SignalHandler does not support this signature");
        auto* handler = new SignalHandler(parent);
        handler->setCallable(callable);
        return handler;
    }

    /// Calls `callable` whenever `signal` (SIGNAL() text) of `sender` is emitted.
    /// A null `parent` makes the sender the handler's parent. Returns null,
    /// leaving nothing behind, when sender or signal is null or the connection fails.
    template <typename Signature>
    static SignalHandler* connectHandler(const QObject* sender, const char* signal,
                                         const std::function<Signature>& callable, QObject* parent = nullptr,
                                         Qt::ConnectionType type = Qt::AutoConnection)
    {
        static_assert(isSupported<Signature>(), "SignalHandler does not support this signature");
        if (!sender || !signal)
            return nullptr;
        // The handler is owned through the parent tree, never written through the sender.
        SignalHandler* handler = createHandler(callable, parent ? parent : const_cast<QObject*>(sender));
        return connectOrDelete(handler, sender, signal, slotFor(callable), type);
    }

public Q_SLOTS:
    void onSignal();
    void onSignal(bool value);
    void onSignal(int value);
    void onSignal(long value);
    void onSignal(double value);
    void onSignal(const QString& value);
    void onSignal(QAction* action);
    void onSignal(QObject* object);
    void onSignal(const QModelIndex& first, const QModelIndex& second);

private:
    template <typename Signature>
    static constexpr bool isSupported()
    {
        return std::is_same<Signature, void()>::value || std::is_same<Signature, void(bool)>::value ||
               std::is_same<Signature, void(int)>::value || std::is_same<Signature, void(long)>::value ||
               std::is_same<Signature, void(double)>::value ||
               std::is_same<Signature, void(const QString&)>::value ||
               std::is_same<Signature, void(QAction*)>::value ||
               std::is_same<Signature, void(QObject*)>::value ||
               std::is_same<Signature, void(const QModelIndex&, const QModelIndex&)>::value;
    }

    void setCallable(const std::function<void()>& callable);
    void setCallable(const std::function<void(bool)>& callable);
    void setCallable(const std::function<void(int)>& callable);
    void setCallable(const std::function<void(long)>& callable);
    void setCallable(const std::function<void(double)>& callable);
    void setCallable(const std::function<void(const QString&)>& callable);
    void setCallable(const std::function<void(QAction*)>& callable);
    void setCallable(const std::function<void(QObject*)>& callable);
    void setCallable(const std::function<void(const QModelIndex&, const QModelIndex&)>& callable);

    static const char* slotFor(const std::function<void()>&);
    static const char* slotFor(const std::function<void(bool)>&);
    static const char* slotFor(const std::function<void(int)>&);
    static const char* slotFor(const std::function<void(long)>&);
    static const char* slotFor(const std::function<void(double)>&);
    static const char* slotFor(const std::function<void(const QString&)>&);
    static const char* slotFor(const std::function<void(QAction*)>&);
    static const char* slotFor(const std::function<void(QObject*)>&);
    static const char* slotFor(const std::function<void(const QModelIndex&, const QModelIndex&)>&);

    static SignalHandler* connectOrDelete(SignalHandler* handler, const QObject* sender, const char* signal,
                                          const char* slot, Qt::ConnectionType type);

    std::function<void()> m_fnVoid;
    std::function<void(bool)> m_fnBool;
    std::function<void(int)> m_fnInt;
    std::function<void(long)> m_fnLong;
    std::function<void(double)> m_fnDouble;
    std::function<void(const QString&)> m_fnString;
    std::function<void(QAction*)> m_fnAction;
    std::function<void(QObject*)> m_fnObject;
    std::function<void(const QModelIndex&, const QModelIndex&)> m_fnIndexPair;
};

} // namespace QObjectHelpers

#endif
