#include "coord/coord.h"

#include "referencedata.h"

#include <QRegularExpression>
#include <QtTest>

#include <cmath>
#include <limits>

namespace {

double dms(int degrees, int minutes, double seconds)
{
    return degrees + minutes / 60.0 + seconds / 3600.0;
}

constexpr double kMetresPerDegree = 111320.0;

// Distance of two nearby positions in metres (flat-earth, good enough to judge
// a notation's resolution).
double metresBetween(const Coord& a, const Coord& b)
{
    const double dLat = a.GetLatitude() - b.GetLatitude();
    const double dLon = (a.GetLongitude() - b.GetLongitude()) * std::cos(a.GetLatitude() * M_PI / 180.0);
    return std::hypot(dLat, dLon) * kMetresPerDegree;
}

QVector<Coord> worldGrid(double minLatitude, double maxLatitude)
{
    QVector<Coord> grid;
    for (double lat = minLatitude; lat <= maxLatitude; lat += 3.7)
        for (double lon = -179.87; lon < 180.0; lon += 7.3)
            grid.append(Coord(lon, lat));
    return grid;
}

QVector<Coord> swedenGrid()
{
    QVector<Coord> grid;
    for (double lat = 55.41; lat <= 69.0; lat += 0.37)
        for (double lon = 11.13; lon <= 24.0; lon += 0.43)
            grid.append(Coord(lon, lat));
    return grid;
}

// The reference values are in tenths of a millimetre; a value within 2 cm of a
// half metre is left out, as the library's series may round it either way.
bool roundsClearly(double metres)
{
    return std::fabs(metres - std::floor(metres) - 0.5) > 0.02;
}

class PrefixTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* disambiguation,
                      int n) const override
    {
        if (qstrcmp(context, "QCoreApplication") != 0 || disambiguation || n != -1)
            return QString();
        return QStringLiteral("tr:") + QLatin1String(sourceText);
    }
    bool isEmpty() const override { return false; }
};

} // namespace

class tst_Coord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void names_data();
    void names();
    void maskTables();
    void knownTexts_data();
    void knownTexts();
    void knownStrings_data();
    void knownStrings();
    void gridTextsAgreeWithReferenceData_data();
    void gridTextsAgreeWithReferenceData();
    void rt90AgreesWithReferenceData();
    void setText_data();
    void setText();
    void isValid_data();
    void isValid();
    void midpoint();
    void roundTrips_data();
    void roundTrips();
    void badInputNormalises();
};

void tst_Coord::initTestCase()
{
    QLocale::setDefault(QLocale::c());
}

void tst_Coord::names_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("name");

    const char* const names[] = {"Geo Decimal", "Geo long", "Geo short", "UTM",
                                 "MGRS",        "RT90",     "SWEREF99",  "QTH Maidenhead"};
    for (int f = 0; f < 8; ++f)
        QTest::addRow("%d is %s", f, names[f]) << f << QString::fromLatin1(names[f]);
    QTest::newRow("an unknown notation has no name") << 8 << QString();
}

void tst_Coord::names()
{
    QFETCH(int, format);
    QFETCH(QString, name);

    QCOMPARE(getCoordFormatName(CoordFormat(format)), name);
    QCOMPARE(getTranslatedCoordFormatName(CoordFormat(format)), name);

    PrefixTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    const QString translated = getTranslatedCoordFormatName(CoordFormat(format));
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(translated, name.isEmpty() ? QString() : QStringLiteral("tr:") + name);
}

void tst_Coord::maskTables()
{
    const Coord c(12.5, 55.25);
    QCOMPARE(c.GetMask(cfGeoLong), QString::fromUtf8("E###°##'##.## N##°##'##.##"));
    QCOMPARE(Coord::getQtMask(cfGeoShort), QString::fromUtf8(">A999°99'99 A99°99'99"));
    QCOMPARE(Coord::getMaskRegExp(cfGeoLong).count(QChar(0x00B0)), 4);

    const QString sweref = Coord::getMaskRegExp(cfSWEREF99);
    QCOMPARE(sweref.length(), 117);
    QVERIFY(sweref.contains(QStringLiteral("00\\.00)\"\\s(N|S)")));
    QVERIFY(sweref.endsWith(QStringLiteral("00\\.00)\"$")));
    QCOMPARE(QString(sweref).remove(QLatin1Char('"')), Coord::getMaskRegExp(cfGeoLong));

    for (const int value : {8, 1000, -1}) {
        const CoordFormat unknown = CoordFormat(value);
        QCOMPARE(QByteArray(c.GetFmt(unknown)), QByteArray(c.GetFmt(cfGeoLong)));
        QCOMPARE(c.GetMask(unknown), c.GetMask(cfGeoLong));
        QCOMPARE(Coord::getQtMask(unknown), Coord::getQtMask(cfGeoLong));
        QCOMPARE(Coord::getMaskRegExp(unknown), Coord::getMaskRegExp(cfGeoLong));
        QCOMPARE(c.GetText(unknown), QString());
        QCOMPARE(c.GetString(unknown), QString::fromUtf8("____°__'__.__ ___°__'__.__"));
        Coord unchanged = c;
        unchanged.SetText(QStringLiteral("W0103045"), unknown);
        QCOMPARE(unchanged, c);
    }
}

