#include "coord/coord.h"

#include "referencedata.h"

#include <QRegularExpression>
#include <QtTest>

#include <cmath>

namespace {

const auto dms = [](int d, int m, double s) { return d + m / 60.0 + s / 3600.0; };

// Distance of two nearby positions in metres (flat earth, enough to judge a notation's resolution).
double metresBetween(const Coord& a, const Coord& b)
{
    const double dLon = (a.GetLongitude() - b.GetLongitude()) * std::cos(a.GetLatitude() * M_PI / 180.0);
    return std::hypot(a.GetLatitude() - b.GetLatitude(), dLon) * 111320.0;
}

QVector<Coord> grid(double minLat, double maxLat, double step, double minLon = -179.87, double maxLon = 180.0)
{
    QVector<Coord> positions;
    for (double lat = minLat; lat <= maxLat; lat += step)
        for (double lon = minLon; lon <= maxLon; lon += 2 * step)
            positions.append(Coord(lon, lat));
    return positions;
}

// name, notation, longitude, latitude, raw text, formatted text (where given)
using TextRow = std::tuple<const char*, CoordFormat, double, double, const char*, const char*>;

const TextRow kTexts[] = {
    {"decimal: half a degree west on the equator counts as north", cfGeoDecimal, -0.5, 0.0,
     "W000500000N00000000", "W000.500000 N00.000000"},
    {"long: east and north", cfGeoLong, dms(2, 17, 40.205), dms(48, 51, 29.605), "E002174020N48512960",
     "E002\u00b017'40.20 N48\u00b051'29.60"},
    {"long: exact hundredths truncate in the longitude, not in the latitude", cfGeoLong, dms(2, 17, 40.2),
     dms(2, 17, 40.2), "E002174019N02174020", nullptr},
    {"short: 59.996 seconds carry into the minute", cfGeoShort, dms(10, 30, 59.996), dms(45, 10, 59.996),
     "E0103100N451100", nullptr},
    {"short: 59 minutes 59.996 seconds carry into the degree", cfGeoShort, -dms(10, 59, 59.996),
     -dms(45, 59, 59.996), "W0110000S460000", "W011\u00b000'00 S46\u00b000'00"},
    {"SWEREF99: latitude seconds in thousandths", cfSWEREF99, dms(18, 4, 6.965), dms(59, 19, 45.4805),
     "E018040696N591945480", "E018\u00b004'06.96 N59\u00b019'45.48"},
    {"Maidenhead: W1AW, Newington CT, is FN31pr", cfQTHMaidenhead, -72.727260, 41.714775, "FN31PR", "FN31PR"},
    {"Maidenhead: the south-west corner is AA00aa", cfQTHMaidenhead, -180.0, -90.0, "AA00AA", nullptr},
    {"Maidenhead: the last sub-square is RR99xx", cfQTHMaidenhead, 179.99, 89.99, "RR99XX", nullptr},
    {"decimal: a longitude out of range is written as it stands", cfGeoDecimal, 190.0, 0.0,
     "E190000000N00000000", nullptr},
};

const TextRow kReadings[] = {
    {"long: half a hundredth of a second is added", cfGeoLong, dms(10, 30, 45.005), dms(45, 0, 0.005),
     "E010304500N45000000", nullptr},
    {"long: lower-case hemisphere letters count", cfGeoLong, -dms(10, 30, 45.125), -dms(45, 0, 0.995),
     "w010304512s45000099", nullptr},
    {"short: half a hundredth is added too", cfGeoShort, dms(10, 30, 45.005), -dms(45, 0, 0.005),
     "E0103045S450000", nullptr},
    {"Maidenhead in lower case gives the centre of the sub-square", cfQTHMaidenhead, -180 + 106 + 15.5 / 12,
     -90 + 131 + 17.5 / 24, "fn31pr", nullptr},
    {"longitude 190 becomes -170", cfGeoDecimal, -170.0, 0.0, "E190000000N00000000", nullptr},
    {"latitude 100 wraps by 180 to -80, it is not reflected", cfGeoLong, dms(0, 0, 0.005),
     -80.0 + dms(0, 0, 0.005), "E000000000N99600000", nullptr},
    {"unreadable numbers read as 0", cfGeoDecimal, -0.0, -0.0, "Wabc12x456S1.2_3__4", nullptr},
};

} // namespace

