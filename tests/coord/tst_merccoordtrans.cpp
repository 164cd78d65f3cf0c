#include "coord/merccoordtrans.h"
#include "coord/utm.h"

#include <QTest>
#include <QVector>

#include "referencedata.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

// Longitude differences as distances along the parallel, in degrees of latitude.
const auto lonError = [](double a, double b, double lat) { return std::fabs(a - b) * std::cos(lat / 57.3); };

// name, latitude, longitude, UTMCM, UTMLongZone, LLtoUTM's zone
const std::tuple<const char*, double, double, long, long, const char*> kZones[] = {
    {"south-west Norway widens zone 32", 60.0, 5.0, 9, 32, "32V"},
    {"Svalbard at 10 degrees is zone 33", 75.0, 10.0, 15, 33, "33X"},
    {"UTMCM's Svalbard ends at 42 degrees", 75.0, 42.0, 45, 38, "38X"},
    {"UTMCM's Svalbard has no upper latitude", 90.0, 8.9, 3, 31, "32Z"},
    {"an exact negative multiple of 6 lands further west", 0.0, -6.0, -9, 29, "30N"},
    {"LLtoUTM wraps 190 degrees to zone 2", -0.5, 190.0, -1, -1, "2M"},
};

// name, latitude, longitude, grid, start of LL2GR's reference or its whole error text
const std::tuple<const char*, double, double, int, const char*> kReferences[] = {
    {"London is in TQ", 51.5074, -0.1278, 1, "TQ"},
    {"Dublin is in O", 53.3498, -6.2603, 2, "O"},
    {"the equator is band N", 0.0, 2.0, 4, "31N"},
    {"-80 degrees is band C", -80.0, 2.0, 4, "31C"},
    {"83.99 degrees is band X", 83.99, 2.0, 4, "31X"},
    {"84 degrees is outside MGRS", 84.0, 2.0, 4, "#LATITUDE OUTSIDE MGRS AREA"},
    {"grid 5 has no MGRS limit: 84 degrees is X", 84.0, 2.0, 5, "31X"},
    {"the Channel is outside the British grid", 45.0, -2.0, 1, "#OUTSIDE BRITISH GRID AREA"},
    {"Scotland is outside the Irish grid", 58.0, -6.0, 2, "#OUTSIDE IRISH GRID AREA"},
    {"latitude 91 is invalid", 91.5, 0.0, 1, "#INVALID LATITUDE"},
    {"longitude 181 is invalid", 0.0, 181.5, 2, "#INVALID LONGITUDE"},
    {"an unknown grid far off zone 31 is Invalid", 10.0, 2.0, 0, "Invalid"},
};

// name, text, grid, the plain reference it reads as (empty: unreadable)
const std::tuple<const char*, const char*, int, const char*> kVariants[] = {
    {"blanks, dashes, lower case", "32v nm-05372 55413", 4, "32VNM0537255413"},
    {"no digits: 100 km corner", "32VNM", 4, "32VNM0000000000"},
    {"British with 6 digits", "tg 514 131", 1, "TG5140013100"},
    {"Irish with a dash", "O-15904-34671", 2, "O1590434671"},
    {"odd digit count", "32VNM053725541", 4, ""},
    {"zone 61", "61VNM0537255413", 4, ""},
    {"band A is not MGRS", "32ANM0537255413", 4, ""},
    {"column of another zone", "32VAM0537255413", 4, ""},
    {"MGRS as British", "32VNM0537255413", 1, ""},
};

} // namespace

class TestMercCoordTrans : public QObject
{
    Q_OBJECT

private slots:
    // cs2cs +proj=tmerc on each grid's ellipsoid and origin (grids 13 to 18 with their
    // odd mix of axes and latitude of origin): the series are good to 2 mm within the
    // data's areas once LL2TM's deliberate -5 mm easting and +5 mm northing are taken off.
    // TM2LL stops iterating at a 1 mm residual: 2e-8 degrees. British and Irish references
    // carry the nudge (up to 0.72 m east, 0.11 m north) and the rounding to the metre: 1.4 m.
    void gridsAgreeWithProj()
    {
        const CMercCoordTrans t;
        for (const QStringList& r : referenceRows("tm_grids.txt")) {
            const int grid = r[0].toInt();
            const long cm = r[1].toLong();
            const double lat = r[2].toDouble(), lon = r[3].toDouble(), e = r[4].toDouble(),
                         n = r[5].toDouble();
            const QByteArray row = r.join(QLatin1Char(' ')).toLatin1();
            QVERIFY2(within(t.LL2TM(true, lat, lon, grid, cm), e - 0.005, 0.002), row);
            QVERIFY2(within(t.LL2TM(false, lat, lon, grid, cm), n + 0.005, 0.002), row);
            if (grid >= 13) { // known to LL2TM only
                QCOMPARE(t.TM2LL(true, e, n, grid, cm), -1.0);
                continue;
            }
            QVERIFY2(within(t.TM2LL(true, e, n, grid, cm), lat, 2e-8), row);
            QVERIFY2(lonError(t.TM2LL(false, e, n, grid, cm), lon, lat) < 2e-8, row);
            if (grid > 2)
                continue;
            const QString ref = t.LL2GR(lat, lon, grid);
            QVERIFY2(within(ref.right(10).left(5).toDouble(), std::fmod(e, 1e5), 1.4), row);
            QVERIFY2(within(ref.right(5).toDouble(), std::fmod(n, 1e5), 1.4), row);
            QVERIFY2(within(t.GR2LL(true, ref, grid), lat, 1.4 / 111000.0), row);
            QVERIFY2(lonError(t.GR2LL(false, ref, grid), lon, lat) < 1.4 / 111000.0, row);
        }
        // The Ordnance Survey's worked example: 52d39'27.2531"N 1d43'4.5177"E is TG 51409.903
        // 13177.270, here nudged 0.68 m east and 0.11 m north.
        const QString norfolk = t.LL2GR(52 + 39 / 60.0 + 27.2531 / 3600, 1 + 43 / 60.0 + 4.5177 / 3600, 1);
        QCOMPARE(norfolk.left(2), QStringLiteral("TG"));
        QVERIFY(within(norfolk.mid(2, 5).toDouble(), 51410.583, 0.51));
        QVERIFY(within(norfolk.mid(7, 5).toDouble(), 13177.380, 0.51));
    }

