#include "coord/utm.h"

#include <QTest>

#include "referencedata.h"

#include <cmath>
#include <limits>

class TestUtm : public QObject
{
    Q_OBJECT

private slots:
    // cs2cs +proj=utm on WGS-84 (ellipsoid 23) and on the table's own radius and e^2 (14,
    // 5). The rounded degree factor 0.0174532925 of LLtoUTM moves northings by up to 11
    // mm at 84 degrees, the series add below 1 mm: 12 mm northing, 2 mm easting. The
    // inverse series is good to 2e-8 degrees within 3.5 degrees of the central meridian
    // and 5e-7 degrees (5 cm) out to the 6 degrees of the Svalbard zones.
    void agreesWithProj_data()
    {
        QTest::addColumn<int>("ellipsoid");
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<int>("zone");
        QTest::addColumn<double>("easting");
        QTest::addColumn<double>("northing");
        for (const QStringList& r : referenceRows("utm.txt"))
            QTest::addRow("ellipsoid %s at %s %s", qPrintable(r[0]), qPrintable(r[1]), qPrintable(r[2]))
                << r[0].toInt() << r[1].toDouble() << r[2].toDouble() << r[3].toInt() << r[4].toDouble()
                << r[5].toDouble();
    }

    void agreesWithProj()
    {
        QFETCH(int, ellipsoid);
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(int, zone);
        QFETCH(double, easting);
        QFETCH(double, northing);
        double n = 0, e = 0;
        QString z;
        LLtoUTM(ellipsoid, lat, lon, n, e, z);
        QCOMPARE(z.chopped(1).toInt(), zone);
        QVERIFY2(std::fabs(e - easting) < 0.002, qPrintable(QString::number(e - easting)));
        QVERIFY2(std::fabs(n - northing) < 0.012, qPrintable(QString::number(n - northing)));

        double backLat = 0, backLon = 0;
        UTMtoLL(ellipsoid, northing, easting, z, backLat, backLon);
        const bool wide = std::fabs(lon - (zone * 6 - 183)) > 3.5;
        QVERIFY(std::fabs(backLat - lat) < 2e-8);
        QVERIFY(std::fabs(backLon - lon) * std::cos(lat * M_PI / 180.0) < (wide ? 5e-7 : 2e-8));
    }

    // GeoConvert's MGRS references begin with zone and band (zero-padded zone).
    void zonesAndBandsAgreeWithGeoConvert()
    {
        int checked = 0;
        for (const QStringList& r : referenceRows("mgrs.txt")) {
            double n, e;
            QString zone;
            LLtoUTM(23, r[0].toDouble(), r[1].toDouble(), n, e, zone);
            QString expected = r[2].left(r[2].size() - 18);
            if (expected.startsWith(QLatin1Char('0')))
                expected.remove(0, 1);
            QCOMPARE(zone, expected);
            ++checked;
        }
        QVERIFY(checked > 50);
    }

    void zoneExceptions_data()
    {
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<QString>("zone");
        QTest::newRow("south-west Norway is zone 32") << 60.5 << 5.5 << QStringLiteral("32V");
        QTest::newRow("Norway's exception ends at 64 degrees") << 64.0 << 5.5 << QStringLiteral("31W");
        QTest::newRow("Svalbard at 10 degrees is zone 33") << 75.0 << 10.0 << QStringLiteral("33X");
        QTest::newRow("Svalbard at 20.9 degrees is zone 33") << 78.2 << 20.9 << QStringLiteral("33X");
        QTest::newRow("Svalbard at 35 degrees is zone 37") << 73.0 << 35.0 << QStringLiteral("37X");
        QTest::newRow("Svalbard's rule ends at 84 degrees") << 84.5 << 10.0 << QStringLiteral("32Z");
        QTest::newRow("south of -80 degrees is band Z") << -85.0 << 0.5 << QStringLiteral("31Z");
        QTest::newRow("180 degrees wraps to zone 1") << 0.5 << 180.0 << QStringLiteral("1N");
        QTest::newRow("190 degrees wraps to zone 2") << -0.5 << 190.0 << QStringLiteral("2M");
        QTest::newRow("-190 degrees stays west of zone 1") << 10.0 << -190.0 << QStringLiteral("0P");
    }

    void zoneExceptions()
    {
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(QString, zone);
        double n, e;
        QString z;
        LLtoUTM(23, lat, lon, n, e, z);
        QCOMPARE(z, zone);
        QVERIFY(std::isfinite(n) && std::isfinite(e));
    }

