#include "basetypes/enumhelpers.h"
#include "basetypes/units.h"

#include <QMetaEnum>
#include <QTest>
#include <QVariant>

using FrequencyList = QList<FrequencyUnit::Type>;
using TimeList = QList<TimeUnit::Type>;

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void valuesInScaleOrder();
    void frequencyTexts_data();
    void frequencyTexts();
    void timeTexts_data();
    void timeTexts();
    void valuesOutsideTheTableHaveNoText();
    void metaEnumKnowsTheUnits();
    void frequencyFromString_data();
    void frequencyFromString();
    void timeFromString_data();
    void timeFromString();
    void frequencySteps_data();
    void frequencySteps();
    void timeSteps();
    void emptyEnumHasNothing();
};

void tst_Units::valuesInScaleOrder()
{
    QCOMPARE(FrequencyUnit::values(),
             FrequencyList({FrequencyUnit::Type(0), FrequencyUnit::Type(3), FrequencyUnit::Type(6),
                            FrequencyUnit::Type(9), FrequencyUnit::Type(12)}));
    QCOMPARE(TimeUnit::values(),
             TimeList({TimeUnit::Type(-9), TimeUnit::Type(-6), TimeUnit::Type(-3), TimeUnit::Type(0),
                       TimeUnit::Type(60), TimeUnit::Type(3600), TimeUnit::Type(86400)}));
    QCOMPARE(&FrequencyUnit::values(), &FrequencyUnit::values());
}

void tst_Units::frequencyTexts_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("0 is Hz") << 0 << "Hz";
    QTest::newRow("3 is kHz") << 3 << "kHz";
    QTest::newRow("6 is MHz") << 6 << "MHz";
    QTest::newRow("9 is GHz") << 9 << "GHz";
    QTest::newRow("12 is THz") << 12 << "THz";
}

void tst_Units::frequencyTexts()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    const auto unit = FrequencyUnit::Type(value);
    QCOMPARE(FrequencyUnit::toString(unit), text);
    QCOMPARE(FrequencyUnit::toDisplayString(unit), text); // no translator installed
}

void tst_Units::timeTexts_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("displayText");
    QTest::newRow("-9 is ns") << -9 << "ns"
                              << "ns";
    QTest::newRow("-6 is us, shown with the micro sign")
        << -6 << "us" << QString(QChar(0x00B5)) + QLatin1Char('s');
    QTest::newRow("-3 is ms") << -3 << "ms"
                              << "ms";
    QTest::newRow("0 is s") << 0 << "s"
                            << "s";
    QTest::newRow("60 is m") << 60 << "m"
                             << "m";
    QTest::newRow("3600 is h") << 3600 << "h"
                               << "h";
    QTest::newRow("86400 is d") << 86400 << "d"
                                << "d";
}

void tst_Units::timeTexts()
{
    QFETCH(int, value);
    QFETCH(QString, text);
    QFETCH(QString, displayText);
    const auto unit = TimeUnit::Type(value);
    QCOMPARE(TimeUnit::toString(unit), text);
    QCOMPARE(TimeUnit::toDisplayString(unit), displayText);
}

void tst_Units::valuesOutsideTheTableHaveNoText()
{
    QVERIFY(FrequencyUnit::toString(FrequencyUnit::Type(1)).isEmpty());
    QVERIFY(FrequencyUnit::toDisplayString(FrequencyUnit::Type(-3)).isEmpty());
    QVERIFY(TimeUnit::toString(TimeUnit::Type(1)).isEmpty());
    QVERIFY(TimeUnit::toDisplayString(TimeUnit::Type(-12)).isEmpty());
}

void tst_Units::metaEnumKnowsTheUnits()
{
    const QMetaEnum frequency = QMetaEnum::fromType<FrequencyUnit::Type>();
    QCOMPARE(frequency.keyCount(), 5);
    QCOMPARE(frequency.value(1), 3);
    QCOMPARE(QMetaEnum::fromType<TimeUnit::Type>().keyCount(), 7);

    // Registered by name at load time, as queued connections need.
    QVERIFY(QMetaType::type("FrequencyUnit::Type") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("TimeUnit::Type") != QMetaType::UnknownType);
    const QVariant variant = QVariant::fromValue(TimeUnit::Type(3600));
    QCOMPARE(variant.value<TimeUnit::Type>(), TimeUnit::Type(3600));
}

void tst_Units::frequencyFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("ok");
    QTest::newRow("empty text is Hz, not ok") << "" << 0 << false;
    QTest::newRow("g is GHz") << "g" << 9 << true;
    QTest::newRow("k is kHz") << "k" << 3 << true;
    QTest::newRow("m is MHz, first in table order") << "m" << 6 << true;
    QTest::newRow("case does not matter") << "tHZ" << 12 << true;
    QTest::newRow("only the first word counts") << "kHz is the unit" << 3 << true;
    QTest::newRow("leading blanks are skipped") << "  MHz" << 6 << true;
    QTest::newRow("longer than the text is no match") << "Hzx" << 0 << false;
    QTest::newRow("unknown unit is Hz, not ok") << "mHz2" << 0 << false;
}