    // cs2cs +proj=utm on the table's radius and e^2. LLtoUTM's rounded degree factor
    // 0.0174532925 moves northings by up to 11 mm at 84 degrees: 12 mm northing, 2 mm
    // easting. The inverse is good to 2e-8 degrees within 3.5 degrees of the central
    // meridian, 5e-7 out to the 6 degrees of the Svalbard zones.
    void utmAgreesWithProj()
    {
        for (const QStringList& r : referenceRows("utm.txt")) {
            const double lat = r[1].toDouble(), lon = r[2].toDouble(), e = r[4].toDouble(),
                         n = r[5].toDouble();
            const QByteArray row = r.join(QLatin1Char(' ')).toLatin1();
            double gn = 0, ge = 0, backLat = 0, backLon = 0;
            QString zone;
            LLtoUTM(r[0].toInt(), lat, lon, gn, ge, zone);
            QCOMPARE(zone.chopped(1), r[3]);
            QVERIFY2(within(ge, e, 0.002) && within(gn, n, 0.012), row);
            UTMtoLL(r[0].toInt(), n, e, zone, backLat, backLon);
            const bool wide = std::fabs(lon - (r[3].toInt() * 6 - 183)) > 3.5;
            QVERIFY2(within(backLat, lat, 2e-8) && lonError(backLon, lon, lat) < (wide ? 5e-7 : 2e-8), row);
        }
    }

    // GeoConvert's millimetre reference of the position nudged as LL2GR nudges it. LL2GR
    // rounds to the metre after its offsets: digits within 0.51 m. GR2LL reads the metre
    // reference as the south-west corner of its square. The alternative lettering (grid
    // -4) shifts the row letter by ten and comes back within the nudge plus rounding.
    void mgrsAgreesWithGeoConvert()
    {
        const CMercCoordTrans t;
        const QString rows = QStringLiteral("ABCDEFGHJKLMNPQRSTUV");
        for (const QStringList& r : referenceRows("mgrs.txt")) {
            const double lat = r[0].toDouble(), lon = r[1].toDouble();
            const QString geo = r[2], head = geo.left(geo.size() - 16);
            const QString ref = t.LL2GR(lat, lon, 4), alt = t.LL2GR(lat, lon, -4);
            QCOMPARE(ref.left(ref.size() - 10), head.startsWith(QLatin1Char('0')) ? head.mid(1) : head);
            QVERIFY2(
                within(ref.right(10).left(5).toDouble(), geo.right(16).left(8).toDouble() / 1000, 0.51) &&
                    within(ref.right(5).toDouble(), geo.right(8).toDouble() / 1000, 0.51),
                qPrintable(geo));
            const QString metres = head + geo.right(16).left(5) + geo.right(8).left(5);
            QVERIFY2(within(t.GR2LL(true, metres, 4), r[3].toDouble(), 2e-8), qPrintable(geo));
            QVERIFY2(lonError(t.GR2LL(false, metres, 4), r[4].toDouble(), lat) < 2e-8, qPrintable(geo));
            const int row = ref.size() - 11;
            QCOMPARE(alt.left(row) + alt.mid(row + 1), ref.left(row) + ref.mid(row + 1));
            QCOMPARE(alt[row], rows[(rows.indexOf(ref[row]) + 10) % 20]);
            QVERIFY(within(t.GR2LL(true, alt, -4), lat, 1.7 / 111000.0));
            QVERIFY(lonError(t.GR2LL(false, alt, -4), lon, lat) < 1.7 / 111000.0);
        }
    }

