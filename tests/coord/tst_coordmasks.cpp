#include "coord/coord.h"

#include <QLineEdit>
#include <QRegularExpression>
#include <QtTest>

// The masks as the applications use them: a QLineEdit with getQtMask, the formatted
// text typed in and checked with getMaskRegExp. MGRS, RT90 and SWEREF99 are left out:
// their display masks and Qt masks differ (digit counts, RT90's decimal points, the
// seconds sign).
class tst_CoordMasks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typedTextShowsUnchanged()
    {
        const double places[][2] = {
            {18.0686, 59.3293}, {-58.3816, -34.6037}, {-149.9003, 61.2181}, {174.7762, -41.2865}};
        for (CoordFormat f : {cfGeoDecimal, cfGeoLong, cfGeoShort, cfUTM, cfQTHMaidenhead})
            for (const auto& p : places) {
                const QString text = Coord(p[0], p[1]).GetString(f);
                QLineEdit edit;
                edit.setInputMask(Coord::getQtMask(f));
                edit.show();
                QVERIFY(QTest::qWaitForWindowExposed(&edit));
                QTest::keyClicks(&edit, text);
                QCOMPARE(edit.text(), text);
                QVERIFY2(edit.hasAcceptableInput() && matches(f, text), qPrintable(text));
            }
    }

    void expressionRejectsOutOfRangeTexts()
    {
        QVERIFY(!matches(cfGeoDecimal, QStringLiteral("E180.000001 N00.000000")));
        QVERIFY(!matches(cfGeoLong, QString::fromUtf8("E010\u00b060'00.00 N10\u00b000'00.00"))); // 60 minutes
        QVERIFY(!matches(cfGeoShort, QString::fromUtf8("E010\u00b000'00 N90\u00b000'01")));
        QVERIFY(!matches(cfUTM, QStringLiteral("33I 0500000 6500000"))); // no band I
        QVERIFY(!matches(cfSWEREF99,
                         QString::fromUtf8("E018\u00b004'06.96 N59\u00b019'45.48"))); // no seconds signs
        QVERIFY(!matches(cfQTHMaidenhead, QStringLiteral("FNAAPR")));
    }

private:
    static bool matches(CoordFormat f, const QString& text)
    {
        return QRegularExpression(Coord::getMaskRegExp(f)).match(text).hasMatch();
    }
};

QTEST_MAIN(tst_CoordMasks)
#include "tst_coordmasks.moc"
