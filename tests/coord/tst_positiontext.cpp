#include "coord/positiontext.h"
#include "coord/swedishgrids.h"

#include <QTest>

#include "referencedata.h"

#include <cmath>
#include <cstdint>
#include <thread>
#include <vector>

using namespace PositionText;

namespace {

// One position of the GeoConvert data: its UTM/UPS text to 9 decimals, the MGRS band and
// square letters, and the precisions at which GeoConvert rounds a half down.
struct GeoRow
{
    double lat, lon;
    QStringList utm; // zone (GeoConvert's "34n" or "n"), easting, northing
    QString letters;
    QStringList roundedDown;
};

// The draws of make_positiontext.py: splitmix64, latitude first.
struct SplitMix
{
    std::uint64_t state = 0x4B76426173650DULL;
    double next(double low, double span)
    {
        std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return low + span * (double((z ^ (z >> 31)) >> 11) * 0x1p-53);
    }
};

QList<GeoRow> geoRows(bool random)
{
    QList<GeoRow> rows;
    QList<QStringList> lines;
    if (random) {
        QFile f(QStringLiteral(KVBASE_TEST_DATA_DIR "/coord/positiontext_random.qz"));
        if (!f.open(QIODevice::ReadOnly))
            qFatal("missing positiontext_random.qz");
        for (const QByteArray& line : qUncompress(f.readAll()).split('\n'))
            if (!line.isEmpty() && !line.startsWith('#'))
                lines << QString::fromLatin1(line).split(QLatin1Char(' '));
    } else {
        for (const auto& line : dataLines("positiontext_edges.txt"))
            lines << line.second.split(QLatin1Char(' '));
    }
    SplitMix draw;
    for (QStringList& r : lines) {
        GeoRow row;
        if (random) {
            row.lat = draw.next(-90.0, 180.0);
            row.lon = draw.next(-180.0, 360.0);
        } else {
            row.lat = r.takeFirst().toDouble();
            row.lon = r.takeFirst().toDouble();
        }
        row.utm = r.mid(0, 3);
        row.letters = r[3];
        row.roundedDown = r.mid(4);
        rows << row;
    }
    return rows;
}

// GeoConvert's text of a 9-decimal value at fewer decimals: half up, or down where listed.
QString rounded(const QString& value, int decimals, bool down)
{
    const int point = int(value.indexOf(QLatin1Char('.')));
    QString digits = value.left(point) + value.mid(point + 1, decimals);
    qint64 units = digits.toLongLong() + (value[point + 1 + decimals] >= QLatin1Char('5') && !down ? 1 : 0);
    digits = QString::number(units).rightJustified(decimals + 1, QLatin1Char('0'));
    return decimals ? digits.left(digits.size() - decimals) + QLatin1Char('.') + digits.right(decimals)
                    : digits;
}

// Metres between two positions: the chord through the WGS-84 ellipsoid, which falls short
// of the distance on the surface by less than a metre at 100 km.
double metres(double lat1, double lon1, double lat2, double lon2)
{
    const auto cartesian = [](double lat, double lon, double xyz[3]) {
        const double a = 6378137.0, e2 = 0.00669437999014, phi = lat * M_PI / 180.0, lam = lon * M_PI / 180.0;
        const double nu = a / std::sqrt(1.0 - e2 * std::sin(phi) * std::sin(phi));
        xyz[0] = nu * std::cos(phi) * std::cos(lam);
        xyz[1] = nu * std::cos(phi) * std::sin(lam);
        xyz[2] = nu * (1.0 - e2) * std::sin(phi);
    };
    double p[3], q[3];
    cartesian(lat1, lon1, p);
    cartesian(lat2, lon2, q);
    return std::sqrt((p[0] - q[0]) * (p[0] - q[0]) + (p[1] - q[1]) * (p[1] - q[1]) +
                     (p[2] - q[2]) * (p[2] - q[2]));
}

// A 9-decimal text of metres as a whole number of nanometres.
qint64 nanometres(const QString& value9)
{
    return QString(value9).remove(QLatin1Char('.')).toLongLong();
}

// Within 5 nm of a rounding (half) or truncation (whole) boundary, judged from our own
// 9-decimal value: texts on either side there differ only by floating-point noise.
bool nearBoundary(const QString& value9, int decimals, bool truncation)
{
    const QString rest = value9.mid(value9.indexOf(QLatin1Char('.')) + 1 + decimals);
    if (rest.isEmpty())
        return true;
    const qint64 v = rest.toLongLong(), full = qint64(std::pow(10.0, rest.size()));
    const qint64 boundary = truncation ? 0 : full / 2;
    return std::llabs(v - boundary) <= 5 || (truncation && full - v <= 5);
}

std::optional<Notation> notationNamed(const QString& name)
{
    return notationFromName(name);
}

} // namespace

