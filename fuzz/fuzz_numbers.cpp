// libFuzzer target: any text parsed as every type of NumberHelpers::parse, in
// the C and a German locale, in a base chosen by the first byte (also bases
// outside 0 and 2..36). Integers that fail must give 0, and what parses in
// base 10 with the C locale must read back from its own decimal text.
#include "fuzzsupport.h"

#include "basetypes/numberhelpers.h"

#include <cmath>

namespace {

template <typename T>
void integer(const QString& text, const QLocale& locale, int base)
{
    bool ok = true;
    const T value = NumberHelpers::parse<T>(text, locale, &ok, base);
    FUZZ_CHECK(ok || value == T(0));
    if (ok && base == 10 && locale == QLocale::c()) {
        bool again = false;
        FUZZ_CHECK(NumberHelpers::parse<T>(QString::number(value), locale, &again, 10) == value);
        FUZZ_CHECK(again);
    }
}

template <typename T>
void floating(const QString& text, const QLocale& locale)
{
    bool ok = false;
    const T value = NumberHelpers::parse<T>(text, locale, &ok);
    if (ok && std::isfinite(value) && locale == QLocale::c()) {
        bool again = false;
        const T back = NumberHelpers::parse<T>(QString::number(double(value), 'g', 17), locale, &again);
        FUZZ_CHECK(again);
        FUZZ_CHECK(back == value);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    if (size == 0)
        return 0;
    const int base = int(data[0] % 40) - 2;
    const QString text = fuzz::text(data + 1, size - 1);
    static const QLocale c = QLocale::c();
    static const QLocale german(QLocale::German, QLocale::Germany);
    for (const QLocale& locale : {c, german}) {
        integer<signed char>(text, locale, base);
        integer<unsigned char>(text, locale, base);
        integer<short>(text, locale, base);
        integer<unsigned short>(text, locale, base);
        integer<int>(text, locale, base);
        integer<unsigned int>(text, locale, base);
        integer<long long>(text, locale, base);
        integer<unsigned long long>(text, locale, base);
        floating<float>(text, locale);
        floating<double>(text, locale);
        bool ok = false;
        NumberHelpers::parse<bool>(text, locale, &ok, base);
        NumberHelpers::parse<int>(text, locale, nullptr, base);
    }
    return 0;
}
