#ifndef KVBASE_QTHELPERS_SIGNALHANDLER_H
#define KVBASE_QTHELPERS_SIGNALHANDLER_H

#include "kvbase_export.h"

#include <QModelIndex>
#include <QObject>
#include <QString>

#include <cstddef>
#include <functional>
#include <type_traits>
#include <variant>

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
        handler->m_Callable.template emplace<indexOf<Signature>()>(callable);
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
        return connectOrDelete(handler, sender, signal, slotFor(indexOf<Signature>()), type);
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
    // The one store: the callable of the signature the handler was made for,
    // or nothing. The order of the alternatives is that of slotFor's texts.
    using Callable = std::variant<std::monostate, std::function<void()>, std::function<void(bool)>,
                                  std::function<void(int)>, std::function<void(long)>,
                                  std::function<void(double)>, std::function<void(const QString&)>,
                                  std::function<void(QAction*)>, std::function<void(QObject*)>,
                                  std::function<void(const QModelIndex&, const QModelIndex&)>>;

    // The position of std::function<Signature> among the alternatives; the
    // number of alternatives when it is not one of them.
    template <typename Signature, std::size_t I = 0>
    static constexpr std::size_t indexOf()
    {
        if constexpr (I == std::variant_size<Callable>::value)
            return I;
        else if constexpr (std::is_same<std::variant_alternative_t<I, Callable>,
                                        std::function<Signature>>::value)
            return I;
        else
            return indexOf<Signature, I + 1>();
    }

    template <typename Signature>
    static constexpr bool isSupported()
    {
        return indexOf<Signature>() < std::variant_size<Callable>::value;
    }

    // The SLOT() text of the onSignal that calls the alternative at `index`.
    static const char* slotFor(std::size_t index);

    static SignalHandler* connectOrDelete(SignalHandler* handler, const QObject* sender, const char* signal,
                                          const char* slot, Qt::ConnectionType type);

    template <typename Signature, typename... Args>
    void call(const Args&... args) const;

    Callable m_Callable;
};

} // namespace QObjectHelpers

#endif
