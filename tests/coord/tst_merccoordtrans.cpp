#include "coord/merccoordtrans.h"
#include "coord/utm.h"

#include <QLocale>
#include <QTest>

#include "referencedata.h"

#include <climits>
#include <cmath>
#include <limits>

namespace {

double cosLat(double lat)
{
    return std::cos(lat * M_PI / 180.0);
}

// The 100 km letters and the digits of a reference ("32VNM0537255413"); MGRS zones are
// compared without GeoConvert's zero padding.
QString letters(const QString& ref)
{
    QString head = ref.left(ref.size() - 10);
    if (head.startsWith(QLatin1Char('0')))
        head.remove(0, 1);
    return head;
}

// "ZZB-CR-EEEEE-NNNNN" from a dash-free reference with a two-digit zone.
QString dashed(QString ref)
{
    return ref.insert(3, QLatin1Char('-')).insert(6, QLatin1Char('-')).insert(12, QLatin1Char('-'));
}

} // namespace

class TestMercCoordTrans : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    // Transverse Mercator of PROJ on each grid's ellipsoid and origin (grids 13 to 18
    // with their odd mix of axes and latitude of origin). The series are good to 2 mm
    // within the areas of the reference data (up to 5.5 degrees off the central meridian
    // for Britain and Ireland, 3.5 degrees for UTM); LL2TM adds -5 mm to eastings and +5
    // mm to northings on purpose. TM2LL stops iterating at a 1 mm residual, so 2e-8
    // degrees (2 mm).
    void gridsAgreeWithProj_data()
    {
        QTest::addColumn<int>("grid");
        QTest::addColumn<long>("zoneMeridian");
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("easting");
        QTest::addColumn<double>("northing");
        for (const QStringList& r : referenceRows("tm_grids.txt"))
            QTest::addRow("grid %s at %s %s", qPrintable(r[0]), qPrintable(r[2]), qPrintable(r[3]))
                << r[0].toInt() << r[1].toLong() << r[2].toDouble() << r[3].toDouble() << r[4].toDouble()
                << r[5].toDouble();
    }

    void gridsAgreeWithProj()
    {
        QFETCH(int, grid);
        QFETCH(long, zoneMeridian);
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(double, easting);
        QFETCH(double, northing);
        const CMercCoordTrans t;
        QVERIFY2(std::fabs(t.LL2TM(true, lat, lon, grid, zoneMeridian) - (easting - 0.005)) < 0.002,
                 qPrintable(QString::number(t.LL2TM(true, lat, lon, grid, zoneMeridian) - easting, 'f', 4)));
        QVERIFY2(
            std::fabs(t.LL2TM(false, lat, lon, grid, zoneMeridian) - (northing + 0.005)) < 0.002,
            qPrintable(QString::number(t.LL2TM(false, lat, lon, grid, zoneMeridian) - northing, 'f', 4)));
        // Grids 13 to 18 are known to LL2TM only.
        if (grid >= 13) {
            QCOMPARE(t.TM2LL(true, easting, northing, grid, zoneMeridian), -1.0);
            QCOMPARE(t.TM2LL(false, easting, northing, grid, zoneMeridian), -1.0);
            return;
        }
        QVERIFY(std::fabs(t.TM2LL(true, easting, northing, grid, zoneMeridian) - lat) < 2e-8);
        QVERIFY(std::fabs(t.TM2LL(false, easting, northing, grid, zoneMeridian) - lon) * cosLat(lat) < 2e-8);
    }

    void utmZones_data()
    {
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<long>("meridian");
        QTest::addColumn<long>("zone");
        QTest::newRow("Greenwich on the equator is zone 31") << 0.0 << 0.0 << 3L << 31L;
        QTest::newRow("south-west Norway widens zone 32") << 60.0 << 5.0 << 9L << 32L;
        QTest::newRow("Norway's exception starts at 3 degrees") << 56.0 << 3.0 << 9L << 32L;
        QTest::newRow("Norway's exception ends at 64 degrees") << 64.0 << 5.0 << 3L << 31L;
        QTest::newRow("Svalbard uses zone 33 at 10 degrees") << 75.0 << 10.0 << 15L << 33L;
        QTest::newRow("Svalbard's zones end at 42 degrees") << 75.0 << 42.0 << 45L << 38L;
        QTest::newRow("Svalbard's rule has no upper latitude") << 90.0 << 8.9 << 3L << 31L;
        QTest::newRow("an exact negative multiple of 6 lands further west") << 0.0 << -6.0 << -9L << 29L;
        QTest::newRow("-180 degrees lands in zone 0") << 0.0 << -180.0 << -183L << 0L;
        QTest::newRow("a latitude that truncates to 90 is valid") << 90.9 << 0.5 << 3L << 31L;
        QTest::newRow("a latitude that truncates to 91 is invalid") << 91.0 << 0.0 << -1L << -1L;
        QTest::newRow("a longitude that truncates to 181 is invalid") << 0.0 << -181.2 << -1L << -1L;
        QTest::newRow("NaN is invalid") << kNaN << 0.0 << -1L << -1L;
        QTest::newRow("infinity is invalid") << 0.0 << kInf << -1L << -1L;
    }

    void utmZones()
    {
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(long, meridian);
        QFETCH(long, zone);
        const CMercCoordTrans t;
        QCOMPARE(t.UTMCM(lat, lon), meridian);
        QCOMPARE(t.UTMLongZone(lat, lon), zone);
    }

    void latitudeBands_data()
    {
        QTest::addColumn<double>("lat");
        QTest::addColumn<int>("grid");
        QTest::addColumn<QString>("reference");
        QTest::newRow("the equator is band N") << 0.0 << 4 << QStringLiteral("31N");
        QTest::newRow("just south of the equator is band M") << -0.5 << 4 << QStringLiteral("31M");
        QTest::newRow("80 degrees is band X") << 80.0 << 4 << QStringLiteral("31X");
        QTest::newRow("83.99 degrees is band X") << 83.99 << 4 << QStringLiteral("31X");
        QTest::newRow("71.99 degrees is band W") << 71.99 << 4 << QStringLiteral("31W");
        QTest::newRow("-80 degrees is band C") << -80.0 << 4 << QStringLiteral("31C");
        QTest::newRow("84 degrees is outside MGRS")
            << 84.0 << 4 << QStringLiteral("#LATITUDE OUTSIDE MGRS AREA");
        QTest::newRow("-80.01 degrees is outside MGRS")
            << -80.01 << 10 << QStringLiteral("#LATITUDE OUTSIDE MGRS AREA");
        // Grid 5 has no MGRS limit, which shows the bands beyond it.
        QTest::newRow("84 degrees is band X") << 84.0 << 5 << QStringLiteral("31X");
        QTest::newRow("the north pole is band X") << 90.0 << 5 << QStringLiteral("31X");
        QTest::newRow("the south pole is band A") << -90.0 << 5 << QStringLiteral("31A");
    }

    void latitudeBands()
    {
        QFETCH(double, lat);
        QFETCH(int, grid);
        QFETCH(QString, reference);
        const QString ref = CMercCoordTrans().LL2GR(lat, 2.0, grid);
        QVERIFY2(ref.startsWith(reference), qPrintable(ref));
    }

    // GeoConvert's reference (millimetres) of the position nudged as LL2GR nudges it;
    // LL2GR rounds to the metre after its -5/+5 mm offsets, so the digits are within 0.51
    // m. GR2LL reads GeoConvert's metre reference as the south-west corner of its square.
    void mgrsAgreesWithGeoConvert_data()
    {
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<QString>("geoConvert");
        QTest::addColumn<double>("cornerLat");
        QTest::addColumn<double>("cornerLon");
        for (const QStringList& r : referenceRows("mgrs.txt"))
            QTest::addRow("%s at %s %s", qPrintable(r[2]), qPrintable(r[0]), qPrintable(r[1]))
                << r[0].toDouble() << r[1].toDouble() << r[2] << r[3].toDouble() << r[4].toDouble();
    }

    void mgrsAgreesWithGeoConvert()
    {
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(QString, geoConvert);
        QFETCH(double, cornerLat);
        QFETCH(double, cornerLon);
        const CMercCoordTrans t;
        const QString ref = t.LL2GR(lat, lon, 4);
        const QString geoHead = geoConvert.left(geoConvert.size() - 16);
        QCOMPARE(letters(ref), geoHead.startsWith(QLatin1Char('0')) ? geoHead.mid(1) : geoHead);
        const double geoE = geoConvert.right(16).left(8).toDouble() / 1000.0;
        const double geoN = geoConvert.right(8).toDouble() / 1000.0;
        QVERIFY2(std::fabs(ref.right(10).left(5).toDouble() - geoE) < 0.51, qPrintable(ref));
        QVERIFY2(std::fabs(ref.right(5).toDouble() - geoN) < 0.51, qPrintable(ref));

        const QString metres = geoHead + geoConvert.right(16).left(5) + geoConvert.right(8).left(5);
        QVERIFY(std::fabs(t.GR2LL(true, metres, 4) - cornerLat) < 2e-8);
        QVERIFY(std::fabs(t.GR2LL(false, metres, 4) - cornerLon) * cosLat(lat) < 2e-8);
    }

    void gr2llReadsVariants_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("grid");
        QTest::addColumn<QString>("same");
        QTest::newRow("blanks between MGRS groups")
            << QStringLiteral("32V NM 05372 55413") << 4 << QStringLiteral("32VNM0537255413");
        QTest::newRow("dashes and lower case")
            << QStringLiteral("32v-nm-05372-55413") << 4 << QStringLiteral("32VNM0537255413");
        QTest::newRow("a zero-padded zone")
            << QStringLiteral("06VXJ2848142125") << 4 << QStringLiteral("6VXJ2848142125");
        QTest::newRow("8 digits are the corner of the 10 m square")
            << QStringLiteral("32VNM05375541") << 4 << QStringLiteral("32VNM0537055410");
        QTest::newRow("2 digits are the corner of the 10 km square")
            << QStringLiteral("32VNM05") << 4 << QStringLiteral("32VNM0000050000");
        QTest::newRow("no digits are the corner of the 100 km square")
            << QStringLiteral("32VNM") << 4 << QStringLiteral("32VNM0000000000");
        QTest::newRow("southern MGRS with blanks")
            << QStringLiteral("33H VE 12345 67890") << 3 << QStringLiteral("33HVE1234567890");
        QTest::newRow("British reference with blanks")
            << QStringLiteral("tg 51409 13177") << 1 << QStringLiteral("TG5140913177");
        QTest::newRow("British reference with 6 digits")
            << QStringLiteral("TG514131") << 1 << QStringLiteral("TG5140013100");
        QTest::newRow("Irish reference with a dash")
            << QStringLiteral("O-15904-34671") << 2 << QStringLiteral("O1590434671");
    }

    void gr2llReadsVariants()
    {
        QFETCH(QString, text);
        QFETCH(int, grid);
        QFETCH(QString, same);
        const CMercCoordTrans t;
        QVERIFY(t.GR2LL(true, same, grid) != -1.0);
        QCOMPARE(t.GR2LL(true, text, grid), t.GR2LL(true, same, grid));
        QCOMPARE(t.GR2LL(false, text, grid), t.GR2LL(false, same, grid));
    }

    void gr2llRefusesUnreadableText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("grid");
        QTest::newRow("empty text") << QString() << 4;
        QTest::newRow("an error text of LL2GR") << QStringLiteral("#LATITUDE OUTSIDE MGRS AREA") << 4;
        QTest::newRow("an odd number of digits") << QStringLiteral("32VNM053725541") << 4;
        QTest::newRow("twelve digits") << QStringLiteral("32VNM053725541300") << 4;
        QTest::newRow("zone 61") << QStringLiteral("61VNM0537255413") << 4;
        QTest::newRow("zone 0") << QStringLiteral("0VNM0537255413") << 4;
        QTest::newRow("band A is not MGRS") << QStringLiteral("32ANM0537255413") << 4;
        QTest::newRow("column letter of another zone's set") << QStringLiteral("32VAM0537255413") << 4;
        QTest::newRow("row letter beyond V") << QStringLiteral("32VNW0537255413") << 4;
        QTest::newRow("the letter I") << QStringLiteral("32VIM0537255413") << 4;
        QTest::newRow("a letter among the digits") << QStringLiteral("32VNM05372X5413") << 4;
        QTest::newRow("a British reference in MGRS") << QStringLiteral("TG5140913177") << 4;
        QTest::newRow("an MGRS reference as British") << QStringLiteral("32VNM0537255413") << 1;
        QTest::newRow("a British first letter that does not exist") << QStringLiteral("AG5140913177") << 1;
        QTest::newRow("an Irish reference with two letters") << QStringLiteral("OO1590434671") << 2;
        QTest::newRow("grid 0") << QStringLiteral("32VNM0537255413") << 0;
        QTest::newRow("grid 5 has no references") << QStringLiteral("32VNM0537255413") << 5;
        QTest::newRow("grid 99") << QStringLiteral("32VNM0537255413") << 99;
    }

    void gr2llRefusesUnreadableText()
    {
        QFETCH(QString, text);
        QFETCH(int, grid);
        QCOMPARE(CMercCoordTrans().GR2LL(true, text, grid), -1.0);
        QCOMPARE(CMercCoordTrans().GR2LL(false, text, grid), -1.0);
    }

    void nationalGridReferences_data()
    {
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<int>("grid");
        QTest::addColumn<QString>("letters");
        QTest::newRow("London is in TQ") << 51.5074 << -0.1278 << 1 << QStringLiteral("TQ");
        QTest::newRow("Edinburgh is in NT") << 55.9533 << -3.1883 << 1 << QStringLiteral("NT");
        QTest::newRow("Lerwick is in HU") << 60.155 << -1.145 << 1 << QStringLiteral("HU");
        QTest::newRow("Dublin is in O") << 53.3498 << -6.2603 << 2 << QStringLiteral("O");
        QTest::newRow("Belfast is in J") << 54.597 << -5.930 << 2 << QStringLiteral("J");
        QTest::newRow("Cork is in W") << 51.897 << -8.470 << 2 << QStringLiteral("W");
        QTest::newRow("Galway is in M") << 53.27 << -9.05 << 2 << QStringLiteral("M");
        QTest::newRow("the Channel is outside the British grid")
            << 45.0 << -2.0 << 1 << QStringLiteral("#OUTSIDE BRITISH GRID AREA");
        QTest::newRow("Scotland is outside the Irish grid")
            << 58.0 << -6.0 << 2 << QStringLiteral("#OUTSIDE IRISH GRID AREA");
        QTest::newRow("latitude 91 is invalid") << 91.5 << 0.0 << 1 << QStringLiteral("#INVALID LATITUDE");
        QTest::newRow("longitude 181 is invalid")
            << 0.0 << 181.5 << 2 << QStringLiteral("#INVALID LONGITUDE");
        QTest::newRow("NaN is an invalid latitude")
            << kNaN << 0.0 << 4 << QStringLiteral("#INVALID LATITUDE");
    }

    void nationalGridReferences()
    {
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(int, grid);
        QFETCH(QString, letters);
        const QString ref = CMercCoordTrans().LL2GR(lat, lon, grid);
        if (letters.startsWith(QLatin1Char('#')))
            QCOMPARE(ref, letters);
        else
            QCOMPARE(ref.left(ref.size() - 10), letters);
    }

    // The digits of British and Irish references against PROJ's grid values, and the way
    // back. LL2GR nudges by 1e-5 degrees east (at most 0.72 m here) and 1e-6 north (0.11
    // m) and rounds to the metre, so 1.4 m.
    void nationalGridsAgreeWithProj()
    {
        const CMercCoordTrans t;
        int checked = 0;
        for (const QStringList& r : referenceRows("tm_grids.txt")) {
            const int grid = r[0].toInt();
            if (grid != 1 && grid != 2)
                continue;
            const double lat = r[2].toDouble(), lon = r[3].toDouble();
            const QString ref = t.LL2GR(lat, lon, grid);
            const double e = std::fmod(r[4].toDouble(), 100000.0), n = std::fmod(r[5].toDouble(), 100000.0);
            QVERIFY2(std::fabs(ref.right(10).left(5).toDouble() - e) < 1.4, qPrintable(ref));
            QVERIFY2(std::fabs(ref.right(5).toDouble() - n) < 1.4, qPrintable(ref));
            QVERIFY2(std::fabs(t.GR2LL(true, ref, grid) - lat) < 1.4 / 111000.0, qPrintable(ref));
            QVERIFY2(std::fabs(t.GR2LL(false, ref, grid) - lon) * cosLat(lat) < 1.4 / 111000.0,
                     qPrintable(ref));
            ++checked;
        }
        QVERIFY(checked > 50);
        // The Ordnance Survey's own worked example: 52d39'27.2531"N 1d43'4.5177"E is E
        // 651409.903 N 313177.270, TG 51409 13177 (nudged 0.68 m east).
        const QString norfolk =
            t.LL2GR(52.0 + 39.0 / 60 + 27.2531 / 3600, 1.0 + 43.0 / 60 + 4.5177 / 3600, 1);
        QCOMPARE(norfolk.left(2), QStringLiteral("TG"));
        QVERIFY(std::fabs(norfolk.mid(2, 5).toDouble() - 51409.903 - 0.68) < 0.51);
        QVERIFY(std::fabs(norfolk.mid(7, 5).toDouble() - 13177.270 - 0.11) < 0.51);
    }

    // The AL lettering shifts the row letter by ten and nothing else. Back within the
    // nudge (up to 1.11 m east) plus the rounding to the metre: 1.7 m.
    void alternativeMgrsLettering()
    {
        const CMercCoordTrans t;
        for (const QStringList& r : referenceRows("mgrs.txt")) {
            const double lat = r[0].toDouble(), lon = r[1].toDouble();
            const QString standard = t.LL2GR(lat, lon, 4);
            const QString alternative = t.LL2GR(lat, lon, -4);
            const int row = standard.size() - 11;
            QCOMPARE(alternative.left(row), standard.left(row));
            QCOMPARE(alternative.mid(row + 1), standard.mid(row + 1));
            const int shifted = (QStringLiteral("ABCDEFGHJKLMNPQRSTUV").indexOf(standard[row]) + 10) % 20;
            QCOMPARE(alternative[row], QStringLiteral("ABCDEFGHJKLMNPQRSTUV")[shifted]);
            QVERIFY(std::fabs(t.GR2LL(true, alternative, -4) - lat) < 1.7 / 111000.0);
            QVERIFY(std::fabs(t.GR2LL(false, alternative, -4) - lon) * cosLat(lat) < 1.7 / 111000.0);
        }
    }

    void unknownGridsAndMeridians()
    {
        const CMercCoordTrans t;
        for (int grid : {0, 19, -19, INT_MIN, INT_MAX}) {
            QCOMPARE(t.LL2TM(true, 62.0, 16.0, grid, 15), -1.0);
            QCOMPARE(t.TM2LL(true, 500000.0, 6800000.0, grid, 15), -1.0);
        }
        QCOMPARE(t.LL2TM(true, 62.0, 16.0, 4, 181), -1.0);
        QCOMPARE(t.LL2TM(false, 62.0, 16.0, 3, LONG_MIN), -1.0);
    }

    void rt90Parameters_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<double>("meridian");
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("falseNorthing");
        QTest::addColumn<double>("falseEasting");
        QTest::newRow("index 0 is 7.5 gon V") << 0 << 11.30625 << 1.000006 << -667.282 << 1500025.141;
        QTest::newRow("index 2 keeps its rounded meridian")
            << 2 << 15.80628333 << 1.00000561024 << -667.711 << 1500064.274;
        QTest::newRow("index 5 is 5.0 gon O") << 5 << 22.55633333 << 1.0000049 << -672.557 << 1500121.846;
        QTest::newRow("index 6 falls back to 0.0 gon")
            << 6 << 18.0563 << 1.0000054 << -668.844 << 1500083.521;
        QTest::newRow("index -1 falls back to 0.0 gon")
            << -1 << 18.0563 << 1.0000054 << -668.844 << 1500083.521;
    }

    void rt90Parameters()
    {
        QFETCH(int, index);
        QFETCH(double, meridian);
        QFETCH(double, scale);
        QFETCH(double, falseNorthing);
        QFETCH(double, falseEasting);
        double m = 0, s = 0, n = 0, e = 0;
        QCOMPARE(CMercCoordTrans::GetRT90param(index, m, s, n, e), 1.0);
        QCOMPARE(m, meridian);
        QCOMPARE(s, scale);
        QCOMPARE(n, falseNorthing);
        QCOMPARE(e, falseEasting);
    }

    // The same 7-parameter shifts through cs2cs agree to 1e-9 degrees; the way back drops
    // the height the shift gives (tens of metres), which tilts the normal: 5 mm.
    void datumShiftsAgreeWithProj()
    {
        const CMercCoordTrans t;
        const QList<QStringList> rows = referenceRows("datum.txt");
        QVERIFY(rows.size() >= 24);
        for (const QStringList& r : rows) {
            const int datum = r[0].toInt();
            const double lat = r[1].toDouble(), lon = r[2].toDouble();
            const double wgsLat = r[3].toDouble(), wgsLon = r[4].toDouble();
            QVERIFY(std::fabs(t.ToWGS84(true, lat, lon, datum, 0) - wgsLat) < 1e-9);
            QVERIFY(std::fabs(t.ToWGS84(false, lat, lon, datum, 0) - wgsLon) < 1e-9);
            QVERIFY(std::fabs(t.FromWGS84(true, wgsLat, wgsLon, datum, 0) - lat) < 5e-8);
            QVERIFY(std::fabs(t.FromWGS84(false, wgsLat, wgsLon, datum, 0) - lon) < 5e-8);
        }
    }

    void datumNumbers_data()
    {
        QTest::addColumn<int>("datum");
        QTest::addColumn<double>("lat");
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("wgsLat");
        QTest::addColumn<double>("wgsLon");
        QTest::newRow("SWEREF99 is WGS-84") << 12 << 59.3293 << 18.0686 << 59.3293 << 18.0686;
        QTest::newRow("WGS-84 is itself") << 4 << -33.9 << 151.2 << -33.9 << 151.2;
        QTest::newRow("datum 0 is unknown") << 0 << 59.0 << 18.0 << -1.0 << -1.0;
        QTest::newRow("datum 3 is unknown") << 3 << 59.0 << 18.0 << -1.0 << -1.0;
        QTest::newRow("a negative datum is unknown") << -12 << 59.0 << 18.0 << -1.0 << -1.0;
        QTest::newRow("NaN is refused") << 12 << kNaN << 18.0 << -1.0 << -1.0;
        QTest::newRow("infinity is refused by RT90") << 5 << 59.0 << kInf << -1.0 << -1.0;
        QTest::newRow("latitude beyond the pole is refused by RT90") << 5 << 90.5 << 18.0 << -1.0 << -1.0;
    }

    void datumNumbers()
    {
        QFETCH(int, datum);
        QFETCH(double, lat);
        QFETCH(double, lon);
        QFETCH(double, wgsLat);
        QFETCH(double, wgsLon);
        const CMercCoordTrans t;
        QCOMPARE(t.ToWGS84(true, lat, lon, datum, 0), wgsLat);
        QCOMPARE(t.ToWGS84(false, lat, lon, datum, 0), wgsLon);
        QCOMPARE(t.FromWGS84(true, lat, lon, datum, 0), wgsLat);
        QCOMPARE(t.FromWGS84(false, lat, lon, datum, 0), wgsLon);
    }

    void coordToString_data()
    {
        QTest::addColumn<double>("lon");
        QTest::addColumn<double>("lat");
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("expected");
        const CMercCoordTrans t;
        QTest::newRow("MGRS gets dashes between its groups")
            << 18.0686 << 59.3293 << 1 << 0 << dashed(t.LL2GR(59.3293, 18.0686, 4));
        QTest::newRow("MGRS zones are padded to two digits")
            << -147.0 << 61.2 << 1 << 0 << dashed(QLatin1Char('0') + t.LL2GR(61.2, -147.0, 4));
        QTest::newRow("MGRS outside its area is the error text")
            << 10.0 << 85.0 << 1 << 1 << QStringLiteral("#LATITUDE OUTSIDE MGRS AREA");
        QTest::newRow("British grid is the reference of LL2GR")
            << -0.1278 << 51.5074 << 3 << 0 << t.LL2GR(51.5074, -0.1278, 1);
        QTest::newRow("Irish grid is the reference of LL2GR")
            << -6.2603 << 53.3498 << 6 << 0 << t.LL2GR(53.3498, -6.2603, 2);
        QTest::newRow("British grid outside its area fails")
            << 10.0 << 10.0 << 3 << 1 << QStringLiteral("#OUTSIDE BRITISH GRID AREA");
        QTest::newRow("SWEREF99 is longitude;latitude")
            << 18.0686 << 59.3293 << 5 << 0 << QStringLiteral("18.0686;59.3293");
        QTest::newRow("format 0 is unknown") << 18.0 << 59.0 << 0 << 1 << QString();
        QTest::newRow("format 99 is unknown") << 18.0 << 59.0 << 99 << 1 << QString();
    }

    void coordToString()
    {
        QFETCH(double, lon);
        QFETCH(double, lat);
        QFETCH(int, format);
        QFETCH(int, status);
        QFETCH(QString, expected);
        QString out = QStringLiteral("stale");
        QCOMPARE(CoordToString(out, lon, lat, TCoordFormat(format)) != 0, status != 0);
        QCOMPARE(out, expected);
    }

    // Every grid, zone meridian and hostile number: -1.0 or a finite value, "#" texts or
    // references, never a crash or a hang.
    void badInputGivesSentinelsOrFiniteValues()
    {
        const double values[] = {kNaN, kInf, -kInf, 1e300, -1e300, 9.3e18, 90.9, -180.9, 0.0, 45.0, 1e7};
        const long meridians[] = {LONG_MIN, -181, -3, 0, 9, 181, LONG_MAX};
        const CMercCoordTrans t;
        for (int grid = -20; grid <= 20; ++grid)
            for (double a : values)
                for (double b : values) {
                    for (long m : meridians)
                        for (bool which : {true, false}) {
                            const double ll = t.LL2TM(which, a, b, grid, m);
                            const double tm = t.TM2LL(which, a, b, grid, m);
                            QVERIFY(ll == -1.0 || std::isfinite(ll));
                            QVERIFY(tm == -1.0 || std::isfinite(tm));
                        }
                    const QString ref = t.LL2GR(a, b, grid);
                    QVERIFY(!ref.isEmpty());
                    const double back = t.GR2LL(true, ref, grid);
                    QVERIFY(back == -1.0 || std::isfinite(back));
                    QVERIFY(std::isfinite(t.ToWGS84(true, a, b, grid, 0)));
                    QVERIFY(std::isfinite(t.FromWGS84(false, a, b, grid, 0)));
                    QVERIFY(std::labs(t.UTMCM(a, b)) <= 183);
                    QVERIFY(t.UTMLongZone(a, b) >= -1 && t.UTMLongZone(a, b) <= 61);
                }
    }
};

QTEST_APPLESS_MAIN(TestMercCoordTrans)
#include "tst_merccoordtrans.moc"