void tst_Coord::knownTexts_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("raw");

    QTest::newRow("decimal: half a degree west on the equator counts as north")
        << -0.5 << 0.0 << int(cfGeoDecimal) << QStringLiteral("W000500000N00000000");
    QTest::newRow("decimal: the corner of the valid range")
        << 180.0 << -90.0 << int(cfGeoDecimal) << QStringLiteral("E180000000S90000000");
    QTest::newRow("decimal: millionths are rounded")
        << 13.4049544 << 52.5200076 << int(cfGeoDecimal) << QStringLiteral("E013404954N52520008");
    QTest::newRow("long: east and north") << dms(2, 17, 40.205) << dms(48, 51, 29.605) << int(cfGeoLong)
                                          << QStringLiteral("E002174020N48512960");
    QTest::newRow("long: west and south") << -dms(122, 25, 9.735) << -dms(33, 51, 35.995) << int(cfGeoLong)
                                          << QStringLiteral("W122250973S33513599");
    QTest::newRow("long: exact hundredths truncate in the longitude, not in the latitude")
        << dms(2, 17, 40.2) << dms(2, 17, 40.2) << int(cfGeoLong) << QStringLiteral("E002174019N02174020");
    QTest::newRow("short: fractions from a half second up round up")
        << dms(10, 30, 29.504) << dms(45, 10, 29.49) << int(cfGeoShort) << QStringLiteral("E0103030N451029");
    QTest::newRow("short: 59.996 seconds carry into the minute")
        << dms(10, 30, 59.996) << dms(45, 10, 59.996) << int(cfGeoShort) << QStringLiteral("E0103100N451100");
    QTest::newRow("short: 59 minutes 59.996 seconds carry into the degree")
        << dms(10, 59, 59.996) << dms(45, 59, 59.996) << int(cfGeoShort) << QStringLiteral("E0110000N460000");
    QTest::newRow("short: the carry reaches 180 and 90 degrees")
        << -dms(179, 59, 59.6) << -dms(89, 59, 59.7) << int(cfGeoShort) << QStringLiteral("W1800000S900000");
    QTest::newRow("SWEREF99: latitude seconds in thousandths")
        << dms(18, 4, 6.965) << dms(59, 19, 45.4805) << int(cfSWEREF99)
        << QStringLiteral("E018040696N591945480");
    QTest::newRow("SWEREF99: latitude thousandths below 100 fill the hundredths")
        << dms(18, 4, 6.965) << dms(59, 0, 0.0365) << int(cfSWEREF99)
        << QStringLiteral("E018040696N59000036");
    QTest::newRow("Maidenhead: W1AW, Newington CT, is FN31pr")
        << -72.727260 << 41.714775 << int(cfQTHMaidenhead) << QStringLiteral("FN31PR");
    QTest::newRow("Maidenhead: central London is IO91wm")
        << -0.1276 << 51.5072 << int(cfQTHMaidenhead) << QStringLiteral("IO91WM");
    QTest::newRow("Maidenhead: Sydney Opera House is QF56od")
        << 151.2153 << -33.8568 << int(cfQTHMaidenhead) << QStringLiteral("QF56OD");
    QTest::newRow("Maidenhead: the origin is JJ00aa")
        << 0.0 << 0.0 << int(cfQTHMaidenhead) << QStringLiteral("JJ00AA");
    QTest::newRow("Maidenhead: the south-west corner is AA00aa")
        << -180.0 << -90.0 << int(cfQTHMaidenhead) << QStringLiteral("AA00AA");
    QTest::newRow("Maidenhead: the last sub-square is RR99xx")
        << 179.99 << 89.99 << int(cfQTHMaidenhead) << QStringLiteral("RR99XX");
}

void tst_Coord::knownTexts()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(int, format);
    QFETCH(QString, raw);

    QCOMPARE(Coord(longitude, latitude).GetText(CoordFormat(format)), raw);
}

