#include "basetypes/numberhelpers.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

// Renders the parsed value as decimal text, so one table can hold every type.
template <typename T>
QString parsedText(const QString& text, const QLocale& locale, int base, bool* ok)
{
    using Wide = std::conditional_t<std::is_signed<T>::value, qlonglong, qulonglong>;
    return QString::number(static_cast<Wide>(NumberHelpers::parse<T>(text, locale, ok, base)));
}

QString parsedText(const QString& type, const QString& text, const QLocale& locale, int base, bool* ok)
{
    if (type == QLatin1String("schar"))
        return parsedText<signed char>(text, locale, base, ok);
    if (type == QLatin1String("uchar"))
        return parsedText<unsigned char>(text, locale, base, ok);
    if (type == QLatin1String("short"))
        return parsedText<short>(text, locale, base, ok);
    if (type == QLatin1String("ushort"))
        return parsedText<unsigned short>(text, locale, base, ok);
    if (type == QLatin1String("int"))
        return parsedText<int>(text, locale, base, ok);
    if (type == QLatin1String("uint"))
        return parsedText<unsigned int>(text, locale, base, ok);
    if (type == QLatin1String("longlong"))
        return parsedText<long long>(text, locale, base, ok);
    if (type == QLatin1String("ulonglong"))
        return parsedText<unsigned long long>(text, locale, base, ok);
    qFatal("no such type in the table");
    return QString();
}

const QLocale german(QLocale::German, QLocale::Germany);

} // namespace

class tst_NumberHelpers : public QObject
{
    Q_OBJECT

private slots:
    void integers_data();
    void integers();
    void floatingPoint_data();
    void floatingPoint();
    void floatOverflow();
    void booleans_data();
    void booleans();
    void nullOkStillParses();
};

void tst_NumberHelpers::integers_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<int>("base");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("ok");

    const QLocale c = QLocale::c();
    QTest::newRow("signed char takes 127") << "schar"
                                           << "127" << c << 10 << "127" << true;
    QTest::newRow("signed char takes -128") << "schar"
                                            << "-128" << c << 10 << "-128" << true;
    QTest::newRow("signed char refuses 200") << "schar"
                                             << "200" << c << 10 << "0" << false;
    QTest::newRow("signed char refuses -129") << "schar"
                                              << "-129" << c << 10 << "0" << false;
    QTest::newRow("signed char in hex") << "schar"
                                        << "7f" << c << 16 << "127" << true;
    QTest::newRow("signed char ignores the locale") << "schar"
                                                    << "1.0" << german << 10 << "0" << false;
    QTest::newRow("unsigned char takes 255") << "uchar"
                                             << "255" << c << 10 << "255" << true;
    QTest::newRow("unsigned char refuses 256") << "uchar"
                                               << "256" << c << 10 << "0" << false;
    QTest::newRow("unsigned char refuses -1") << "uchar"
                                              << "-1" << c << 10 << "0" << false;
    QTest::newRow("unsigned char in binary") << "uchar"
                                             << "11111111" << c << 2 << "255" << true;

    QTest::newRow("German group separator in base 10") << "int"
                                                       << "1.000" << german << 10 << "1000" << true;
    QTest::newRow("German group separators in a long long")
        << "longlong"
        << "-1.234.567.890.123" << german << 10 << "-1234567890123" << true;
    QTest::newRow("C group separator in base 10") << "uint"
                                                  << "1,000" << c << 10 << "1000" << true;
    QTest::newRow("German decimal comma is no integer") << "int"
                                                        << "1,5" << german << 10 << "0" << false;
    QTest::newRow("hex ff is 255") << "int"
                                   << "ff" << german << 16 << "255" << true;
    QTest::newRow("other bases ignore the locale") << "int"
                                                   << "1.000" << german << 16 << "0" << false;
    QTest::newRow("base 0 reads the 0x prefix") << "ushort"
                                                << "0x10" << c << 0 << "16" << true;
    QTest::newRow("base 0 reads a leading 0 as octal") << "short"
                                                       << "017" << c << 0 << "15" << true;
    QTest::newRow("base 10 reads a leading 0 as decimal") << "short"
                                                          << "017" << c << 10 << "17" << true;
    QTest::newRow("invalid base fails") << "int"
                                        << "12" << c << 37 << "0" << false;
    QTest::newRow("negative base fails") << "int"
                                         << "12" << c << -2 << "0" << false;
    QTest::newRow("blanks around are accepted") << "int"
                                                << " 42 " << c << 10 << "42" << true;
    QTest::newRow("empty text fails") << "int"
                                      << "" << c << 10 << "0" << false;
    QTest::newRow("letters fail") << "int"
                                  << "12abc" << c << 10 << "0" << false;

    QTest::newRow("short refuses 32768") << "short"
                                         << "32768" << c << 10 << "0" << false;
    QTest::newRow("unsigned short takes 65535") << "ushort"
                                                << "65535" << c << 10 << "65535" << true;
    QTest::newRow("unsigned short refuses 65536") << "ushort"
                                                  << "65536" << c << 10 << "0" << false;
    QTest::newRow("int refuses 2^31") << "int"
                                      << "2147483648" << c << 10 << "0" << false;
    QTest::newRow("int takes -2^31") << "int"
                                     << "-2147483648" << c << 10 << "-2147483648" << true;
    QTest::newRow("unsigned int takes 2^32-1") << "uint"
                                               << "4294967295" << c << 10 << "4294967295" << true;
    QTest::newRow("unsigned int refuses -1") << "uint"
                                             << "-1" << c << 10 << "0" << false;
    QTest::newRow("long long takes 2^63-1")
        << "longlong"
        << "9223372036854775807" << c << 10 << "9223372036854775807" << true;
    QTest::newRow("long long refuses 2^63") << "longlong"
                                            << "9223372036854775808" << c << 10 << "0" << false;
    QTest::newRow("unsigned long long takes 2^64-1 in hex")
        << "ulonglong"
        << "ffffffffffffffff" << c << 16 << "18446744073709551615" << true;
    QTest::newRow("unsigned long long refuses 2^64") << "ulonglong"
                                                     << "18446744073709551616" << c << 10 << "0" << false;
}

