#ifndef KVBASE_QTHELPERS_SIGNALHANDLER_H
#define KVBASE_QTHELPERS_SIGNALHANDLER_H

/// \file qthelpers/signalhandler.h
/// \brief Connecting a Qt signal to a stored callable.

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
///
/// \code
/// // React to a signal without a receiver class; the handler dies with the sender.
/// QObjectHelpers::SignalHandler::connectHandler<void()>(qApp, SIGNAL(aboutToQuit()), [] { saveState(); });
/// \endcode
class KVBASE_EXPORT SignalHandler : public QObject
{
    Q_OBJECT

public:
    /// A handler without callable; createHandler() and connectHandler() make
    /// and fill one.
    /// \param parent owner, may be null
    explicit SignalHandler(QObject* parent);
    ~SignalHandler() override;

    /// A new handler, child of `parent`, that calls `callable` from its onSignal
    /// of the same signature. Signature is one of void(), void(bool), void(int),
    /// void(long), void(double), void(const QString&), void(QAction*),
    /// void(QObject*) and void(const QModelIndex&, const QModelIndex&).
    /// \tparam Signature the callable's signature, as listed
    /// \param callable called by onSignal(); an empty one makes onSignal() do nothing
    /// \param parent   owner, may be null
    /// \return the handler, never null
    template <typename Signature>
    static SignalHandler* createHandler(const std::function<Signature>& callable, QObject* parent = nullptr)
    {
        static_assert(isSupported<Signature>(), "SignalHandler does not support this signature");
        auto* handler = new SignalHandler(parent);
        handler->setCallable(callable);
        return handler;
    }

    /// Calls `callable` whenever `signal` (SIGNAL() text) of `sender` is emitted.
    /// Call it in the thread of the handler's parent.
    /// \tparam Signature the signal's signature, one of those of createHandler()
    /// \param sender   the object that emits
    /// \param signal   SIGNAL() text of the sender's signal
    /// \param callable what to call on every emission
    /// \param parent   owner of the handler; null makes the sender its parent
    /// \param type     connection type
    /// \return the handler, or null, leaving nothing behind, when sender or
    ///         signal is null or the connection fails
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
    /// Calls the stored void() callable, if any.
    void onSignal();
    /// Calls the stored callable of this signature, if any.
    /// \param value passed on
    void onSignal(bool value);
    /// Calls the stored callable of this signature, if any.
    /// \param value passed on
    void onSignal(int value);
    /// Calls the stored callable of this signature, if any.
    /// \param value passed on
    void onSignal(long value);
    /// Calls the stored callable of this signature, if any.
    /// \param value passed on
    void onSignal(double value);
    /// Calls the stored callable of this signature, if any.
    /// \param value passed on
    void onSignal(const QString& value);
    /// Calls the stored callable of this signature, if any.
    /// \param action passed on
    void onSignal(QAction* action);
    /// Calls the stored callable of this signature, if any.
    /// \param object passed on
    void onSignal(QObject* object);
    /// Calls the stored callable of this signature, if any.
    /// \param first  passed on
    /// \param second passed on
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