class tst_Coord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    // The translated names go through QCoreApplication::tr, untranslated here.
    void names()
    {
        const char* const names[] = {"Geo Decimal", "Geo long", "Geo short",      "UTM", "MGRS",
                                     "RT90",        "SWEREF99", "QTH Maidenhead", ""};
        for (int f = 0; f <= 8; ++f)
            QVERIFY2(getCoordFormatName(CoordFormat(f)) == QLatin1String(names[f]) &&
                         getTranslatedCoordFormatName(CoordFormat(f)) == QLatin1String(names[f]),
                     names[f]);
    }

    // Unknown notations have no texts but borrow the "Geo long" masks. The SWEREF99
    // expression is the Geo long one with a seconds sign after each number group.
    void maskTables()
    {
        const Coord c(12.5, 55.25);
        const CoordFormat unknown = CoordFormat(8);
        QCOMPARE(QByteArray(c.GetFmt(unknown)), QByteArray(c.GetFmt(cfGeoLong)));
        QCOMPARE(c.GetMask(unknown) + c.getQtMask(unknown) + c.getMaskRegExp(unknown),
                 c.GetMask(cfGeoLong) + c.getQtMask(cfGeoLong) + c.getMaskRegExp(cfGeoLong));
        QCOMPARE(c.GetText(unknown), QString());
        const QString sweref = Coord::getMaskRegExp(cfSWEREF99);
        QVERIFY(sweref.length() == 117 && sweref.contains(QStringLiteral("00\\.00)\"\\s(N|S)")));
        QCOMPARE(QString(sweref).remove(QLatin1Char('"')), Coord::getMaskRegExp(cfGeoLong));
    }

    void knownTexts_data() { addRows(kTexts); }
    void knownTexts()
    {
        QFETCH(int, row);
        const auto [name, format, lon, lat, raw, formatted] = kTexts[row];
        QCOMPARE(Coord(lon, lat).GetText(format), QLatin1String(raw));
        if (formatted)
            QCOMPARE(Coord(lon, lat).GetString(format), QString::fromUtf8(formatted));
    }

    void setText_data() { addRows(kReadings); }
    void setText()
    {
        QFETCH(int, row);
        const auto [name, format, lon, lat, raw, unused] = kReadings[row];
        Coord c(1.0, 2.0);
        c.SetText(QLatin1String(raw), format);
        QVERIFY2(within(c.GetLongitude(), lon, 1e-9) && within(c.GetLatitude(), lat, 1e-9),
                 qPrintable(c.GetText(cfGeoDecimal)));
    }

    // UTM from cs2cs and MGRS from GeoConvert (its millimetre reference of the position
    // nudged as the library nudges it, with LL2TM's 5 mm west and north), to the metre. The
    // references are in tenths of a millimetre; a value within 2 cm of a half metre may round
    // either way in the library's series and is left out.
    void gridTextsAgreeWithReferenceData()
    {
        const auto roundsClearly = [](double m) { return std::fabs(m - std::floor(m) - 0.5) > 0.02; };
        const auto metres = [](double m, int width) {
            return QString::number(qint64(std::floor(m + 0.5))).rightJustified(width, QLatin1Char('0'));
        };
        const QString bands = QStringLiteral("CDEFGHJKLMNPQRSTUVWX");
        for (const QStringList& r : referenceRows("utm.txt")) {
            const double lat = r[1].toDouble(), e = r[4].toDouble(), n = r[5].toDouble();
            if (r[0] != QLatin1String("23") || !roundsClearly(e) || !roundsClearly(n))
                continue;
            const QChar band = bands.at(qMin(int(std::floor((lat + 80.0) / 8.0)), 19));
            QCOMPARE(Coord(r[2].toDouble(), lat).GetText(cfUTM),
                     r[3].rightJustified(2, QLatin1Char('0')) + band + metres(e, 7) + metres(n, 7));
        }
        for (const QStringList& r : referenceRows("mgrs.txt")) {
            const double e = r[2].right(16).left(8).toDouble() / 1000.0 - 0.005;
            const double n = r[2].right(8).toDouble() / 1000.0 + 0.005;
            if (roundsClearly(e) && roundsClearly(n) && e < 99999.0 && n < 99999.0)
                QCOMPARE(Coord(r[1].toDouble(), r[0].toDouble()).GetText(cfMGRS),
                         r[2].left(r[2].length() - 16) + metres(e, 5) + metres(n, 5));
        }
    }

    // Bounds are inclusive; the midpoint is taken componentwise, not along a great circle.
    void validityAndMidpoint()
    {
        QVERIFY(Coord(180.0, -90.0).IsValid() && Coord(-180.0, 90.0).IsValid());
        QVERIFY(!Coord(180.0000001, 0.0).IsValid() && !Coord(0.0, -90.0000001).IsValid());
        QVERIFY(!Coord(kNaN, 0.0).IsValid() && !Coord(0.0, -kInf).IsValid());
        QCOMPARE(Coord(10.0, 20.0) |= Coord(20.0, 41.0), Coord(15.0, 30.5));
        QCOMPARE(Coord(170.0, 10.0) |= Coord(-170.0, 10.0), Coord(0.0, 10.0));
    }

    // Half a unit each way: millionths of a degree, hundredths and whole seconds, half a
    // sub-square (2.5 minutes of longitude, 1.25 of latitude), the metre. SWEREF99's
    // latitude seconds go out in thousandths and come back as hundredths.
    void roundTrips()
    {
        const QVector<Coord> world = grid(-89.93, 89.99, 3.7), utmArea = grid(-79.93, 83.9, 3.7);
        const QVector<Coord> sweden = grid(55.41, 69.0, 0.37, 11.13, 24.0);
        const std::tuple<CoordFormat, const QVector<Coord>&, double> rows[] = {
            {cfGeoDecimal, world, 0.08}, {cfGeoLong, world, 0.22},
            {cfGeoShort, world, 22.0},   {cfQTHMaidenhead, world, 5200.0},
            {cfUTM, utmArea, 1.0},       {cfMGRS, utmArea, 2.5},
            {cfRT90, sweden, 0.1},       {cfSWEREF99, sweden, 31.0}};
        for (const auto& [f, positions, metres] : rows)
            for (const Coord& position : positions) {
                Coord fromText(99.0, 9.0), fromString(99.0, 9.0);
                fromText.SetText(position.GetText(f), f);
                fromString.SetString(position.GetString(f), f);
                QVERIFY2(metresBetween(position, fromText) <= metres, qPrintable(position.GetString(f)));
                QVERIFY2(metresBetween(position, fromString) <= metres, qPrintable(position.GetString(f)));
            }
    }

    // Random texts in every notation (and beyond) read as valid positions; positions that
    // are not numbers or too large for any number field give no text.
    void badInputNormalises()
    {
        const QString alphabet =
            QString::fromUtf8("0123456789EWNSXYewnsxyAZaz.-;:_ '\"\u00b0\u00df\u20ac") + QChar(0xD800);
        QRandomGenerator random(20261121);
        for (int i = 0; i < 400; ++i) {
            QString text = i == 0 ? QString(5000, QLatin1Char('9')) : QString();
            for (int k = random.bounded(30); k > 0; --k)
                text.append(alphabet.at(random.bounded(alphabet.length())));
            for (int format = 0; format <= 8; ++format) {
                Coord c(1.0, 2.0), d(1.0, 2.0);
                c.SetText(text, CoordFormat(format));
                d.SetString(text, CoordFormat(format));
                QVERIFY2(c.IsValid() && d.IsValid(), qPrintable(text));
            }
        }
        for (int format = 0; format <= 7; ++format) {
            Coord back;
            back.SetText(Coord(1e6, -1e6).GetText(CoordFormat(format)), CoordFormat(format));
            QVERIFY(back.IsValid() && Coord(kNaN, 10.0).GetText(CoordFormat(format)).isEmpty());
            QVERIFY(Coord(1e300, 0.0).GetText(CoordFormat(format)).isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_Coord)
#include "tst_coord.moc"