void tst_Coord::knownStrings_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("formatted");

    QTest::newRow("Geo Decimal") << -0.5 << 0.0 << int(cfGeoDecimal)
                                 << QStringLiteral("W000.500000 N00.000000");
    QTest::newRow("Geo long") << dms(2, 17, 40.205) << dms(48, 51, 29.605) << int(cfGeoLong)
                              << QString::fromUtf8("E002°17'40.20 N48°51'29.60");
    QTest::newRow("Geo short") << -dms(122, 25, 9.735) << -dms(33, 51, 35.995) << int(cfGeoShort)
                               << QString::fromUtf8("W122°25'10 S33°51'36");
    QTest::newRow("UTM") << 18.0686 << 59.3293 << int(cfUTM) << QStringLiteral("34V 0333230 6580391");
    QTest::newRow("SWEREF99 drops the third decimal of the latitude")
        << dms(18, 4, 6.965) << dms(59, 19, 45.4805) << int(cfSWEREF99)
        << QString::fromUtf8("E018°04'06.96 N59°19'45.48");
    QTest::newRow("QTH Maidenhead") << -72.727260 << 41.714775 << int(cfQTHMaidenhead)
                                    << QStringLiteral("FN31PR");
}

void tst_Coord::knownStrings()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(int, format);
    QFETCH(QString, formatted);

    QCOMPARE(Coord(longitude, latitude).GetString(CoordFormat(format)), formatted);
}

void tst_Coord::gridTextsAgreeWithReferenceData_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<QString>("raw");

    const QString bands = QStringLiteral("CDEFGHJKLMNPQRSTUVWX");
    const auto metres = [](double value, int width) {
        return QStringLiteral("%1").arg(qint64(std::floor(value + 0.5)), width, 10, QLatin1Char('0'));
    };
    for (const QStringList& r : referenceRows("utm.txt")) {
        const double lat = r[1].toDouble();
        if (r[0] != QLatin1String("23") || !roundsClearly(r[4].toDouble()) || !roundsClearly(r[5].toDouble()))
            continue;
        const QChar band = bands.at(qMin(int(std::floor((lat + 80.0) / 8.0)), 19));
        QTest::addRow("UTM %s %s", qPrintable(r[1]), qPrintable(r[2]))
            << int(cfUTM) << r[2].toDouble() << lat
            << QStringLiteral("%1").arg(r[3].toInt(), 2, 10, QLatin1Char('0')) + band +
                   metres(r[4].toDouble(), 7) + metres(r[5].toDouble(), 7);
    }
    // GeoConvert's millimetre reference of the position nudged as the library
    // nudges it; the library's easting lies 5 mm west, its northing 5 mm north.
    for (const QStringList& r : referenceRows("mgrs.txt")) {
        const QString reference = r[2];
        const double easting = reference.right(16).left(8).toDouble() / 1000.0 - 0.005;
        const double northing = reference.right(8).toDouble() / 1000.0 + 0.005;
        if (!roundsClearly(easting) || !roundsClearly(northing) || easting > 99999.0 || northing > 99999.0)
            continue;
        QTest::addRow("MGRS %s", qPrintable(reference))
            << int(cfMGRS) << r[1].toDouble() << r[0].toDouble()
            << reference.left(reference.length() - 16) + metres(easting, 5) + metres(northing, 5);
    }
}

void tst_Coord::gridTextsAgreeWithReferenceData()
{
    QFETCH(int, format);
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(QString, raw);

    QCOMPARE(Coord(longitude, latitude).GetText(CoordFormat(format)), raw);
}

// The RT90 raw text keeps its decimal points, which the display mask takes for
// input characters: the formatted text is shifted, and reading it back loses
// only the last two millimetre digits.
void tst_Coord::rt90AgreesWithReferenceData()
{
    const QRegularExpression layout(QStringLiteral("^X(\\d{7}\\.\\d{3})Y(\\d{7}\\.\\d{3})$"));
    int rows = 0;
    for (const QStringList& r : referenceRows("swedish.txt")) {
        if (r[0] != QLatin1String("rt90_2.5_gon_v"))
            continue;
        ++rows;
        const Coord c(r[3].toDouble(), r[2].toDouble());
        const QString raw = c.GetText(cfRT90);
        const QRegularExpressionMatch m = layout.match(raw);
        QVERIFY2(m.hasMatch(), qPrintable(raw));
        QVERIFY2(std::fabs(m.captured(1).toDouble() - r[4].toDouble()) < 0.002, qPrintable(raw));
        QVERIFY2(std::fabs(m.captured(2).toDouble() - r[5].toDouble()) < 0.002, qPrintable(raw));

        const QString formatted = c.GetString(cfRT90);
        QCOMPARE(formatted.left(10), raw.left(8) + QStringLiteral(".."));
        Coord back;
        back.SetString(formatted, cfRT90);
        QCOMPARE(back.GetText(cfRT90).left(21), raw.left(21));
    }
    QVERIFY(rows > 0);
}

