#ifndef KVBASE_COORD_LATIN1TEXT_P_H
#define KVBASE_COORD_LATIN1TEXT_P_H

// A short text assembled in place and turned into a QString once: the coordinate texts
// are a few letters and zero-padded numbers, which printf-style formatting and
// QString concatenation would each build with several allocations. Not part of the
// API.

#include <QString>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <initializer_list>

namespace Geodesy {

class Latin1Text
{
public:
    static constexpr int kCapacity = 64;

    Latin1Text& put(char c)
    {
        if (m_size < kCapacity)
            m_text[m_size++] = c;
        return *this;
    }
    /// The decimal digits of value, left-padded with '0' to width, as printf's "%0*ld"
    /// writes them (a minus sign counts into the width).
    Latin1Text& put(long value, int width)
    {
        const unsigned long v =
            value < 0 ? 0UL - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
        if (value < 0)
            put('-');
        return putUnsigned(v, value < 0 ? width - 1 : width);
    }
    /// At least minDigits decimal digits of value after its sign, as printf's "%.*ld".
    Latin1Text& putDigits(long value, int minDigits)
    {
        if (value < 0)
            put('-');
        const unsigned long v =
            value < 0 ? 0UL - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
        return putUnsigned(v, minDigits);
    }
    /// value with three decimals, zero-padded after the sign to width, exactly as
    /// QString::asprintf's "%0*.3f" writes it: the exact binary value rounded, halves
    /// away from zero (the C library would round them to even). False, with nothing
    /// written, for the values left to asprintf: non-finite, 1e15 and beyond.
    bool putFixed3(double value, int width)
    {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        const bool negative = bits >> 63;
        const int biased = int(bits >> 52) & 0x7ff;
        std::uint64_t mantissa = bits & ((std::uint64_t(1) << 52) - 1);
        if (biased == 0x7ff || !(std::fabs(value) < 1e15))
            return false;
        if (biased != 0)
            mantissa |= std::uint64_t(1) << 52;
        const int exponent = (biased == 0 ? 1 : biased) - 1075; // value = mantissa 2^exponent
        // Thousandths, rounded from the exact product: mantissa * 1000 < 2^63.
        std::uint64_t thousandths = 0; // below 2^-11 (exponent < -63) it rounds to 0
        if (exponent >= -63) {
            const std::uint64_t product = mantissa * 1000;
            const int shift = -exponent; // 1 to 63: below 1e15 the exponent is negative
            thousandths = product >> shift;
            const std::uint64_t rest = product & ((std::uint64_t(1) << shift) - 1);
            const std::uint64_t half = std::uint64_t(1) << (shift - 1);
            if (rest >= half)
                ++thousandths;
        }
        if (negative)
            put('-');
        const std::uint64_t whole = thousandths / 1000;
        int wholeDigits = 1;
        for (std::uint64_t w = whole; w >= 10; w /= 10)
            ++wholeDigits;
        const int padding = width - (negative ? 1 : 0) - wholeDigits - 4;
        putUnsigned(whole, wholeDigits + (padding > 0 ? padding : 0));
        put('.');
        putUnsigned(thousandths % 1000, 3);
        return true;
    }
    /// The directives "%c" and "%[0][width][.precision]d" of a printf format, with the
    /// integers (and characters) of args in order, as printf writes them; other
    /// characters are copied. The coordinate formats use no other directives.
    Latin1Text& format(const char* fmt, std::initializer_list<long> args)
    {
        const long* arg = args.begin();
        for (const char* f = fmt; *f; ++f) {
            if (*f != '%' || f[1] == '\0') {
                put(*f);
                continue;
            }
            ++f;
            if (*f == '%') {
                put('%');
                continue;
            }
            const bool zeroFlag = *f == '0';
            int width = 0;
            while (*f >= '0' && *f <= '9')
                width = width * 10 + (*f++ - '0');
            int precision = -1;
            if (*f == '.') {
                precision = 0;
                while (*++f >= '0' && *f <= '9')
                    precision = precision * 10 + (*f - '0');
            }
            const long value = arg != args.end() ? *arg++ : 0;
            if (*f == 'c') {
                for (int pad = 1; pad < width; ++pad)
                    put(' ');
                put(char(value));
                continue;
            }
            // 'd': at least precision digits (1 by default), then padded to width,
            // with zeros only under the 0 flag and without a precision.
            const unsigned long v =
                value < 0 ? 0UL - static_cast<unsigned long>(value) : static_cast<unsigned long>(value);
            int digits = 1;
            for (unsigned long w = v; w >= 10; w /= 10)
                ++digits;
            const int minDigits = precision >= 0 ? (precision > digits ? precision : digits) : digits;
            const int length = minDigits + (value < 0 ? 1 : 0);
            const bool zeros = zeroFlag && precision < 0;
            if (!zeros)
                for (int pad = length; pad < width; ++pad)
                    put(' ');
            if (value < 0)
                put('-');
            putUnsigned(v, zeros && width > length ? minDigits + width - length : minDigits);
        }
        return *this;
    }
    QString toString() const { return QString::fromLatin1(m_text, m_size); }

private:
    Latin1Text& putUnsigned(std::uint64_t v, int minDigits)
    {
        char digits[24];
        int count = 0;
        do {
            digits[count++] = char('0' + v % 10);
            v /= 10;
        } while (v != 0);
        for (int pad = count; pad < minDigits; ++pad)
            put('0');
        while (count > 0)
            put(digits[--count]);
        return *this;
    }

    char m_text[kCapacity];
    int m_size = 0;
};

} // namespace Geodesy

#endif // KVBASE_COORD_LATIN1TEXT_P_H
