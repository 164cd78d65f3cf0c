#ifndef KVBASE_BASETYPES_NUMBERHELPERS_H
#define KVBASE_BASETYPES_NUMBERHELPERS_H

/// \file basetypes/numberhelpers.h
/// \brief Numbers and booleans from operators' texts.

#include "kvbase_export.h"

#include <QLocale>
#include <QString>

/// Numbers and booleans from operators' texts.
namespace NumberHelpers {

/// Makes parse() of a type without conversion fail to compile.
/// \tparam T the requested type
template <typename T>
struct UnsupportedParseType
{
    static constexpr bool value = false; ///< always false
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
///
/// \code
/// bool ok = false;
/// NumberHelpers::parse<int>(QStringLiteral("1.000"), QLocale(QLocale::German), &ok);   // 1000
/// NumberHelpers::parse<int>(QStringLiteral("0x1F"), QLocale(), &ok, 0);               // 31
/// NumberHelpers::parse<bool>(QStringLiteral(" yes "), QLocale(), &ok);                // true
/// \endcode
/// \tparam T one of the types listed above
/// \param text   the text to read
/// \param locale the locale of base-10 integers and of floating-point numbers
/// \param ok     receives whether the text was read; may be null
/// \param base   0 (C prefixes) or 2..36 for integers
/// \return the number; 0 (false) when the text was not read, except as said for float and double
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

/// \cond explicit_specialisations
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
/// \endcond

} // namespace NumberHelpers

#endif
