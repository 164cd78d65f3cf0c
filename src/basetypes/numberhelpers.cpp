#include "basetypes/numberhelpers.h"

#include "basetypes/numberhelpers_p.h"

#include <QStringList>

#include <cmath>

namespace NumberHelpers {

QString qt5IntegerText(const QString& text, int base)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    QString result = text.trimmed();
    if (result.startsWith(QChar(0x2212)))
        result[0] = QLatin1Char('-');
    if (base == 0 || base == 2 || base == 8) {
        const int sign = result.startsWith(QLatin1Char('-')) || result.startsWith(QLatin1Char('+')) ? 1 : 0;
        if (result.size() >= sign + 2 && result.at(sign) == QLatin1Char('0') &&
            (result.at(sign + 1) == QLatin1Char('b') || result.at(sign + 1) == QLatin1Char('B')))
            return QString();
    }
    return result;
#else
    Q_UNUSED(base)
    return text;
#endif
}

QString qt5ShortestText(double value)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    if (!std::isfinite(value))
        return QString::number(value, 'g', QLocale::FloatingPointShortest);
    // The exponent form carries the shortest digits and the decimal exponent.
    const QString exponentForm = QString::number(value, 'e', QLocale::FloatingPointShortest);
    const int e = exponentForm.indexOf(QLatin1Char('e'));
    int digits = 0;
    for (int i = 0; i < e; ++i) {
        if (exponentForm.at(i).isDigit())
            ++digits;
    }
    const int exponent = QStringView(exponentForm).mid(e + 1).toInt();
    if (exponent < -4 || exponent > digits + 4)
        return exponentForm;
    return QString::number(value, 'f', QLocale::FloatingPointShortest);
#else
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
#endif
}

namespace {

// Qt's conversions already give 0 with ok false on failure; this only makes a
// null `ok` safe and keeps one place for the range-checked narrow types.
template <typename T, typename LocaleConversion, typename StringConversion>
T parseInteger(const QString& text, const QLocale& locale, bool* ok, int base, LocaleConversion byLocale,
               StringConversion byString)
{
    bool converted = false;
    const T value = base == 10 ? (locale.*byLocale)(text, &converted)
                               : (qt5IntegerText(text, base).*byString)(&converted, base);
    if (ok)
        *ok = converted;
    return converted ? value : T(0);
}

template <typename T, typename Wide, typename StringConversion>
T parseNarrow(const QString& text, bool* ok, int base, StringConversion byString, Wide min, Wide max)
{
    bool converted = false;
    const Wide value = (qt5IntegerText(text, base).*byString)(&converted, base);
    const bool accepted = converted && value >= min && value <= max;
    if (ok)
        *ok = accepted;
    return accepted ? static_cast<T>(value) : T(0);
}

} // namespace

template <>
signed char parse<signed char>(const QString& text, const QLocale&, bool* ok, int base)
{
    return parseNarrow<signed char, short>(text, ok, base, &QString::toShort, -128, 127);
}

template <>
unsigned char parse<unsigned char>(const QString& text, const QLocale&, bool* ok, int base)
{
    return parseNarrow<unsigned char, ushort>(text, ok, base, &QString::toUShort, 0, 255);
}

template <>
short parse<short>(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<short>(text, locale, ok, base, qOverload<const QString&, bool*>(&QLocale::toShort),
                               &QString::toShort);
}

template <>
unsigned short parse<unsigned short>(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<unsigned short>(
        text, locale, ok, base, qOverload<const QString&, bool*>(&QLocale::toUShort), &QString::toUShort);
}

template <>
int parse<int>(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<int>(text, locale, ok, base, qOverload<const QString&, bool*>(&QLocale::toInt),
                             &QString::toInt);
}

template <>
unsigned int parse<unsigned int>(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<unsigned int>(text, locale, ok, base,
                                      qOverload<const QString&, bool*>(&QLocale::toUInt), &QString::toUInt);
}

template <>
long long parse<long long>(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<long long>(
        text, locale, ok, base, qOverload<const QString&, bool*>(&QLocale::toLongLong), &QString::toLongLong);
}

template <>
unsigned long long parse<unsigned long long>(const QString& text, const QLocale& locale, bool* ok, int base)
{
    return parseInteger<unsigned long long>(text, locale, ok, base,
                                            qOverload<const QString&, bool*>(&QLocale::toULongLong),
                                            &QString::toULongLong);
}

template <>
float parse<float>(const QString& text, const QLocale& locale, bool* ok, int)
{
    bool converted = false;
    const float value = locale.toFloat(text, &converted);
    if (ok)
        *ok = converted;
    return value;
}

template <>
double parse<double>(const QString& text, const QLocale& locale, bool* ok, int)
{
    bool converted = false;
    const double value = locale.toDouble(text, &converted);
    if (ok)
        *ok = converted;
    return value;
}

template <>
bool parse<bool>(const QString& text, const QLocale&, bool* ok, int)
{
    static const QStringList trueWords{QStringLiteral("true"), QStringLiteral("yes"), QStringLiteral("on")};
    static const QStringList falseWords{QStringLiteral("false"), QStringLiteral("no"), QStringLiteral("off")};

    bool converted = false;
    const short number = qt5IntegerText(text, 0).toShort(&converted, 0);
    bool result = false;
    if (converted) {
        const auto bits = static_cast<ushort>(number);
        converted = bits == 0 || bits == 1;
        result = number != 0;
    } else {
        const QString word = text.trimmed();
        if (trueWords.contains(word, Qt::CaseInsensitive)) {
            converted = true;
            result = true;
        } else if (falseWords.contains(word, Qt::CaseInsensitive)) {
            converted = true;
        }
    }
    if (ok)
        *ok = converted;
    return result;
}

} // namespace NumberHelpers
