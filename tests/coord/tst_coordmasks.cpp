#include "coord/coord.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QtTest>

// The masks as the applications use them: a QLineEdit with getQtMask, the
// formatted text typed in and checked with getMaskRegExp.
class tst_CoordMasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typedTextShowsUnchanged_data();
    void typedTextShowsUnchanged();
    void expressionRejectsOutOfRangeTexts_data();
    void expressionRejectsOutOfRangeTexts();
};

void tst_CoordMasks::typedTextShowsUnchanged_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");

    // MGRS, RT90 and SWEREF99 are left out: their display masks and Qt masks
    // differ (digit counts, the RT90 text's decimal points, the seconds sign).
    const struct
    {
        const char* name;
        CoordFormat format;
    } notations[] = {{"Geo Decimal", cfGeoDecimal},
                     {"Geo long", cfGeoLong},
                     {"Geo short", cfGeoShort},
                     {"UTM", cfUTM},
                     {"QTH Maidenhead", cfQTHMaidenhead}};
    const struct
    {
        const char* name;
        double longitude;
        double latitude;
    } places[] = {{"Stockholm", 18.0686, 59.3293},
                  {"Buenos Aires", -58.3816, -34.6037},
                  {"Anchorage", -149.9003, 61.2181},
                  {"Wellington", 174.7762, -41.2865}};
    for (const auto& n : notations)
        for (const auto& p : places)
            QTest::addRow("%s in %s", p.name, n.name) << int(n.format) << p.longitude << p.latitude;
}

void tst_CoordMasks::typedTextShowsUnchanged()
{
    QFETCH(int, format);
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    const CoordFormat f = CoordFormat(format);
    const QString text = Coord(longitude, latitude).GetString(f);
    QVERIFY(!text.contains(QLatin1Char('_')));

    QLineEdit edit;
    edit.setInputMask(Coord::getQtMask(f));
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    edit.setFocus();
    edit.home(false);
    QTest::keyClicks(&edit, text);

    QCOMPARE(edit.text(), text);
    QVERIFY(edit.hasAcceptableInput());
    const QRegularExpression expression(Coord::getMaskRegExp(f));
    QVERIFY(expression.isValid());
    QVERIFY2(expression.match(edit.text()).hasMatch(), qPrintable(edit.text()));

    Coord back;
    back.SetString(edit.text(), f);
    QCOMPARE(back.GetString(f), text);
}

void tst_CoordMasks::expressionRejectsOutOfRangeTexts_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("text");

    QTest::newRow("Geo Decimal past 180 degrees")
        << int(cfGeoDecimal) << QStringLiteral("E180.000001 N00.000000");
    QTest::newRow("Geo long with 60 minutes")
        << int(cfGeoLong) << QString::fromUtf8("E010°60'00.00 N10°00'00.00");
    QTest::newRow("Geo short past 90 degrees")
        << int(cfGeoShort) << QString::fromUtf8("E010°00'00 N90°00'01");
    QTest::newRow("UTM band I does not exist") << int(cfUTM) << QStringLiteral("33I 0500000 6500000");
    QTest::newRow("UTM with a placeholder") << int(cfUTM) << QStringLiteral("33V 05_0000 6500000");
    QTest::newRow("SWEREF99 without the seconds signs")
        << int(cfSWEREF99) << QString::fromUtf8("E018°04'06.96 N59°19'45.48");
    QTest::newRow("Maidenhead with letters where digits go")
        << int(cfQTHMaidenhead) << QStringLiteral("FNAAPR");
}

void tst_CoordMasks::expressionRejectsOutOfRangeTexts()
{
    QFETCH(int, format);
    QFETCH(QString, text);

    QVERIFY(!QRegularExpression(Coord::getMaskRegExp(CoordFormat(format))).match(text).hasMatch());
}

QTEST_MAIN(tst_CoordMasks)
#include "tst_coordmasks.moc"
