#include "coord/swedishgrids.h"

#include <QRegularExpression>
#include <QTest>

#include "referencedata.h"

#include <cmath>
#include <limits>

class TestSwedishGrids : public QObject
{
    Q_OBJECT

private slots:
    // cs2cs with EPSG:3006 (SWEREF 99 TM), 3007-3018 (local zones), 3845-3850 (RT90
    // emulation on SWEREF 99) and 3019-3024 (RT90 on Bessel). Krueger's series to n^4 is
    // good to 0.1 mm over Sweden: 1 mm and 1e-8 degrees. The RT90 text is the 2.5 gon V
    // emulation (EPSG:3847) to the millimetre, and reads back to 2e-8 degrees.
    void agreesWithProj()
    {
        static const QRegularExpression layout(QStringLiteral("^X(\\d{7}\\.\\d{3})Y(\\d{7}\\.\\d{3})$"));
        for (const QStringList& r : referenceRows("swedish.txt")) {
            const double lat = r[2].toDouble(), lon = r[3].toDouble(), x = r[4].toDouble(),
                         y = r[5].toDouble();
            const QByteArray row = r.join(QLatin1Char(' ')).toLatin1();
            const GaussKrugerProjection projection(r[0]);
            double gx = 0, gy = 0, glat = 0, glon = 0;
            QVERIFY(projection.geodeticToGrid(lat, lon, gx, gy) &&
                    projection.gridToGeodetic(x, y, glat, glon));
            QVERIFY2(within(gx, x, 0.001) && within(gy, y, 0.001), row);
            QVERIFY2(within(glat, lat, 1e-8) && within(glon, lon, 1e-8), row);
            if (r[1] != QLatin1String("EPSG:3847"))
                continue;
            QString text;
            QCOMPARE(CoordToRT90String(text, lon, lat, TCoordFormatRT90), 0);
            const QRegularExpressionMatch m = layout.match(text);
            QVERIFY2(m.hasMatch() && within(m.captured(1).toDouble(), x, 0.0015), qPrintable(text));
            QVERIFY2(within(m.captured(2).toDouble(), y, 0.0015), qPrintable(text));
            QCOMPARE(StringToCoord(text, &glon, &glat, TCoordFormatRT90), 0);
            QVERIFY2(within(glat, lat, 2e-8) && within(glon, lon, 2e-8), row);
        }
    }

    // PROJ's data covers every set; names are compared exactly, and an unknown one keeps
    // the rest of the set but puts the meridian at the lowest double, giving nonsense rather
    // than an error. RT90 zone indexes outside 0 to 5 fall back to 2.5 gon V here, but to
    // 0.0 gon in CMercCoordTrans::GetRT90param (whose rows grids 13 to 18 check against PROJ).
    void parameterSets()
    {
        GaussKrugerProjection p(QStringLiteral("sweref_99_tm"));
        double x = 0, y = 0, nx = 0, ny = 0;
        QVERIFY(p.geodeticToGrid(59.3293, 18.0686, x, y));
        p.setParameterSet(QStringLiteral("SWEREF_99_TM"));
        QVERIFY(p.centralMeridian() == std::numeric_limits<double>::lowest() && p.scale() == 0.9996);
        QVERIFY(!p.geodeticToGrid(59.3293, 18.0686, nx, ny) || !within(nx, x, 1000.0) ||
                !within(ny, y, 1000.0));
        const double rt90Meridian = GaussKrugerProjection(QStringLiteral("rt90_2.5_gon_v")).centralMeridian();
        double m, s, n, e;
        for (int index : {6, -1}) {
            p.setRt90Zone(index);
            QVERIFY(p.zoneIndex() == index && p.centralMeridian() == rt90Meridian);
            QVERIFY(CMercCoordTrans::GetRT90param(index, m, s, n, e) == 1.0 && m == 18.0563 && n == -668.844);
        }
    }

    // The RT90 text reads also without dots, with blanks and in lower case; SWEREF99 goes
    // out in the shortest form that reads back exactly.
    void texts()
    {
        double plainLon = 1, plainLat = 1, lon = 0, lat = 0;
        QString text = QStringLiteral("X6580822.123Y1628288.456");
        QCOMPARE(StringToCoord(text, &plainLon, &plainLat, TCoordFormatRT90), 0);
        for (QString variant : {"X6580822123Y1628288456", " x 6580822.123  y 1628288.456 "}) {
            QCOMPARE(StringToCoord(variant, &lon, &lat, TCoordFormatRT90), 0);
            QVERIFY2(lon == plainLon && lat == plainLat, qPrintable(variant));
        }
        QCOMPARE(CoordToSWEREF99String(text, 0.1 + 0.2, 1e-7, TCoordFormatSWEREF99), 0);
        QCOMPARE(text, QStringLiteral("0.30000000000000004;1e-07"));
        QVERIFY(StringToCoord(text, &lon, &lat, TCoordFormatSWEREF99) == 0 && lon == 0.1 + 0.2 &&
                lat == 1e-7);
    }

    // Failures leave the outputs as they were.
    void badInputIsRefused()
    {
        for (const char* t : {"", "X6580822.123", "Y1628288.456X6580822.123", "X__________Y__________",
                              "18.07 59.33", "18.07;north", "33VXX"})
            for (int format : {0, 1, 4, 5}) {
                QString text = QLatin1String(t);
                double lon = 7.0, lat = 8.0;
                QVERIFY2(StringToCoord(text, &lon, &lat, TCoordFormat(format)) != 0 && lon == 7.0 &&
                             lat == 8.0,
                         t);
                QVERIFY(StringToCoord(text, nullptr, nullptr, TCoordFormat(format)) != 0);
            }
        const GaussKrugerProjection tm(QStringLiteral("sweref_99_tm"));
        double a = 7.0, b = 8.0;
        QString out = QStringLiteral("stale");
        for (double v : {kNaN, kInf, -kInf}) {
            QVERIFY(!tm.geodeticToGrid(v, 15.0, a, b) && !tm.geodeticToGrid(60.0, v, a, b));
            QVERIFY(!tm.gridToGeodetic(v, 5e5, a, b) && !tm.gridToGeodetic(6.6e6, v, a, b));
            QVERIFY(CoordToRT90String(out, 18.0, v, TCoordFormatRT90) != 0 && out.isEmpty());
        }
        QVERIFY(!tm.geodeticToGrid(0.0, 105.0, a, b) && a == 7.0 && b == 8.0); // 90 degrees off the meridian
        QVERIFY(CoordToSWEREF99String(out, kNaN, 59.0, TCoordFormatSWEREF99) != 0 && out.isEmpty());
        QVERIFY(CoordToRT90String(out, 18.0, 59.0, TCoordFormatSWEREF99) != 0);
    }
};

QTEST_APPLESS_MAIN(TestSwedishGrids)
#include "tst_swedishgrids.moc"
