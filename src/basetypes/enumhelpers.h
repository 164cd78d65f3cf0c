#ifndef KVBASE_BASETYPES_ENUMHELPERS_H
#define KVBASE_BASETYPES_ENUMHELPERS_H

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

} // namespace EnumHelpers

#endif
