#include "coord/swedishgrids.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTest>

#include "referencedata.h"

#include <cmath>
#include <limits>

class TestSwedishGrids : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    // EPSG:3006 (SWEREF 99 TM), 3007-3018 (local zones), 3845-3850 (RT90 emulation on
    // SWEREF 99) and 3019-3024 (RT90 on Bessel) through cs2cs. Krueger's series to n^4 is
    // good to 0.1 mm over Sweden: 1 mm and 1e-8 degrees.
    void projectionAgreesWithProj_data()
    {
        QTest::addColumn<QString>("set");
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        for (const QStringList& r : referenceRows("swedish.txt"))
            QTest::addRow("%s as %s at %s %s", qPrintable(r[0]), qPrintable(r[1]), qPrintable(r[2]),
                          qPrintable(r[3]))
                << r[0] << r[2].toDouble() << r[3].toDouble() << r[4].toDouble() << r[5].toDouble();
    }

    void projectionAgreesWithProj()
    {
        QFETCH(QString, set);
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(double, x);
        QFETCH(double, y);
        const GaussKrugerProjection projection(set);
        double gx = 0, gy = 0, glat = 0, glon = 0;
        QVERIFY(projection.geodeticToGrid(lat, lon, gx, gy));
        QVERIFY2(std::fabs(gx - x) < 0.001 && std::fabs(gy - y) < 0.001, qPrintable(QString::number(gx - x)));
        QVERIFY(projection.gridToGeodetic(x, y, glat, glon));
        QVERIFY(std::fabs(glat - lat) < 1e-8 && std::fabs(glon - lon) < 1e-8);
    }

    void parameterSets_data()
    {
        QTest::addColumn<QString>("set");
        QTest::addColumn<double>("axis");
        QTest::addColumn<double>("meridian");
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("falseEasting");
        QTest::newRow("SWEREF 99 TM has scale 0.9996")
            << QStringLiteral("sweref_99_tm") << 6378137.0 << 15.0 << 0.9996 << 500000.0;
        const char* const local[] = {"1200", "1330", "1500", "1630", "1800", "1415",
                                     "1545", "1715", "1845", "2015", "2145", "2315"};
        for (const char* hhmm : local) {
            const QString name = QStringLiteral("sweref_99_") + QLatin1String(hhmm);
            const double meridian =
                QString::fromLatin1(hhmm).left(2).toInt() + QString::fromLatin1(hhmm).right(2).toInt() / 60.0;
            QTest::addRow("%s is a local zone at its meridian", qPrintable(name))
                << name << 6378137.0 << meridian << 1.0 << 150000.0;
        }
        QTest::newRow("classic RT90 is on Bessel 1841")
            << QStringLiteral("bessel_rt90_2.5_gon_v") << 6377397.155 << 15.808277777777779 << 1.0
            << 1500000.0;
        QTest::newRow("the RT90 emulation is on GRS 80")
            << QStringLiteral("rt90_2.5_gon_v") << 6378137.0 << 15.806284529444445 << 1.00000561024
            << 1500064.274;
    }

    void parameterSets()
    {
        QFETCH(QString, set);
        QFETCH(double, axis);
        QFETCH(double, meridian);
        QFETCH(double, scale);
        QFETCH(double, falseEasting);
        const GaussKrugerProjection projection(set);
        QCOMPARE(projection.axis(), axis);
        QCOMPARE(projection.centralMeridian(), meridian);
        QCOMPARE(projection.scale(), scale);
        QCOMPARE(projection.falseEasting(), falseEasting);
        QCOMPARE(projection.zoneIndex(), -1);
    }

    void unknownSetGivesNonsense()
    {
        GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
        double x = 0, y = 0;
        QVERIFY(projection.geodeticToGrid(59.3293, 18.0686, x, y));
        // Names are compared exactly, so a capital letter makes a set unknown.
        projection.setParameterSet(QStringLiteral("SWEREF_99_TM"));
        QCOMPARE(projection.centralMeridian(), std::numeric_limits<double>::lowest());
        QCOMPARE(projection.scale(), 0.9996);
        QCOMPARE(projection.falseEasting(), 500000.0);
        double nx = x, ny = y;
        if (projection.geodeticToGrid(59.3293, 18.0686, nx, ny))
            QVERIFY(std::fabs(nx - x) > 1000.0 || std::fabs(ny - y) > 1000.0);
    }

    void rt90Zones_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("name");
        QTest::newRow("index 0 is 7.5 gon V") << 0 << QStringLiteral("rt90_7.5_gon_v");
        QTest::newRow("index 1 is 5.0 gon V") << 1 << QStringLiteral("rt90_5.0_gon_v");
        QTest::newRow("index 2 is 2.5 gon V") << 2 << QStringLiteral("rt90_2.5_gon_v");
        QTest::newRow("index 3 is 0.0 gon") << 3 << QStringLiteral("rt90_0.0_gon_v");
        QTest::newRow("index 4 is 2.5 gon O") << 4 << QStringLiteral("rt90_2.5_gon_o");
        QTest::newRow("index 5 is 5.0 gon O") << 5 << QStringLiteral("rt90_5.0_gon_o");
        QTest::newRow("index 6 falls back to 2.5 gon V") << 6 << QStringLiteral("rt90_2.5_gon_v");
        QTest::newRow("index -1 falls back to 2.5 gon V") << -1 << QStringLiteral("rt90_2.5_gon_v");
    }

    void rt90Zones()
    {
        QFETCH(int, index);
        QFETCH(QString, name);
        QCOMPARE(GaussKrugerProjection::rt90ZoneName(index), name);
        GaussKrugerProjection byIndex;
        byIndex.setRt90Zone(index);
        const GaussKrugerProjection byName(name);
        QCOMPARE(byIndex.centralMeridian(), byName.centralMeridian());
        QCOMPARE(byIndex.falseNorthing(), byName.falseNorthing());
        QCOMPARE(byIndex.zoneIndex(), index);
    }

    void nonFiniteInputIsRefused()
    {
        const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
        const double values[] = {kNaN, kInf, -kInf};
        for (double v : values) {
            double a = 7.0, b = 8.0;
            QVERIFY(!projection.geodeticToGrid(v, 15.0, a, b));
            QVERIFY(!projection.geodeticToGrid(60.0, v, a, b));
            QVERIFY(!projection.gridToGeodetic(v, 500000.0, a, b));
            QVERIFY(!projection.gridToGeodetic(6600000.0, v, a, b));
            QCOMPARE(a, 7.0);
            QCOMPARE(b, 8.0);
        }
        // 90 degrees from the central meridian on the equator is at infinity.
        double a = 7.0, b = 8.0;
        QVERIFY(!projection.geodeticToGrid(0.0, 105.0, a, b));
        QVERIFY(!GaussKrugerProjection().geodeticToGrid(59.0, 18.0, a, b) || std::isfinite(a));
    }

    // The RT90 text is the RT90 2.5 gon V emulation (EPSG:3847) to the millimetre.
    void rt90Text()
    {
        int checked = 0;
        for (const QStringList& r : referenceRows("swedish.txt")) {
            if (r[1] != QLatin1String("EPSG:3847"))
                continue;
            QString out;
            QCOMPARE(CoordToRT90String(out, r[3].toDouble(), r[2].toDouble(), TCoordFormatRT90), 0);
            static const QRegularExpression layout(QStringLiteral("^X(\\d{7}\\.\\d{3})Y(\\d{7}\\.\\d{3})$"));
            const QRegularExpressionMatch m = layout.match(out);
            QVERIFY2(m.hasMatch(), qPrintable(out));
            QVERIFY(std::fabs(m.captured(1).toDouble() - r[4].toDouble()) < 0.0015);
            QVERIFY(std::fabs(m.captured(2).toDouble() - r[5].toDouble()) < 0.0015);

            // Back to within the millimetre rounding: 2e-8 degrees.
            double lon = 0, lat = 0;
            QCOMPARE(StringToCoord(out, &lon, &lat, TCoordFormatRT90), 0);
            QVERIFY(std::fabs(lat - r[2].toDouble()) < 2e-8 && std::fabs(lon - r[3].toDouble()) < 2e-8);
            ++checked;
        }
        QVERIFY(checked > 5);
    }

    void rt90TextOutsideTheWorld_data()
    {
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("lat");
        QTest::addColumn<int>("format");
        QTest::newRow("latitude 90.5") << 18.0 << 90.5 << 4;
        QTest::newRow("longitude -180.5") << -180.5 << 59.0 << 4;
        QTest::newRow("NaN latitude") << 18.0 << kNaN << 4;
        QTest::newRow("infinite longitude") << kInf << 59.0 << 4;
        QTest::newRow("the SWEREF99 format") << 18.0 << 59.0 << 5;
        QTest::newRow("the MGRS format") << 18.0 << 59.0 << 1;
    }

    void rt90TextOutsideTheWorld()
    {
        QFETCH(double, lon);
        QFETCH(double, lat);
        QFETCH(int, format);
        QString out = QStringLiteral("stale");
        QVERIFY(CoordToRT90String(out, lon, lat, TCoordFormat(format)) != 0);
        QVERIFY(out.isEmpty());
    }

    void readsRt90Texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("the edit mask's digits without dots") << QStringLiteral("X6580822123Y1628288456");
        QTest::newRow("a blank between the axes") << QStringLiteral("X6580822.123 Y1628288.456");
        QTest::newRow("blanks everywhere and lower case") << QStringLiteral(" x 6580822.123  y 1628288.456 ");
    }

    void readsRt90Texts()
    {
        QFETCH(QString, text);
        QString plain = QStringLiteral("X6580822.123Y1628288.456");
        double lon = 0, lat = 0, plainLon = 0, plainLat = 0;
        QCOMPARE(StringToCoord(plain, &plainLon, &plainLat, TCoordFormatRT90), 0);
        QCOMPARE(StringToCoord(text, &lon, &lat, TCoordFormatRT90), 0);
        QCOMPARE(lon, plainLon);
        QCOMPARE(lat, plainLat);
        QVERIFY(std::fabs(lat - 59.33) < 0.02 && std::fabs(lon - 18.06) < 0.02);
    }

    void refusesUnreadableRt90Texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("format");
        QTest::newRow("empty text") << QString() << 4;
        QTest::newRow("only X") << QStringLiteral("X6580822.123") << 4;
        QTest::newRow("axes swapped") << QStringLiteral("Y1628288.456X6580822.123") << 4;
        QTest::newRow("placeholders of an unfilled mask") << QStringLiteral("X__________Y__________") << 4;
        QTest::newRow("letters for digits") << QStringLiteral("Xabc Ydef") << 4;
        QTest::newRow("SWEREF99 without a semicolon") << QStringLiteral("18.07 59.33") << 5;
        QTest::newRow("SWEREF99 with a word") << QStringLiteral("18.07;north") << 5;
        QTest::newRow("an unreadable MGRS text") << QStringLiteral("33VXX") << 1;
        QTest::newRow("an unknown format") << QStringLiteral("X6580822.123Y1628288.456") << 0;
    }

    void refusesUnreadableRt90Texts()
    {
        QFETCH(QString, text);
        QFETCH(int, format);
        double lon = 7.0, lat = 8.0;
        QVERIFY(StringToCoord(text, &lon, &lat, TCoordFormat(format)) != 0);
        QCOMPARE(lon, 7.0);
        QCOMPARE(lat, 8.0);
        QVERIFY(StringToCoord(text, nullptr, nullptr, TCoordFormat(format)) != 0);
    }

    void sweref99Text_data()
    {
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("lat");
        QTest::addColumn<QString>("text");
        QTest::newRow("Stockholm in shortest form")
            << 18.0686 << 59.3293 << QStringLiteral("18.0686;59.3293");
        QTest::newRow("whole degrees have no decimals") << 15.0 << 60.0 << QStringLiteral("15;60");
        QTest::newRow("small values in exponent form") << -0.5 << 1e-7 << QStringLiteral("-0.5;1e-07");
        QTest::newRow("every digit of a double is kept")
            << 0.1 + 0.2 << 59.0 << QStringLiteral("0.30000000000000004;59");
    }

    void sweref99Text()
    {
        QFETCH(double, lon);
        QFETCH(double, lat);
        QFETCH(QString, text);
        QString out;
        QCOMPARE(CoordToSWEREF99String(out, lon, lat, TCoordFormatSWEREF99), 0);
        QCOMPARE(out, text);
        double backLon = 0, backLat = 0;
        QCOMPARE(StringToCoord(out, &backLon, &backLat, TCoordFormatSWEREF99), 0);
        QCOMPARE(backLon, lon);
        QCOMPARE(backLat, lat);
    }
};

QTEST_APPLESS_MAIN(TestSwedishGrids)
#include "tst_swedishgrids.moc"