    // cs2cs with the same 7-parameter shifts: 1e-9 degrees; the way back drops the height
    // the shift gives, which tilts the normal: 5e-8.
    void datumShiftsAgreeWithProj()
    {
        const CMercCoordTrans t;
        for (const QStringList& r : referenceRows("datum.txt")) {
            const int datum = r[0].toInt();
            const double lat = r[1].toDouble(), lon = r[2].toDouble(), wLat = r[3].toDouble(),
                         wLon = r[4].toDouble();
            QVERIFY(within(t.ToWGS84(true, lat, lon, datum, 0), wLat, 1e-9));
            QVERIFY(within(t.ToWGS84(false, lat, lon, datum, 0), wLon, 1e-9));
            QVERIFY(within(t.FromWGS84(true, wLat, wLon, datum, 0), lat, 5e-8));
            QVERIFY(within(t.FromWGS84(false, wLat, wLon, datum, 0), lon, 5e-8));
        }
        QCOMPARE(t.ToWGS84(true, 59.3293, 18.0686, 12, 0), 59.3293); // SWEREF99 is taken as WGS-84
        QCOMPARE(t.ToWGS84(false, 59.3293, 18.0686, 3, 0), -1.0);
    }

    void utmZones_data() { addRows(kZones); }

    void utmZones()
    {
        QFETCH(int, row);
        const auto [name, lat, lon, meridian, zoneNumber, zoneText] = kZones[row];
        double n, e;
        QString zone;
        LLtoUTM(23, lat, lon, n, e, zone);
        QVERIFY(CMercCoordTrans().UTMCM(lat, lon) == meridian &&
                CMercCoordTrans().UTMLongZone(lat, lon) == zoneNumber);
        QCOMPARE(zone, QLatin1String(zoneText));
    }

    void gridReferences_data() { addRows(kReferences); }

    // Error texts stand alone; references are compared by their letters.
    void gridReferences()
    {
        QFETCH(int, row);
        const auto [name, lat, lon, grid, prefix] = kReferences[row];
        const QString ref = CMercCoordTrans().LL2GR(lat, lon, grid);
        const bool error = prefix[0] == '#' || qstrcmp(prefix, "Invalid") == 0;
        QCOMPARE(error ? ref : ref.left(int(qstrlen(prefix))), QLatin1String(prefix));
    }

    void gr2llReadsVariants_data() { addRows(kVariants); }

    // Each text reads as the plain reference beside it, or (none given) not at all.
    void gr2llReadsVariants()
    {
        QFETCH(int, row);
        const auto [name, text, grid, same] = kVariants[row];
        const CMercCoordTrans t;
        const double lat = *same ? t.GR2LL(true, QLatin1String(same), grid) : -1.0;
        const double lon = *same ? t.GR2LL(false, QLatin1String(same), grid) : -1.0;
        QVERIFY(!*same || (lat != -1.0 && lon != -1.0));
        QCOMPARE(t.GR2LL(true, QLatin1String(text), grid), lat);
        QCOMPARE(t.GR2LL(false, QLatin1String(text), grid), lon);
        double bothLat, bothLon;
        QVERIFY(t.GR2LL(QLatin1String(text), grid, bothLat, bothLon) == bool(*same) && bothLat == lat &&
                bothLon == lon);
    }

    // Every grid (or ellipsoid or datum), meridian and hostile number: -1.0 or a finite
    // value, "#" texts or references, never a crash or a hang.
    void badInputGivesSentinels()
    {
        const double values[] = {kNaN, kInf, -kInf, 1e300, -1e300, 9.3e18, 90.9, -180.9, 0.0, 45.0, 1e7};
        const CMercCoordTrans t;
        for (int grid : {INT_MIN, -19, -4, -1, 0, 1, 2, 3, 4, 5, 9, 12, 13, 18, 19, INT_MAX})
            for (double a : values)
                for (double b : values) {
                    double n, e, lat = 0, lon = 0;
                    QString zone;
                    LLtoUTM(grid, a, b, n, e, zone);
                    UTMtoLL(grid, a, b, zone, lat, lon);
                    QVector<double> out = {n, e, lat, lon, t.GR2LL(true, t.LL2GR(a, b, grid), grid)};
                    out << t.ToWGS84(true, a, b, grid, 0) << t.FromWGS84(false, a, b, grid, 0);
                    for (long m : {LONG_MIN, -181L, 0L, 9L, 181L, LONG_MAX})
                        out << t.LL2TM(true, a, b, grid, m) << t.LL2TM(false, a, b, grid, m)
                            << t.TM2LL(true, a, b, grid, m) << t.TM2LL(false, a, b, grid, m);
                    QVERIFY(std::all_of(out.begin(), out.end(), [](double v) { return std::isfinite(v); }));
                    QVERIFY(!zone.startsWith(QLatin1Char('#')) || (n == -1.0 && e == -1.0));
                }
        for (const char* zone : {"", "32", "V", "0V", "61V", "3212"}) {
            double lat = 0, lon = 0;
            UTMtoLL(23, 6e6, 5e5, QLatin1String(zone), lat, lon);
            QVERIFY(lat == -1.0 && lon == -1.0);
        }
    }
};

QTEST_APPLESS_MAIN(TestMercCoordTrans)
#include "tst_merccoordtrans.moc"