    void roundTripOnEveryEllipsoid()
    {
        const double positions[][2] = {
            {59.33, 18.07}, {-33.87, 151.21}, {0.1, -78.5}, {78.2, 15.6}, {-54.8, -68.3}};
        for (int ellipsoid = 1; ellipsoid < UtmEllipsoidCount; ++ellipsoid)
            for (const auto& p : positions) {
                double n, e, lat, lon;
                QString zone;
                LLtoUTM(ellipsoid, p[0], p[1], n, e, zone);
                UTMtoLL(ellipsoid, n, e, zone, lat, lon);
                // The forward degree factor is rounded, the inverse one is not: 1e-7 degrees.
                QVERIFY2(std::fabs(lat - p[0]) < 1e-7 && std::fabs(lon - p[1]) < 1e-7,
                         GetUtmEllipsoid(ellipsoid)->name);
            }
    }

    void ellipsoidTable()
    {
        QCOMPARE(UtmEllipsoidCount, 24);
        QCOMPARE(QLatin1String(GetUtmEllipsoid(0)->name), QLatin1String("Placeholder"));
        QCOMPARE(QLatin1String(GetUtmEllipsoid(1)->name), QLatin1String("Airy"));
        QCOMPARE(GetUtmEllipsoid(1)->equatorialRadius, 6377563.0);
        QCOMPARE(GetUtmEllipsoid(1)->eccentricitySquared, 0.00667054);
        QCOMPARE(QLatin1String(GetUtmEllipsoid(16)->name), QLatin1String("Modified Airy"));
        QCOMPARE(QLatin1String(GetUtmEllipsoid(23)->name), QLatin1String("WGS-84"));
        QCOMPARE(GetUtmEllipsoid(23)->equatorialRadius, 6378137.0);
        QVERIFY(!GetUtmEllipsoid(24));
        QVERIFY(!GetUtmEllipsoid(-1));
    }

    void invalidPositions_data()
    {
        QTest::addColumn<int>("ellipsoid");
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<QString>("zone");
        QTest::newRow("the placeholder ellipsoid")
            << 0 << 10.0 << 10.0 << QStringLiteral("#INVALID ELLIPSOID");
        QTest::newRow("ellipsoid 24") << 24 << 10.0 << 10.0 << QStringLiteral("#INVALID ELLIPSOID");
        QTest::newRow("a negative ellipsoid") << -5 << 10.0 << 10.0 << QStringLiteral("#INVALID ELLIPSOID");
        QTest::newRow("latitude beyond the pole")
            << 23 << 90.5 << 10.0 << QStringLiteral("#INVALID LATITUDE");
        QTest::newRow("NaN latitude") << 23 << kNaN << 10.0 << QStringLiteral("#INVALID LATITUDE");
        QTest::newRow("infinite longitude") << 23 << 10.0 << -kInf << QStringLiteral("#INVALID LONGITUDE");
        QTest::newRow("NaN longitude") << 23 << 10.0 << kNaN << QStringLiteral("#INVALID LONGITUDE");
    }

    void invalidPositions()
    {
        QFETCH(int, ellipsoid);
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(QString, zone);
        double n = 0, e = 0;
        QString z;
        LLtoUTM(ellipsoid, lat, lon, n, e, z);
        QCOMPARE(z, zone);
        QCOMPARE(n, -1.0);
        QCOMPARE(e, -1.0);

        // A huge but finite longitude is wrapped somewhere: finite, never undefined.
        LLtoUTM(23, 10.0, 1e300, n, e, z);
        QVERIFY(std::isfinite(n) && std::isfinite(e) && !z.startsWith(QLatin1Char('#')));
    }

    void unreadableZones_data()
    {
        QTest::addColumn<int>("ellipsoid");
        QTest::addColumn<QString>("zone");
        QTest::addColumn<double>("northing");
        QTest::newRow("an empty zone") << 23 << QString() << 6000000.0;
        QTest::newRow("no band letter") << 23 << QStringLiteral("32") << 6000000.0;
        QTest::newRow("no zone number") << 23 << QStringLiteral("V") << 6000000.0;
        QTest::newRow("zone 0") << 23 << QStringLiteral("0V") << 6000000.0;
        QTest::newRow("zone 61") << 23 << QStringLiteral("61V") << 6000000.0;
        QTest::newRow("a digit as band") << 23 << QStringLiteral("3212") << 6000000.0;
        QTest::newRow("the placeholder ellipsoid") << 0 << QStringLiteral("32V") << 6000000.0;
        QTest::newRow("NaN northing") << 23 << QStringLiteral("32V") << kNaN;
        QTest::newRow("infinite northing") << 23 << QStringLiteral("32V") << kInf;
    }

    void unreadableZones()
    {
        QFETCH(int, ellipsoid);
        QFETCH(QString, zone);
        QFETCH(double, northing);
        double lat = 0, lon = 0;
        UTMtoLL(ellipsoid, northing, 500000.0, zone, lat, lon);
        QCOMPARE(lat, -1.0);
        QCOMPARE(lon, -1.0);
    }
};

QTEST_APPLESS_MAIN(TestUtm)
#include "tst_utm.moc"
