#ifndef KVBASE_BASETYPES_ENUMHELPERS_H
#define KVBASE_BASETYPES_ENUMHELPERS_H

/// \file basetypes/enumhelpers.h
/// \brief The rules shared by the library's enumeration structs.

#include "kvbase_export.h"

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringView>

/// The rules shared by the enumeration structs (FrequencyUnit, TimeUnit, the
/// token enums): each is a struct with a nested enum `Type`, static `values()`
/// and `toString()`.
namespace EnumHelpers {

/// The one text-to-value rule of every enumeration struct of the library
/// (a struct with a nested enum `Type`, static `values()` and `toString()`):
/// only the first whitespace-delimited word of `text` counts, and the first
/// element of `values()` whose `toString` starts with it, ignoring case, wins.
/// An empty text or no match gives the first element with *ok false; a text of
/// blanks only is an empty word, which matches the first element with *ok true.
/// `ok` may be null. Reentrant.
///
/// \code
/// bool ok = false;
/// EnumHelpers::fromString<FrequencyUnit>(QStringLiteral(" mhz at 5"), &ok);   // MHz, ok
/// \endcode
/// \tparam Enum the enumeration struct
/// \param text the text to read
/// \param ok   receives whether an element matched; may be null
/// \return the matching element, or the first of values() (Type{} when empty)
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
        const QStringView word = QStringView(text).mid(begin, end - begin);
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
/// \tparam Enum the enumeration struct
/// \param value   the element to start from
/// \param allowed the elements to choose from
/// \return the next allowed element, or `value`
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
/// \tparam Enum the enumeration struct
/// \param value   the element to start from
/// \param allowed the elements to choose from
/// \return the previous allowed element other than the first, or `value`
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
    /// No elements.
    enum Type : int
    {
    };
    Q_ENUM(Type)

    /// \return an empty list
    static const QList<Type>& values();
    /// \param value any value
    /// \return an empty string
    static QString toString(Type value);
    /// \param value any value
    /// \return an empty string
    static QString toDisplayString(Type value);
    /// \param text any text
    /// \param ok   receives false; may be null
    /// \return Type{}
    static Type fromString(const QString& text, bool* ok = nullptr);
    /// \param value   any value
    /// \param allowed ignored
    /// \return `value`
    static Type successor(Type value, const QList<Type>& allowed);
    /// \param value   any value
    /// \param allowed ignored
    /// \return `value`
    static Type predecessor(Type value, const QList<Type>& allowed);
};

} // namespace EnumHelpers

#endif