class TestPositionText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { pinLocaleAndTimeZone(); }

    // GeoConvert -u (every precision 0..9) and -m (0..5 digits) for 100,000 seeded random
    // positions and for positions on band, zone and UTM/UPS edges; each text also reads back
    // to within half a unit of its last digit of the position (on the ground, both axes).
    void geoConvertTexts_data()
    {
        QTest::addColumn<bool>("random");
        QTest::newRow("100000 random positions") << true;
        QTest::newRow("band, zone and polar edges") << false;
    }
    void geoConvertTexts()
    {
        QFETCH(bool, random);
        const QList<GeoRow> rows = geoRows(random);
        QVERIFY(rows.size() >= (random ? 100000 : 900));
        qint64 compared = 0, identical = 0, ties = 0;
        for (const GeoRow& r : rows) {
            const bool ups = !r.utm[0][0].isDigit();
            const QString zone = ups ? QString() : r.utm[0].left(2);
            const QStringList ours9 = format(r.lat, r.lon, Notation::UTM, 9).split(QLatin1Char(' '));
            const QByteArray context = QStringLiteral("%1 %2 (GeoConvert %3 %4):")
                                           .arg(r.lat, 0, 'g', 17)
                                           .arg(r.lon, 0, 'g', 17)
                                           .arg(r.utm.join(QLatin1Char(' ')), r.letters)
                                           .toUtf8();
            // GeoConvert's own text ("34n 333230.061164740 6580391.323361461") reads too.
            const auto own = parse(r.utm.join(QLatin1Char(' ')), Notation::UTM);
            QVERIFY2(own && metres(r.lat, r.lon, own->latitude, own->longitude) < 1e-8, context);
            // UTM/UPS at 0 to 9 decimals, then MGRS with 0 to 5 digits.
            for (int step = 0; step < 16; ++step) {
                const bool mgrs = step >= 10;
                const int precision = mgrs ? step - 10 : step;
                QString expected = zone + (mgrs ? r.letters : r.letters.left(1));
                for (int axis = 1; axis <= 2; ++axis) {
                    if (mgrs) {
                        const qint64 metres =
                            r.utm[axis].section(QLatin1Char('.'), 0, 0).toLongLong() % 100000;
                        expected +=
                            QString::number(metres).rightJustified(5, QLatin1Char('0')).left(precision);
                    } else {
                        const bool down = r.roundedDown.contains(QString::number(precision) +
                                                                 QLatin1String(axis == 1 ? "e" : "n"));
                        expected += QLatin1Char(' ') +
                                    (precision == 9 ? r.utm[axis] : rounded(r.utm[axis], precision, down));
                    }
                }
                const QString text = format(r.lat, r.lon, mgrs ? Notation::MGRS : Notation::UTM, precision);
                ++compared;
                if (text == expected) {
                    ++identical;
                } else {
                    // Only values within floating-point noise of a boundary may come out on
                    // the other side of it (at 9 decimals: 2 nm).
                    const QStringList mine = text.split(QLatin1Char(' ')),
                                      theirs = expected.split(QLatin1Char(' '));
                    bool tie = mine.size() == theirs.size() &&
                               mine[0].left(zone.size() + 1) == theirs[0].left(zone.size() + 1);
                    for (int axis = 1; axis <= 2 && tie && !mgrs; ++axis)
                        tie = mine[axis] == theirs[axis] ||
                              (precision == 9
                                   ? std::llabs(nanometres(mine[axis]) - nanometres(theirs[axis])) <= 2
                                   : nearBoundary(ours9[axis], precision, false));
                    // MGRS digits run together: one of the axes sits on a whole metre.
                    if (mgrs)
                        tie = tie && (nearBoundary(ours9[1], 0, true) || nearBoundary(ours9[2], 0, true));
                    QVERIFY2(
                        tie,
                        (context + " " + expected.toUtf8() + " expected, not " + text.toUtf8()).constData());
                    ++ties;
                }
                const auto back = parse(text);
                QVERIFY2(back, (context + " " + text.toUtf8() + " does not read back").constData());
                const double unit = std::pow(10.0, mgrs ? 5 - precision : -precision);
                const double limit = 0.5 * unit * std::sqrt(2.0) / (ups ? 0.994 : 0.9996) + 5e-9;
                const double off = metres(r.lat, r.lon, back->latitude, back->longitude);
                QVERIFY2(off <= limit,
                         (context + " " + text.toUtf8() + " reads back " + QByteArray::number(off) + " m off")
                             .constData());
            }
        }
        qInfo("%lld texts compared (%d positions, UTM/UPS at 10 precisions, MGRS at 6): %lld identical, %lld "
              "ties within 5 nm of a boundary",
              compared, int(rows.size()), identical, ties);
    }

    // GeoConvert's reading of MGRS references of 0 to 5 digits: the centre of the square.
    void mgrsReadsAsGeoConvert_data() { addReferenceRows("positiontext_mgrs.txt"); }
    void mgrsReadsAsGeoConvert()
    {
        QFETCH(QStringList, ref);
        QString error;
        const auto p = parse(ref[0], &error);
        QVERIFY2(p, qPrintable(error));
        COMPARE_NEAR(metres(p->latitude, p->longitude, ref[1].toDouble(), ref[2].toDouble()), 0.0, 1e-6);
    }

    // PROJ: SWEREF 99 TM, its local zones (GaussKrugerProjection, whose projection the
    // notation shares), RT90 with the GRS 80 direct-projection parameters, and the British
    // and Irish grids after their Helmert shifts: 1 mm both ways.
    void nationalGrids_data() { addReferenceRows("positiontext_grids.txt"); }
    void nationalGrids()
    {
        QFETCH(QStringList, ref);
        const QString grid = ref[0];
        const double lat = ref[1].toDouble(), lon = ref[2].toDouble(), n = ref[3].toDouble(),
                     e = ref[4].toDouble();
        if (grid.startsWith(QLatin1String("sweref_99_")) && grid != QLatin1String("sweref_99_tm")) {
            const GaussKrugerProjection zone(grid);
            double x = 0, y = 0, glat = 0, glon = 0;
            QVERIFY(zone.geodeticToGrid(lat, lon, x, y));
            QVERIFY(zone.gridToGeodetic(n, e, glat, glon));
            COMPARE_NEAR(x, n, 0.001);
            COMPARE_NEAR(y, e, 0.001);
            COMPARE_NEAR(metres(glat, glon, lat, lon), 0.0, 0.001);
            return;
        }
        if (grid == QLatin1String("british") || grid == QLatin1String("irish")) {
            const Notation notation =
                grid == QLatin1String("british") ? Notation::BritishGrid : Notation::IrishGrid;
            QString error, reference = ref[5];
            reference.replace(QLatin1Char('_'), QLatin1Char(' '));
            const QString text = format(lat, lon, notation, 5, &error);
            // A value within 1 mm of a whole metre may truncate either way.
            if (std::fabs(e - std::round(e)) > 0.001 && std::fabs(n - std::round(n)) > 0.001)
                QCOMPARE(text, reference == QLatin1String("-") ? QString() : reference);
            if (reference == QLatin1String("-"))
                return;
            const auto p = parse(reference, notation, &error);
            QVERIFY2(p, qPrintable(error));
            COMPARE_NEAR(metres(p->latitude, p->longitude, ref[6].toDouble(), ref[7].toDouble()), 0.0, 0.001);
            return;
        }
        const Notation notation =
            grid == QLatin1String("sweref_99_tm") ? Notation::SWEREF99TM : Notation::RT90;
        const QString text = format(lat, lon, notation, 3);
        const QStringList values = text.split(QLatin1Char(' '));
        QCOMPARE(values.size(), 2);
        COMPARE_NEAR(values[0].mid(1).toDouble(), n, 0.001);
        COMPARE_NEAR(values[1].mid(1).toDouble(), e, 0.001);
        const auto p = parse(text);
        QVERIFY2(p && p->notation == notation, qPrintable(text));
        COMPARE_NEAR(metres(p->latitude, p->longitude, lat, lon), 0.0, 0.001);
    }

    // Decimal, DMS and Maidenhead of random positions read back to within half a unit of
    // their last digit (Maidenhead: into the cell they name).
    void degreesReadBack()
    {
        SplitMix draw;
        for (int i = 0; i < 20000; ++i) {
            const double lat = draw.next(-90.0, 180.0), lon = draw.next(-180.0, 360.0);
            for (int p = 0; p <= 10; ++p) {
                const QString d = format(lat, lon, Notation::Decimal, p);
                const auto dp = parse(d);
                const double half = 0.5 * std::pow(10.0, -p) + 1e-12; // and the last bit of the double
                QVERIFY2(dp && std::fabs(dp->latitude - lat) <= half &&
                             std::fabs(dp->longitude - lon) <= half,
                         qPrintable(d));
                if (p > 6)
                    continue;
                const QString s = format(lat, lon, Notation::DMS, p);
                const auto sp = parse(s);
                QVERIFY2(sp && sp->notation == Notation::DMS, qPrintable(s));
                QVERIFY2(std::fabs(sp->latitude - lat) * 3600 <= half + 1e-9 &&
                             std::fabs(sp->longitude - lon) * 3600 <= half + 1e-9,
                         qPrintable(s));
                if (p < 1 || p > 5)
                    continue;
                const QString m = format(lat, lon, Notation::Maidenhead, p);
                const auto mp = parse(m, Notation::Maidenhead);
                static const double cellLon[] = {0, 20.0, 2.0, 1.0 / 12, 1.0 / 120, 1.0 / 2880};
                QVERIFY2(mp && std::fabs(mp->longitude - lon) <= cellLon[p] / 2 + 1e-9 &&
                             std::fabs(mp->latitude - lat) <= cellLon[p] / 4 + 1e-9,
                         qPrintable(m));
            }
        }
    }

    // The cases of positiontext_cases.txt: published texts, edges, what people type, errors.
    void cases_data()
    {
        QTest::addColumn<QStringList>("c");
        for (const auto& [line, text] : dataLines("positiontext_cases.txt"))
            QTest::addRow("%d: %s", line, qPrintable(text)) << text.split(QLatin1Char('\t'));
    }
    void cases()
    {
        QFETCH(QStringList, c);
        const QString kind = c[0];
        QString error;
        if (kind == QLatin1String("format")) {
            const QString text =
                format(c[1].toDouble(), c[2].toDouble(), *notationNamed(c[3]), c[4].toInt(), &error);
            if (c[5].startsWith(QLatin1Char('!')))
                QVERIFY2(text.isEmpty() && error.contains(c[5].mid(1)), qPrintable(error));
            else
                QCOMPARE(text, c[5]);
        } else if (kind == QLatin1String("read")) {
            const auto p = parse(c[1], &error);
            QVERIFY2(p, qPrintable(error));
            QVERIFY2(std::fabs(p->latitude - c[2].toDouble()) < 1e-11 &&
                         std::fabs(p->longitude - c[3].toDouble()) < 1e-11,
                     qPrintable(
                         QStringLiteral("%1 %2").arg(p->latitude, 0, 'g', 17).arg(p->longitude, 0, 'g', 17)));
            QCOMPARE(name(p->notation), name(*notationNamed(c[4])));
        } else if (kind == QLatin1String("same") || kind == QLatin1String("given")) {
            const bool given = kind == QLatin1String("given");
            const auto p = given ? parse(c[2], *notationNamed(c[1]), &error) : parse(c[1], &error);
            if (given && c[3].startsWith(QLatin1Char('!'))) {
                QVERIFY2(!p && error.startsWith(c[3].mid(1)), qPrintable(error));
                return;
            }
            QString otherError;
            const auto q = parse(given ? c[3] : c[2], &otherError);
            QVERIFY2(p && q, qPrintable(error + otherError));
            QVERIFY2(std::fabs(p->latitude - q->latitude) < 1e-12 &&
                         std::fabs(p->longitude - q->longitude) < 1e-12,
                     qPrintable(
                         QStringLiteral("%1 %2").arg(p->latitude, 0, 'g', 17).arg(p->longitude, 0, 'g', 17)));
            QCOMPARE(name(p->notation),
                     given ? c[1] == QLatin1String("DMS") ? QStringLiteral("DMS") : name(*notationNamed(c[1]))
                           : name(q->notation));
        } else if (kind == QLatin1String("error")) {
            const auto p = parse(c[1], &error);
            QVERIFY2(!p && error.contains(c[2]), qPrintable(error));
        } else if (kind == QLatin1String("name")) {
            QCOMPARE(name(Notation(c[1].toInt())), c[2] == QLatin1String("-") ? QString() : c[2]);
        } else if (kind == QLatin1String("notation")) {
            const auto n = notationFromName(c[1]);
            QCOMPARE(n ? QString::number(int(*n)) : QStringLiteral("-"), c[2]);
        } else {
            QFAIL("unknown case kind");
        }
    }

    // Every notation's texts at every precision, positions where the notation has texts,
    // are read back by detection as what they are, to within their last digit; only the
    // four-character locators that are also 10 km British references, and Irish
    // references of 1 or 2 digits with the letters N, S, E or W ("N 7 1", also degrees),
    // are refused as ambiguous.
    void detectionReadsEveryNotation()
    {
        struct Area
        {
            Notation notation;
            double lat0, dlat, lon0, dlon;
            int minPrecision, maxPrecision;
        };
        static const Area areas[] = {{Notation::Decimal, -90, 180, -180, 360, 0, 10},
                                     {Notation::DMS, -90, 180, -180, 360, 0, 6},
                                     {Notation::UTM, -90, 180, -180, 360, 0, 9},
                                     {Notation::MGRS, -90, 180, -180, 360, 0, 5},
                                     {Notation::RT90, 55, 14, 10, 14, 0, 3},
                                     {Notation::SWEREF99TM, 55, 14, 10, 14, 0, 3},
                                     {Notation::Maidenhead, -90, 180, -180, 360, 1, 5},
                                     {Notation::BritishGrid, 50, 10, -6, 7, 1, 5},
                                     {Notation::IrishGrid, 51.5, 3.8, -10, 4, 1, 5}};
        // Degrees of longitude of a locator's cell; a cell is half as high.
        static const double cellWidth[] = {0, 20.0, 2.0, 1.0 / 12, 1.0 / 120, 1.0 / 2880};
        SplitMix draw;
        for (const Area& a : areas) {
            for (int i = 0; i < 500; ++i) {
                const double lat = draw.next(a.lat0, a.dlat), lon = draw.next(a.lon0, a.dlon);
                for (int precision = a.minPrecision; precision <= a.maxPrecision; ++precision) {
                    const QString text = format(lat, lon, a.notation, precision);
                    QString error;
                    const auto p = parse(text, &error);
                    const bool mayCollide = (a.notation == Notation::Maidenhead && precision == 2) ||
                                            (a.notation == Notation::IrishGrid && precision <= 2);
                    if (mayCollide && !p) {
                        QVERIFY2(error.startsWith(QLatin1String("ambiguous")) &&
                                     error.contains(name(a.notation)),
                                 qPrintable(error));
                        continue;
                    }
                    QVERIFY2(p && p->notation == a.notation, qPrintable(text + QLatin1String(": ") + error));
                    // Within the text's last unit: the grids' units in metres, degrees' in degrees.
                    const double off = metres(lat, lon, p->latitude, p->longitude);
                    const double unit = a.notation == Notation::Decimal
                                            ? 111320.0 * std::pow(10.0, -precision)
                                        : a.notation == Notation::DMS ? 31.0 * std::pow(10.0, -precision)
                                        : a.notation == Notation::Maidenhead ? 111320.0 * cellWidth[precision]
                                        : a.notation == Notation::MGRS || a.notation >= Notation::BritishGrid
                                            ? std::pow(10.0, 5 - precision)
                                            : std::pow(10.0, -precision);
                    QVERIFY2(off <= unit + 1e-6,
                             qPrintable(QStringLiteral("%1 reads %2 m off").arg(text).arg(off)));
                }
            }
        }
    }

    // Texts made of the characters that positions are written with, and valid texts
    // with one character dropped, doubled or replaced, never crash the reader; what they
    // read is a position in range, what they do not read has a reason.
    void anyTextReadsSafely()
    {
        static const QString alphabet = QStringLiteral("0123456789.,;:-+ NSEWdmsXYZABCVQOJT°'\"′″");
        SplitMix draw;
        const auto pick = [&](int n) { return int(draw.next(0.0, n)); };
        static const char* const valid[] = {"34VCL3323080391",    "59°19'45.48\"N 18°04'06.96\"E",
                                            "34V 333230 6580391", "TQ 30028 80380",
                                            "X6580909 Y1628833",  "JO99AH",
                                            "Z 2096454 1452981"};
        for (int i = 0; i < 100000; ++i) {
            QString text;
            if (i % 2 == 0) {
                for (int n = pick(24); n > 0; --n)
                    text += alphabet[pick(int(alphabet.size()))];
            } else {
                text = QString::fromUtf8(valid[pick(7)]);
                const int at = pick(int(text.size()));
                const int how = pick(3);
                if (how == 0)
                    text.remove(at, 1);
                else if (how == 1)
                    text.insert(at, text[at]);
                else
                    text[at] = alphabet[pick(int(alphabet.size()))];
            }
            QString error;
            const auto p = parse(text, &error);
            if (p)
                QVERIFY2(std::fabs(p->latitude) <= 90.0 && std::fabs(p->longitude) <= 180.0 &&
                             error.isEmpty(),
                         qPrintable(text));
            else
                QVERIFY2(!error.isEmpty(), qPrintable(text));
        }
    }

    // Four threads format and read positions from the first call on (the constant tables
    // are built on first use) and get what one thread gets afterwards.
    void threads()
    {
        constexpr int kCount = 2000;
        static const Notation notations[] = {Notation::MGRS, Notation::UTM, Notation::BritishGrid,
                                             Notation::DMS};
        std::vector<std::pair<double, double>> positions(kCount);
        SplitMix draw;
        for (auto& p : positions)
            p = {draw.next(49.9, 10.0), draw.next(-8.0, 9.0)};
        std::vector<QString> results[4];
        std::vector<std::thread> workers;
        const auto work = [&](int t) {
            for (int i = 0; i < kCount; ++i) {
                const QString text = format(positions[i].first, positions[i].second, notations[(i + t) % 4]);
                const auto p = parse(text);
                results[t].push_back(
                    text + (p ? QString::number(p->latitude, 'g', 17) + QString::number(p->longitude, 'g', 17)
                              : QString()));
            }
        };
        for (int t = 0; t < 4; ++t)
            workers.emplace_back(work, t);
        for (std::thread& w : workers)
            w.join();
        for (int t = 0; t < 4; ++t) {
            const std::vector<QString> concurrent = results[t];
            results[t].clear();
            work(t);
            QVERIFY2(results[t] == concurrent, qPrintable(QStringLiteral("thread %1").arg(t)));
        }
    }
};

QTEST_GUILESS_MAIN(TestPositionText)
#include "tst_positiontext.moc"