void tst_Units::frequencyFromString()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(int(FrequencyUnit::fromString(text, &parsed)), expected);
    QCOMPARE(parsed, ok);
    QCOMPARE(int(FrequencyUnit::fromString(text, nullptr)), expected);
}

void tst_Units::timeFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("ok");
    QTest::newRow("empty text is ns, not ok") << "" << -9 << false;
    QTest::newRow("m is ms, first in table order") << "m" << -3 << true;
    QTest::newRow("u is the microsecond unit") << "u" << -6 << true;
    QTest::newRow("the micro sign is no key") << QString(QChar(0x00B5)) + QLatin1Char('s') << -9 << false;
    QTest::newRow("h is hours") << "H" << 3600 << true;
    QTest::newRow("d is days") << "d" << 86400 << true;
    QTest::newRow("sec is no match") << "sec" << -9 << false;
}

void tst_Units::timeFromString()
{
    QFETCH(QString, text);
    QFETCH(int, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(int(TimeUnit::fromString(text, &parsed)), expected);
    QCOMPARE(parsed, ok);
}

void tst_Units::frequencySteps_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<FrequencyList>("allowed");
    QTest::addColumn<int>("successor");
    QTest::addColumn<int>("predecessor");

    const FrequencyList lowThree{FrequencyUnit::Hz, FrequencyUnit::kHz, FrequencyUnit::MHz};
    QTest::newRow("kHz has no predecessor even with Hz allowed") << 3 << lowThree << 6 << 3;
    QTest::newRow("GHz steps down to the nearest allowed") << 9 << lowThree << 9 << 6;
    QTest::newRow("THz has no successor") << 12 << FrequencyUnit::values() << 12 << 9;
    QTest::newRow("Hz skips to the only allowed unit") << 0 << FrequencyList{FrequencyUnit::MHz} << 6 << 0;
    QTest::newRow("MHz down to Hz only is refused") << 6 << FrequencyList{FrequencyUnit::Hz} << 6 << 6;
    QTest::newRow("nothing allowed keeps the unit") << 6 << FrequencyList() << 6 << 6;
    QTest::newRow("unknown value starts the walk at Hz") << 5 << FrequencyList{FrequencyUnit::Hz} << 0 << 5;
    QTest::newRow("unknown value steps up to the first allowed")
        << 5 << FrequencyList{FrequencyUnit::kHz, FrequencyUnit::MHz} << 3 << 5;
}

void tst_Units::frequencySteps()
{
    QFETCH(int, value);
    QFETCH(FrequencyList, allowed);
    QFETCH(int, successor);
    QFETCH(int, predecessor);
    const auto unit = FrequencyUnit::Type(value);
    QCOMPARE(int(FrequencyUnit::successor(unit, allowed)), successor);
    QCOMPARE(int(FrequencyUnit::predecessor(unit, allowed)), predecessor);
}

void tst_Units::timeSteps()
{
    const TimeList all = TimeUnit::values();
    QCOMPARE(TimeUnit::successor(TimeUnit::s, all), TimeUnit::m);
    QCOMPARE(TimeUnit::successor(TimeUnit::d, all), TimeUnit::d);
    QCOMPARE(TimeUnit::predecessor(TimeUnit::ms, all), TimeUnit::us);
    QCOMPARE(TimeUnit::predecessor(TimeUnit::us, all), TimeUnit::us);
    QCOMPARE(TimeUnit::predecessor(TimeUnit::d, TimeList{TimeUnit::ns, TimeUnit::ms}), TimeUnit::ms);
}

void tst_Units::emptyEnumHasNothing()
{
    using EnumHelpers::EmptyEnum;
    QVERIFY(EmptyEnum::values().isEmpty());
    QCOMPARE(QMetaEnum::fromType<EmptyEnum::Type>().keyCount(), 0);
    bool ok = true;
    QCOMPARE(int(EmptyEnum::fromString(QStringLiteral("Hz"), &ok)), 0);
    QVERIFY(!ok);
    ok = true;
    EmptyEnum::fromString(QString(), &ok);
    QVERIFY(!ok);
    const auto seven = EmptyEnum::Type(7);
    QVERIFY(EmptyEnum::toString(seven).isEmpty());
    QVERIFY(EmptyEnum::toDisplayString(seven).isEmpty());
    QCOMPARE(int(EmptyEnum::successor(seven, {seven})), 7);
    QCOMPARE(int(EmptyEnum::predecessor(seven, {seven})), 7);
}

QTEST_APPLESS_MAIN(tst_Units)
#include "tst_units.moc"