void tst_Coord::setText_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<int>("format");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");

    QTest::newRow("decimal: west and south negate")
        << QStringLiteral("W012500000S33250000") << int(cfGeoDecimal) << -12.5 << -33.25;
    QTest::newRow("long: half a hundredth of a second is added")
        << QStringLiteral("E010304500N45000000") << int(cfGeoLong) << dms(10, 30, 45.005)
        << dms(45, 0, 0.005);
    QTest::newRow("long: lower-case hemisphere letters count")
        << QStringLiteral("w010304512s45000099") << int(cfGeoLong) << -dms(10, 30, 45.125)
        << -dms(45, 0, 0.995);
    QTest::newRow("short: half a hundredth of a second is added too")
        << QStringLiteral("E0103045S450000") << int(cfGeoShort) << dms(10, 30, 45.005) << -dms(45, 0, 0.005);
    QTest::newRow("Maidenhead in lower case gives the centre of the sub-square")
        << QStringLiteral("fn31pr") << int(cfQTHMaidenhead) << -180.0 + 106.0 + 15.5 / 12.0
        << -90.0 + 131.0 + 17.5 / 24.0;
    QTest::newRow("a four-character locator reads as sub-square AA")
        << QStringLiteral("JJ00") << int(cfQTHMaidenhead) << 0.5 / 12.0 << 0.5 / 24.0;
    QTest::newRow("longitude 190 becomes -170")
        << QStringLiteral("E190000000N00000000") << int(cfGeoDecimal) << -170.0 << 0.0;
    QTest::newRow("longitude -190 becomes 170")
        << QStringLiteral("W190000000N00000000") << int(cfGeoDecimal) << 170.0 << 0.0;
    QTest::newRow("latitude 100 wraps by 180 to -80, it is not reflected")
        << QStringLiteral("E000000000N99600000") << int(cfGeoLong) << dms(0, 0, 0.005)
        << -80.0 + dms(0, 0, 0.005);
    QTest::newRow("latitude -99.5 wraps to 80.5")
        << QStringLiteral("E000000000S99500000") << int(cfGeoDecimal) << 0.0 << 80.5;
    QTest::newRow("Maidenhead letters beyond R wrap")
        << QStringLiteral("ZZ00AA") << int(cfQTHMaidenhead) << 320.0 + 0.5 / 12.0 - 360.0
        << 160.0 + 0.5 / 24.0 - 180.0;
    QTest::newRow("unreadable numbers read as 0")
        << QStringLiteral("Wabc12x456S1.2_3__4") << int(cfGeoDecimal) << -0.0 << -0.0;
}

void tst_Coord::setText()
{
    QFETCH(QString, raw);
    QFETCH(int, format);
    QFETCH(double, longitude);
    QFETCH(double, latitude);

    Coord c(1.0, 2.0);
    c.SetText(raw, CoordFormat(format));
    QVERIFY2(std::fabs(c.GetLongitude() - longitude) < 1e-9,
             qPrintable(QString::number(c.GetLongitude(), 'g', 15)));
    QVERIFY2(std::fabs(c.GetLatitude() - latitude) < 1e-9,
             qPrintable(QString::number(c.GetLatitude(), 'g', 15)));
}

void tst_Coord::isValid_data()
{
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<bool>("valid");

    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("longitude 180 and latitude -90 are valid") << 180.0 << -90.0 << true;
    QTest::newRow("longitude -180 and latitude 90 are valid") << -180.0 << 90.0 << true;
    QTest::newRow("longitude 180.0000001 is not") << 180.0000001 << 0.0 << false;
    QTest::newRow("latitude -90.0000001 is not") << 0.0 << -90.0000001 << false;
    QTest::newRow("NaN is not") << nan << 0.0 << false;
    QTest::newRow("infinity is not") << 0.0 << -inf << false;
}

void tst_Coord::isValid()
{
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    QFETCH(bool, valid);

    QCOMPARE(Coord(longitude, latitude).IsValid(), valid);
}

void tst_Coord::midpoint()
{
    Coord a(10.0, 20.0);
    a |= Coord(20.0, 41.0);
    QCOMPARE(a, Coord(15.0, 30.5));

    a |= a;
    QCOMPARE(a, Coord(15.0, 30.5));

    Coord across(170.0, 10.0);
    across |= Coord(-170.0, 10.0);
    QCOMPARE(across, Coord(0.0, 10.0));
    QVERIFY(across != Coord(180.0, 10.0));
}

