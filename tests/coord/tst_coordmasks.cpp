#include "coord/coord.h"

#include "referencedata.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QtTest>

Q_DECLARE_METATYPE(CoordFormat)

// The masks as the applications use them: a QLineEdit with getQtMask, the formatted text
// typed in and checked with getMaskRegExp. MGRS, RT90 and SWEREF99 are left out: their
// display masks and Qt masks differ (digit counts, RT90's decimal points, the seconds sign).
class tst_CoordMasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { pinLocaleAndTimeZone(); }

    void typedTextShowsUnchanged_data()
    {
        QTest::addColumn<CoordFormat>("format");
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("lat");
        const double places[][2] = {
            {18.0686, 59.3293}, {-58.3816, -34.6037}, {-149.9003, 61.2181}, {174.7762, -41.2865}};
        for (CoordFormat f : {cfGeoDecimal, cfGeoLong, cfGeoShort, cfUTM, cfQTHMaidenhead})
            for (const auto& p : places)
                QTest::addRow("%s at %g %g", qPrintable(getCoordFormatName(f)), p[0], p[1])
                    << f << p[0] << p[1];
    }
    void typedTextShowsUnchanged()
    {
        QFETCH(CoordFormat, format);
        QFETCH(double, lon);
        QFETCH(double, lat);
        const QString text = Coord(lon, lat).GetString(format);
        QLineEdit edit;
        edit.setInputMask(Coord::getQtMask(format));
        edit.show();
        QVERIFY(QTest::qWaitForWindowExposed(&edit));
        QTest::keyClicks(&edit, text);
        QCOMPARE(edit.text(), text);
        QVERIFY2(edit.hasAcceptableInput(), qPrintable(text));
        QVERIFY2(matches(format, text), qPrintable(text));
    }

    void expressionRejectsOutOfRangeTexts_data() { addCaseRows("coord_cases.txt", "rejected"); }
    void expressionRejectsOutOfRangeTexts()
    {
        QFETCH(QStringList, ref);
        QVERIFY2(!matches(CoordFormat(ref[0].toInt()), ref[1]), qPrintable(ref[1]));
    }

private:
    static bool matches(CoordFormat f, const QString& text)
    {
        return QRegularExpression(Coord::getMaskRegExp(f)).match(text).hasMatch();
    }
};

QTEST_MAIN(tst_CoordMasks)
#include "tst_coordmasks.moc"
