#include "basetypes/enumhelpers.h"
#include "basetypes/numberhelpers.h"
#include "basetypes/units.h"

#include <QTest>

namespace {

// Every text-to-value entry point as text -> value text, with the ok flag.
using Parser = QString (*)(const QString&, int, bool*);

// Numbers are parsed under a German locale: '.' groups digits, ',' is the decimal separator.
template <typename T>
QString parsed(const QString& text, int base, bool* ok)
{
    if constexpr (std::is_class<T>::value)
        return QString::number(T::fromString(text, ok));
    else
        return QString::number(NumberHelpers::parse<T>(text, QLocale(QLocale::German), ok, base));
}

// "value text display" for every unit, in values() order.
template <typename Unit>
QString table()
{
    QStringList rows;
    for (const auto value : Unit::values())
        rows << QString("%1 %2 %3").arg(value).arg(Unit::toString(value), Unit::toDisplayString(value));
    return rows.join(QLatin1Char(','));
}

} // namespace

Q_DECLARE_METATYPE(Parser)

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void texts();
    void steps();
    void parse_data();
    void parse();
};

void tst_Units::texts()
{
    QCOMPARE(table<FrequencyUnit>(), QStringLiteral("0 Hz Hz,3 kHz kHz,6 MHz MHz,9 GHz GHz,12 THz THz"));
    QCOMPARE(table<TimeUnit>(),
             QStringLiteral("-9 ns ns,-6 us \u00b5s,-3 ms ms,0 s s,60 m m,3600 h h,86400 d d"));
    QVERIFY(FrequencyUnit::toString(FrequencyUnit::Type(1)).isEmpty());
    // Queued connections look the types up by name, before anyone asked for their ids.
    const auto knownByName = [](const char* name) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
        return QMetaType::fromName(name).isValid();
#else
        return QMetaType::type(name) != QMetaType::UnknownType;
#endif
    };
    QVERIFY2(knownByName("FrequencyUnit::Type"), "FrequencyUnit::Type");
    QVERIFY2(knownByName("TimeUnit::Type"), "TimeUnit::Type");
    bool ok = true;
    QVERIFY(EnumHelpers::EmptyEnum::fromString(QStringLiteral("Hz"), &ok) == 0 && !ok);
}

void tst_Units::steps()
{
    using F = FrequencyUnit;
    const QList<F::Type> lowThree{F::Hz, F::kHz, F::MHz};
    QCOMPARE(F::predecessor(F::kHz, lowThree), F::kHz); // never down to Hz, even when allowed
    QCOMPARE(F::predecessor(F::GHz, lowThree), F::MHz); // the nearest allowed below
    QCOMPARE(F::successor(F::THz, F::values()), F::THz);
    QCOMPARE(F::successor(F::Hz, {F::GHz}), F::GHz);
    QCOMPARE(F::successor(F::Type(5), {F::Hz}), F::Hz); // an unknown value starts the walk at Hz
    QCOMPARE(TimeUnit::predecessor(TimeUnit::us, TimeUnit::values()), TimeUnit::us);
}

void tst_Units::parse_data()
{
    QTest::addColumn<Parser>("parser");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("base");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<bool>("ok");
    QTest::newRow("empty text is Hz, not ok") << &parsed<FrequencyUnit> << "" << 0 << "0" << false;
    QTest::newRow("m is MHz, any case") << &parsed<FrequencyUnit> << "m" << 0 << "6" << true;
    QTest::newRow("m is ms for times") << &parsed<TimeUnit> << "m" << 0 << "-3" << true;
    QTest::newRow("the first word counts")
        << &parsed<FrequencyUnit> << "  kHz is the unit" << 0 << "3" << true;
    QTest::newRow("Hzx is no match") << &parsed<FrequencyUnit> << "Hzx" << 0 << "0" << false;
    QTest::newRow("u is the microsecond unit") << &parsed<TimeUnit> << "u" << 0 << "-6" << true;
    QTest::newRow("signed char refuses 200") << &parsed<signed char> << "200" << 10 << "0" << false;
    QTest::newRow("unsigned char refuses 0x100") << &parsed<unsigned char> << "100" << 16 << "0" << false;
    QTest::newRow("short refuses 32768") << &parsed<short> << "32768" << 10 << "0" << false;
    QTest::newRow("base 10 takes group separators") << &parsed<int> << "1.000" << 10 << "1000" << true;
    QTest::newRow("... up to 2^64 - 1") << &parsed<unsigned long long> << "18.446.744.073.709.551.615" << 10
                                        << "18446744073709551615" << true;
    QTest::newRow("other bases ignore the locale") << &parsed<int> << "1.000" << 16 << "0" << false;
    QTest::newRow("doubles ignore the base") << &parsed<double> << "-1.234,25" << 16 << "-1234.25" << true;
    QTest::newRow("float overflow is infinite") << &parsed<float> << "1e40" << 10 << "inf" << false;
    // Booleans ignore the locale and the base.
    QTest::newRow("Yes with blanks is true") << &parsed<bool> << "  Yes \t" << 2 << "1" << true;
    QTest::newRow("Off is false") << &parsed<bool> << "Off" << 2 << "0" << true;
    QTest::newRow("0x1 is true") << &parsed<bool> << "0x1" << 2 << "1" << true;
    QTest::newRow("2 is true, not ok") << &parsed<bool> << "2" << 2 << "1" << false;
    QTest::newRow("maybe is false, not ok") << &parsed<bool> << "maybe" << 2 << "0" << false;
    QTest::newRow("70000 is no 16-bit number") << &parsed<bool> << "70000" << 2 << "0" << false;
}

void tst_Units::parse()
{
    QFETCH(Parser, parser);
    QFETCH(QString, text);
    QFETCH(int, base);
    QFETCH(QString, expected);
    QFETCH(bool, ok);
    bool parsedOk = !ok;
    QCOMPARE(parser(text, base, &parsedOk), expected);
    QCOMPARE(parsedOk, ok);
    QCOMPARE(parser(text, base, nullptr), expected);
}

QTEST_APPLESS_MAIN(tst_Units)
#include "tst_units.moc"
