#include "basetypes/enumhelpers.h"
#include "basetypes/units.h"

#include <QMetaEnum>
#include <QTest>

using FrequencyList = QList<FrequencyUnit::Type>;

class tst_Units : public QObject
{
    Q_OBJECT

private slots:
    void tablesInScaleOrder();
    void fromString_data();
    void fromString();
    void steps_data();
    void steps();
    void timeStepsNeverReachNanoseconds();
    void metaTypes();
    void emptyEnumHasNothing();
};

template <typename Unit>
static void compareTable(const QList<int>& values, const QStringList& texts, const QStringList& displayTexts)
{
    QList<int> actualValues;
    QStringList actualTexts, actualDisplayTexts;
    for (const auto value : Unit::values()) {
        actualValues << value;
        actualTexts << Unit::toString(value);
        actualDisplayTexts << Unit::toDisplayString(value);
    }
    QCOMPARE(actualValues, values);
    QCOMPARE(actualTexts, texts);
    QCOMPARE(actualDisplayTexts, displayTexts); // no translator installed
    QVERIFY(Unit::toString(typename Unit::Type(1)).isEmpty());
    QVERIFY(Unit::toDisplayString(typename Unit::Type(1)).isEmpty());
}

void tst_Units::tablesInScaleOrder()
{
    const QStringList frequencies{"Hz", "kHz", "MHz", "GHz", "THz"};
    compareTable<FrequencyUnit>({0, 3, 6, 9, 12}, frequencies, frequencies);
    const QString micro = QString(QChar(0x00B5)) + QLatin1Char('s');
    compareTable<TimeUnit>({-9, -6, -3, 0, 60, 3600, 86400}, {"ns", "us", "ms", "s", "m", "h", "d"},
                           {"ns", micro, "ms", "s", "m", "h", "d"});
}

void tst_Units::fromString_data()
{
    QTest::addColumn<bool>("time");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("ok");
    QTest::newRow("empty text is Hz, not ok") << false << "" << 0 << false;
    QTest::newRow("g is GHz") << false << "g" << 9 << true;
    QTest::newRow("m is MHz for frequencies") << false << "m" << 6 << true;
    QTest::newRow("case does not matter") << false << "tHZ" << 12 << true;
    QTest::newRow("only the first word counts") << false << "  kHz is the unit" << 3 << true;
    QTest::newRow("Hzx is no match") << false << "Hzx" << 0 << false;
    QTest::newRow("empty text is ns, not ok") << true << "" << -9 << false;
    QTest::newRow("m is ms for times") << true << "m" << -3 << true;
    QTest::newRow("u is the microsecond unit") << true << "u" << -6 << true;
    QTest::newRow("the micro sign is no key") << true << QString(QChar(0x00B5)) << -9 << false;
    QTest::newRow("H is hours") << true << "H" << 3600 << true;
}

void tst_Units::fromString()
{
    QFETCH(bool, time);
    QFETCH(QString, text);
    QFETCH(int, expected);
    QFETCH(bool, ok);
    bool parsed = !ok;
    QCOMPARE(time ? int(TimeUnit::fromString(text, &parsed)) : int(FrequencyUnit::fromString(text, &parsed)),
             expected);
    QCOMPARE(parsed, ok);
}

void tst_Units::steps_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<FrequencyList>("allowed");
    QTest::addColumn<int>("successor");
    QTest::addColumn<int>("predecessor");

    const FrequencyList lowThree{FrequencyUnit::Hz, FrequencyUnit::kHz, FrequencyUnit::MHz};
    QTest::newRow("kHz has no predecessor even with Hz allowed") << 3 << lowThree << 6 << 3;
    QTest::newRow("GHz steps down to the nearest allowed") << 9 << lowThree << 9 << 6;
    QTest::newRow("THz has no successor") << 12 << FrequencyUnit::values() << 12 << 9;
    QTest::newRow("Hz skips up to the only allowed unit") << 0 << FrequencyList{FrequencyUnit::MHz} << 6 << 0;
    QTest::newRow("nothing allowed keeps the unit") << 6 << FrequencyList() << 6 << 6;
    QTest::newRow("unknown value starts the walk at Hz") << 5 << FrequencyList{FrequencyUnit::Hz} << 0 << 5;
}

void tst_Units::steps()
{
    QFETCH(int, value);
    QFETCH(FrequencyList, allowed);
    QFETCH(int, successor);
    QFETCH(int, predecessor);
    QCOMPARE(int(FrequencyUnit::successor(FrequencyUnit::Type(value), allowed)), successor);
    QCOMPARE(int(FrequencyUnit::predecessor(FrequencyUnit::Type(value), allowed)), predecessor);
}

void tst_Units::timeStepsNeverReachNanoseconds()
{
    QCOMPARE(TimeUnit::predecessor(TimeUnit::ms, TimeUnit::values()), TimeUnit::us);
    QCOMPARE(TimeUnit::predecessor(TimeUnit::us, TimeUnit::values()), TimeUnit::us);
    QCOMPARE(TimeUnit::successor(TimeUnit::ns, {TimeUnit::ns, TimeUnit::d}), TimeUnit::d);
}

void tst_Units::metaTypes()
{
    QCOMPARE(QMetaEnum::fromType<FrequencyUnit::Type>().valueToKey(3), "kHz");
    QCOMPARE(QMetaEnum::fromType<TimeUnit::Type>().keyCount(), 7);
    // Registered by name at load time, as queued connections need.
    QVERIFY(QMetaType::type("FrequencyUnit::Type") != QMetaType::UnknownType);
    QVERIFY(QMetaType::type("TimeUnit::Type") != QMetaType::UnknownType);
}

void tst_Units::emptyEnumHasNothing()
{
    using EnumHelpers::EmptyEnum;
    QVERIFY(EmptyEnum::values().isEmpty());
    QCOMPARE(QMetaEnum::fromType<EmptyEnum::Type>().keyCount(), 0);
    bool ok = true;
    QCOMPARE(int(EmptyEnum::fromString(QStringLiteral("Hz"), &ok)), 0);
    QVERIFY(!ok);
    const auto seven = EmptyEnum::Type(7);
    QVERIFY(EmptyEnum::toString(seven).isEmpty());
    QCOMPARE(int(EmptyEnum::successor(seven, {seven})), 7);
    QCOMPARE(int(EmptyEnum::predecessor(seven, {seven})), 7);
}

QTEST_APPLESS_MAIN(tst_Units)
#include "tst_units.moc"
