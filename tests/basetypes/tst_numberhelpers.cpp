#include "basetypes/numberhelpers.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

const QLocale german(QLocale::German, QLocale::Germany);

template <typename T>
QString parsedText(const QString& text, const QLocale& locale, int base, bool* ok)
{
    using Wide = std::conditional_t<std::is_signed<T>::value, qlonglong, qulonglong>;
    return QString::number(static_cast<Wide>(NumberHelpers::parse<T>(text, locale, ok, base)));
}

// The value as decimal text, so that one table holds every integer type.
QString parsedText(const QByteArray& type, const QString& text, const QLocale& locale, int base, bool* ok)
{
    using Parser = QString (*)(const QString&, const QLocale&, int, bool*);
    static const QHash<QByteArray, Parser> parsers{{"schar", &parsedText<signed char>},
                                                   {"uchar", &parsedText<unsigned char>},
                                                   {"short", &parsedText<short>},
                                                   {"ushort", &parsedText<unsigned short>},
                                                   {"int", &parsedText<int>},
                                                   {"uint", &parsedText<unsigned int>},
                                                   {"longlong", &parsedText<long long>},
                                                   {"ulonglong", &parsedText<unsigned long long>}};
    return parsers.value(type)(text, locale, base, ok);
}

} // namespace

class tst_NumberHelpers : public QObject
{
    Q_OBJECT

private slots:
    void integers_data();
    void integers();
    void floatingPoint();
    void booleans_data();
    void booleans();
};

void tst_NumberHelpers::integers_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<int>("base");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("ok");

    const QLocale c = QLocale::c();
    QTest::newRow("signed char takes -128") << QByteArray("schar") << "-128" << c << 10 << "-128" << true;
    QTest::newRow("signed char refuses 200") << QByteArray("schar") << "200" << c << 10 << "0" << false;
    QTest::newRow("signed char ignores the locale")
        << QByteArray("schar") << "1.0" << german << 10 << "0" << false;
    QTest::newRow("unsigned char takes 255") << QByteArray("uchar") << "255" << c << 10 << "255" << true;
    QTest::newRow("unsigned char refuses 256 in hex")
        << QByteArray("uchar") << "100" << c << 16 << "0" << false;
    QTest::newRow("German group separator in base 10")
        << QByteArray("int") << "1.000" << german << 10 << "1000" << true;
    QTest::newRow("German groups in a long long")
        << QByteArray("longlong") << "-1.234.567.890.123" << german << 10 << "-1234567890123" << true;
    QTest::newRow("German decimal comma is no integer")
        << QByteArray("int") << "1,5" << german << 10 << "0" << false;
    QTest::newRow("hex ff is 255") << QByteArray("int") << "ff" << german << 16 << "255" << true;
    QTest::newRow("other bases ignore the locale")
        << QByteArray("int") << "1.000" << german << 16 << "0" << false;
    QTest::newRow("base 0 reads 0x") << QByteArray("ushort") << "0x10" << c << 0 << "16" << true;
    QTest::newRow("base 0 reads a leading 0 as octal")
        << QByteArray("short") << "017" << c << 0 << "15" << true;
    QTest::newRow("invalid base fails") << QByteArray("int") << "12" << c << 37 << "0" << false;
    QTest::newRow("short refuses 32768") << QByteArray("short") << "32768" << c << 10 << "0" << false;
    QTest::newRow("int refuses 2^31") << QByteArray("int") << "2147483648" << c << 10 << "0" << false;
    QTest::newRow("unsigned int refuses -1") << QByteArray("uint") << "-1" << c << 10 << "0" << false;
    QTest::newRow("long long refuses 2^63")
        << QByteArray("longlong") << "9223372036854775808" << c << 10 << "0" << false;
    QTest::newRow("unsigned long long takes 2^64-1")
        << QByteArray("ulonglong") << "18446744073709551615" << c << 10 << "18446744073709551615" << true;
    QTest::newRow("letters fail") << QByteArray("int") << "12abc" << c << 10 << "0" << false;
}

void tst_NumberHelpers::integers()
{
    QFETCH(QByteArray, type);
    QFETCH(QString, text);
    QFETCH(QLocale, locale);
    QFETCH(int, base);
    QFETCH(QString, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(parsedText(type, text, locale, base, &parsed), expected);
    QCOMPARE(parsed, ok);
    QCOMPARE(parsedText(type, text, locale, base, nullptr), expected);
}

void tst_NumberHelpers::floatingPoint()
{
    bool ok = false;
    QCOMPARE(NumberHelpers::parse<double>(QStringLiteral("-1.234,25"), german, &ok, 16), -1234.25);
    QVERIFY(ok);
    QCOMPARE(NumberHelpers::parse<float>(QStringLiteral("2.5e-3"), QLocale::c(), &ok), 0.0025f);
    QVERIFY(ok);
    QCOMPARE(NumberHelpers::parse<double>(QStringLiteral("1,500"), QLocale::c(), &ok), 1500.0);
    QCOMPARE(NumberHelpers::parse<double>(QStringLiteral("0x10"), QLocale::c(), &ok), 0.0);
    QVERIFY(!ok);
    QCOMPARE(NumberHelpers::parse<float>(QStringLiteral("1e40"), QLocale::c(), &ok),
             std::numeric_limits<float>::infinity());
    QVERIFY(!ok);
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
    QTest::newRow("Off is false") << "Off" << false << true;
    QTest::newRow("FALSE is false") << "FALSE" << false << true;
    QTest::newRow("0 is false") << "0" << false << true;
    QTest::newRow("0x1 is true") << "0x1" << true << true;
    QTest::newRow("2 is true, not ok") << "2" << true << false;
    QTest::newRow("-1 is true, not ok") << "-1" << true << false;
    QTest::newRow("maybe is false, not ok") << "maybe" << false << false;
    QTest::newRow("a word prefix is no word") << "ye" << false << false;
    QTest::newRow("beyond 16 bits is no number") << "70000" << false << false;
}

void tst_NumberHelpers::booleans()
{
    QFETCH(QString, text);
    QFETCH(bool, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(NumberHelpers::parse<bool>(text, german, &parsed, 2), expected); // locale and base don't matter
    QCOMPARE(parsed, ok);
}

QTEST_APPLESS_MAIN(tst_NumberHelpers)
#include "tst_numberhelpers.moc"
