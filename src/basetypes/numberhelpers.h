#ifndef KVBASE_BASETYPES_NUMBERHELPERS_H
#define KVBASE_BASETYPES_NUMBERHELPERS_H

#include "kvbase_export.h"

#include <QLocale>
#include <QString>

namespace NumberHelpers {

template <typename T>
struct UnsupportedParseType
{
    static constexpr bool value = false;
};

/// Text to number, or to bool, as operators type it. Never throws; `ok` may be
/// null. Integers that fail or are out of range give 0 with *ok false.
/// Reentrant.
/// - short .. unsigned long long: base 10 goes through `locale`, so its group
///   separators are accepted ("1.000" is 1000 in German); any other base (0 =
///   C-style prefixes "0x" and "0") through QString without the locale. A base
///   outside 0 and 2..36 always fails.
/// - signed char / unsigned char: QString's 16-bit conversion in `base`, then
///   a range check; the locale is not used.
/// - float / double: `locale`'s conversion, the base is ignored. Overflow gives
///   +-infinity, float underflow 0, both with *ok false; "inf" and "nan" parse.
/// - bool: a number (base 0) gives number != 0, with *ok true only for 0 and 1
///   ("2" is true with *ok false); otherwise, blanks trimmed and ignoring case,
///   "true"/"yes"/"on" and "false"/"no"/"off". Locale and base are ignored.
template <typename T>
T parse(const QString& text, const QLocale& locale = QLocale(), bool* ok = nullptr, int base = 10)
{
    static_assert(UnsupportedParseType<T>::value, "NumberHelpers::parse has no conversion to this type");
    Q_UNUSED(text)
    Q_UNUSED(locale)
    Q_UNUSED(ok)
    Q_UNUSED(base)
    return T();
}

template <>
KVBASE_EXPORT signed char parse<signed char>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT unsigned char parse<unsigned char>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT short parse<short>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT unsigned short parse<unsigned short>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT int parse<int>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT unsigned int parse<unsigned int>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT long long parse<long long>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT unsigned long long parse<unsigned long long>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT float parse<float>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT double parse<double>(const QString&, const QLocale&, bool*, int);
template <>
KVBASE_EXPORT bool parse<bool>(const QString&, const QLocale&, bool*, int);

} // namespace NumberHelpers

#endif