void tst_Coord::roundTrips_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QVector<Coord>>("positions");
    QTest::addColumn<double>("metres");

    const QVector<Coord> world = worldGrid(-89.93, 89.99);
    const QVector<Coord> utmArea = worldGrid(-79.93, 83.9);
    // Millionths of a degree, hundredths and whole seconds: half a unit each way.
    QTest::newRow("Geo Decimal worldwide") << int(cfGeoDecimal) << world << 0.08;
    QTest::newRow("Geo long worldwide") << int(cfGeoLong) << world << 0.22;
    QTest::newRow("Geo short worldwide") << int(cfGeoShort) << world << 22.0;
    // Half a sub-square: 2.5 minutes of longitude, 1.25 of latitude.
    QTest::newRow("QTH Maidenhead worldwide") << int(cfQTHMaidenhead) << world << 5200.0;
    QTest::newRow("UTM within the UTM area") << int(cfUTM) << utmArea << 1.0;
    QTest::newRow("MGRS within the MGRS area") << int(cfMGRS) << utmArea << 2.5;
    QTest::newRow("RT90 in Sweden") << int(cfRT90) << swedenGrid() << 0.1;
    // The latitude's seconds go out in thousandths and come back as hundredths.
    QTest::newRow("SWEREF99 in Sweden") << int(cfSWEREF99) << swedenGrid() << 31.0;
}

void tst_Coord::roundTrips()
{
    QFETCH(int, format);
    QFETCH(QVector<Coord>, positions);
    QFETCH(double, metres);
    const CoordFormat f = CoordFormat(format);

    for (const Coord& position : positions) {
        Coord fromText(99.0, 9.0);
        fromText.SetText(position.GetText(f), f);
        QVERIFY2(metresBetween(position, fromText) <= metres,
                 qPrintable(position.GetText(f) +
                            QStringLiteral(" is off by %1 m").arg(metresBetween(position, fromText))));
        Coord fromString(99.0, 9.0);
        fromString.SetString(position.GetString(f), f);
        QVERIFY2(metresBetween(position, fromString) <= metres,
                 qPrintable(position.GetString(f) +
                            QStringLiteral(" is off by %1 m").arg(metresBetween(position, fromString))));
    }
}

void tst_Coord::badInputNormalises()
{
    QStringList texts = {QString(),
                         QStringLiteral("W"),
                         QString(5000, QLatin1Char('9')),
                         QString(32, QChar(0)),
                         QString(QChar(0xD800)) + QChar(0xDFFF) + QStringLiteral("33VUE1234567890"),
                         QString::fromUtf8("\xc3\x9f\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\xef\xbf\xbf")};
    // Characters that the notations give meaning to, and some they don't.
    const QString alphabet =
        QString::fromUtf8("0123456789EWNSXYewnsxyAZaz.-;:_ '\"\xc2\xb0\xc3\x9f\xe2\x82\xac");
    QRandomGenerator random(20261121);
    for (int i = 0; i < 400; ++i) {
        QString text;
        for (int k = random.bounded(30); k > 0; --k)
            text.append(alphabet.at(random.bounded(alphabet.length())));
        texts << text;
    }
    for (const QString& text : qAsConst(texts)) {
        for (int format = 0; format <= 8; ++format) {
            Coord c(1.0, 2.0);
            c.SetText(text, CoordFormat(format));
            QVERIFY2(c.IsValid(), qPrintable(QString::number(format) + QLatin1Char(' ') + text));
            c.SetString(text, CoordFormat(format));
            QVERIFY2(c.IsValid(), qPrintable(QString::number(format) + QLatin1Char(' ') + text));
        }
    }

    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (int format = 0; format <= 7; ++format) {
        const CoordFormat f = CoordFormat(format);
        QCOMPARE(Coord(nan, 10.0).GetText(f), QString());
        QCOMPARE(Coord(10.0, -inf).GetText(f), QString());
        // Huge values are wrapped like any other, not looped over for ever.
        Coord back;
        back.SetText(Coord(1e300, -1.7e308).GetText(f), f);
        QVERIFY(back.IsValid());
        QVERIFY(!Coord(3e9 + 12.5, -5e9).GetText(f).isEmpty());
    }
    QCOMPARE(Coord(3e9 + 12.5, -5e9).GetText(cfGeoDecimal), QStringLiteral("E132500000N40000000"));
}

QTEST_GUILESS_MAIN(tst_Coord)
#include "tst_coord.moc"
