#ifndef KVBASE_BASETYPES_ENUMHELPERS_H
#define KVBASE_BASETYPES_ENUMHELPERS_H

#include "kvbase_export.h"

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

namespace EnumHelpers {

/// The one text-to-value rule of every enumeration struct of the library
/// (a struct with a nested enum `Type`, static `values()` and `toString()`):
/// only the first whitespace-delimited word of `text` counts, and the first
/// element of `values()` whose `toString` starts with it, ignoring case, wins.
/// An empty text or no match gives the first element with *ok false; a text of
/// blanks only is an empty word, which matches the first element with *ok true.
/// `ok` may be null. Reentrant.
template <typename Enum>
typename Enum::Type fromString(const QString& text, bool* ok)
{
    const auto& all = Enum::values();
    const typename Enum::Type first = all.isEmpty() ? typename Enum::Type{} : all.first();
    bool found = false;
    typename Enum::Type result = first;
    if (!text.isEmpty()) {
        int begin = 0;
        while (begin < text.size() && text.at(begin).isSpace())
            ++begin;
        int end = begin;
        while (end < text.size() && !text.at(end).isSpace())
            ++end;
        const QStringRef word = text.midRef(begin, end - begin);
        for (const auto value : all) {
            if (Enum::toString(value).startsWith(word, Qt::CaseInsensitive)) {
                result = value;
                found = true;
                break;
            }
        }
    }
    if (ok)
        *ok = found;
    return result;
}

/// The next element after `value` in `Enum::values()` order that is also in
/// `allowed`; `value` itself when there is none. A value missing from
/// `values()` starts the search at the first element. Reentrant.
template <typename Enum>
typename Enum::Type successor(typename Enum::Type value, const QList<typename Enum::Type>& allowed)
{
    const auto& all = Enum::values();
    for (int i = all.indexOf(value) + 1; i < all.size(); ++i) {
        if (allowed.contains(all.at(i)))
            return all.at(i);
    }
    return value;
}

/// The nearest element before `value` in `Enum::values()` order that is also
/// in `allowed`; `value` itself when there is none. The first element of
/// `values()` is never returned, even when allowed: callers rely on the
/// smallest unit being unreachable this way. Reentrant.
template <typename Enum>
typename Enum::Type predecessor(typename Enum::Type value, const QList<typename Enum::Type>& allowed)
{
    const auto& all = Enum::values();
    for (int i = all.indexOf(value) - 1; i > 0; --i) {
        if (allowed.contains(all.at(i)))
            return all.at(i);
    }
    return value;
}

/// An enumeration struct without values, for places that take an enumeration
/// struct but need no unit. `values()` is empty, every text is empty, and
/// `fromString` gives Type{} with *ok false. Thread-safe.
struct KVBASE_EXPORT EmptyEnum
{
    Q_GADGET

public:
    enum Type : int
    {
    };
    Q_ENUM(Type)

    static const QList<Type>& values();
    static QString toString(Type value);
    static QString toDisplayString(Type value);
    static Type fromString(const QString& text, bool* ok = nullptr);
    static Type successor(Type value, const QList<Type>& allowed);
    static Type predecessor(Type value, const QList<Type>& allowed);
};

} // namespace EnumHelpers

#endif