void tst_NumberHelpers::integers()
{
    QFETCH(QString, type);
    QFETCH(QString, text);
    QFETCH(QLocale, locale);
    QFETCH(int, base);
    QFETCH(QString, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(parsedText(type, text, locale, base, &parsed), expected);
    QCOMPARE(parsed, ok);
}

void tst_NumberHelpers::floatingPoint_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<double>("expected");
    QTest::addColumn<bool>("ok");

    const QLocale c = QLocale::c();
    QTest::newRow("C decimal point") << "1.5" << c << 1.5 << true;
    QTest::newRow("German decimal comma") << "1,5" << german << 1.5 << true;
    QTest::newRow("German groups and comma") << "-1.234,25" << german << -1234.25 << true;
    QTest::newRow("exponent") << "2.5e-3" << c << 0.0025 << true;
    QTest::newRow("hex is no number here") << "0x10" << c << 0.0 << false;
    QTest::newRow("text is no number") << "abc" << c << 0.0 << false;
    QTest::newRow("overflow is infinite, not ok")
        << "1e400" << c << std::numeric_limits<double>::infinity() << false;
}

void tst_NumberHelpers::floatingPoint()
{
    QFETCH(QString, text);
    QFETCH(QLocale, locale);
    QFETCH(double, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(NumberHelpers::parse<double>(text, locale, &parsed, 16), expected);
    QCOMPARE(parsed, ok);
    parsed = !ok;
    QCOMPARE(NumberHelpers::parse<float>(text, locale, &parsed, 16), float(expected));
    QCOMPARE(parsed, ok);
}

void tst_NumberHelpers::floatOverflow()
{
    bool ok = true;
    QCOMPARE(NumberHelpers::parse<float>(QStringLiteral("1e40"), QLocale::c(), &ok),
             std::numeric_limits<float>::infinity());
    QVERIFY(!ok);
    QCOMPARE(NumberHelpers::parse<double>(QStringLiteral("1e40"), QLocale::c(), &ok), 1e40);
    QVERIFY(ok);
    QVERIFY(std::isnan(NumberHelpers::parse<double>(QStringLiteral("nan"), QLocale::c(), &ok)));
    QVERIFY(ok);
}

void tst_NumberHelpers::booleans_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("expected");
    QTest::addColumn<bool>("ok");

    QTest::newRow("Yes with blanks around is true") << "  Yes \t" << true << true;
    QTest::newRow("ON is true") << "ON" << true << true;
    QTest::newRow("true is true") << "true" << true << true;
    QTest::newRow("Off is false") << "Off" << false << true;
    QTest::newRow("no is false") << "no" << false << true;
    QTest::newRow("FALSE is false") << "FALSE" << false << true;
    QTest::newRow("1 is true") << "1" << true << true;
    QTest::newRow("0 is false") << "0" << false << true;
    QTest::newRow("0x1 is true") << "0x1" << true << true;
    QTest::newRow("2 is true, not ok") << "2" << true << false;
    QTest::newRow("-1 is true, not ok") << "-1" << true << false;
    QTest::newRow("octal 010 is true, not ok") << "010" << true << false;
    QTest::newRow("maybe is false, not ok") << "maybe" << false << false;
    QTest::newRow("a word prefix is no word") << "ye" << false << false;
    QTest::newRow("empty is false, not ok") << "" << false << false;
    QTest::newRow("too large for 16 bits is no number") << "70000" << false << false;
}

void tst_NumberHelpers::booleans()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    // Locale and base must not matter.
    QCOMPARE(NumberHelpers::parse<bool>(text, german, &parsed, 2), expected);
    QCOMPARE(parsed, ok);
}

void tst_NumberHelpers::nullOkStillParses()
{
    QCOMPARE(NumberHelpers::parse<int>(QStringLiteral("1.000"), german), 1000);
    QCOMPARE(NumberHelpers::parse<unsigned char>(QStringLiteral("ff"), QLocale::c(), nullptr, 16), 255);
    QCOMPARE(NumberHelpers::parse<bool>(QStringLiteral("yes")), true);
    QCOMPARE(NumberHelpers::parse<double>(QStringLiteral("0.25"), QLocale::c()), 0.25);
}

QTEST_APPLESS_MAIN(tst_NumberHelpers)
#include "tst_numberhelpers.moc"
