#include "coord/merccoordtrans.h"
#include "coord/roundingcheck_p.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"

#include "kvtest.h"

#include <QTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

using KvTest::field;

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

QByteArray both(double a, double b)
{
    return QByteArray::number(a, 'g', 17) + " " + QByteArray::number(b, 'g', 17);
}

#define COMPARE_BITS(a1, a2, e1, e2)                                                                         \
    QVERIFY2(sameBits(a1, e1) && sameBits(a2, e2), both(a1, a2) + " instead of " + both(e1, e2))

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// One conversion of two values into two, by name: the single call, the call that gives
// both values, and the array entry on three points of which the middle one fails.
struct Conversion
{
    bool ok; // the single call succeeded
    double single[2];
    bool bothOk; // the two-value call says it succeeded
    double both[2];
    ArrayResult array;
    double arrayOut[3][2];
};

// A UTM zone text as LLtoUTM writes it, in parts.
bool zoneParts(const QString& zone, int& number, char& band)
{
    const int digits = zone.size() - 1;
    bool ok = false;
    number = zone.left(digits).toInt(&ok);
    band = zone.isEmpty() ? 0 : zone.at(digits).toLatin1();
    return ok && digits > 0;
}

Conversion convert(const QString& kind, const QString& grid, const QString& zone, double in1, double in2)
{
    Conversion c{};
    const double in[2][3] = {{in1, kNaN, in1}, {in2, kNaN, in2}};
    double out[2][3];
    if (kind == QLatin1String("LL2TM") || kind == QLatin1String("TM2LL")) {
        const CMercCoordTrans t;
        const int g = grid.toInt();
        const long meridian = zone.toLong();
        const bool forward = kind == QLatin1String("LL2TM");
        c.single[0] = forward ? t.LL2TM(true, in1, in2, g, meridian) : t.TM2LL(true, in1, in2, g, meridian);
        c.single[1] = forward ? t.LL2TM(false, in1, in2, g, meridian) : t.TM2LL(false, in1, in2, g, meridian);
        c.bothOk = forward ? t.LL2TM(in1, in2, g, meridian, c.both[0], c.both[1])
                           : t.TM2LL(in1, in2, g, meridian, c.both[0], c.both[1]);
        c.ok = c.bothOk;
        c.array = forward ? t.LL2TM(3, in[0], in[1], g, meridian, out[0], out[1])
                          : t.TM2LL(3, in[0], in[1], g, meridian, out[0], out[1]);
    } else if (kind == QLatin1String("LLtoUTM") || kind == QLatin1String("UTMtoLL")) {
        const int ellipsoid = grid.toInt();
        int number[3];
        char band[3];
        if (kind == QLatin1String("LLtoUTM")) {
            QString text;
            LLtoUTM(ellipsoid, in1, in2, c.single[0], c.single[1], text);
            c.ok = !text.startsWith(QLatin1Char('#'));
            c.array = LLtoUTM(ellipsoid, 3, in[0], in[1], out[0], out[1], number, band);
            if (c.ok && text != QString::number(number[2]) + QLatin1Char(band[2]))
                c.ok = false; // the zone parts differ from the text: report as a mismatch
        } else {
            UTMtoLL(ellipsoid, in1, in2, zone, c.single[0], c.single[1]);
            c.ok = zoneParts(zone, number[0], band[0]) && !(c.single[0] == -1.0 && c.single[1] == -1.0);
            number[1] = number[2] = number[0];
            band[1] = band[2] = band[0];
            c.array = UTMtoLL(ellipsoid, 3, in[0], in[1], number, band, out[0], out[1]);
        }
        c.bothOk = c.ok;
        c.both[0] = c.single[0];
        c.both[1] = c.single[1];
    } else {
        const GaussKrugerProjection p(grid);
        const bool forward = kind == QLatin1String("Gauss");
        c.ok = forward ? p.geodeticToGrid(in1, in2, c.single[0], c.single[1])
                       : p.gridToGeodetic(in1, in2, c.single[0], c.single[1]);
        c.bothOk = c.ok;
        c.both[0] = c.single[0];
        c.both[1] = c.single[1];
        c.array = forward ? p.geodeticToGrid(3, in[0], in[1], out[0], out[1])
                          : p.gridToGeodetic(3, in[0], in[1], out[0], out[1]);
    }
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 2; ++k)
            c.arrayOut[i][k] = out[k][i];
    return c;
}

} // namespace

class tst_CoordArrays : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { KvTest::pinLocaleAndZone(); }

    // Every way to convert gives the doubles the library gave before it was made faster
    // (make_original_results.cpp ran it), and the array entries give them for each good
    // point beside a failing one.
    void originalResults_data()
    {
        KvTest::addRows("coord/original_results.txt", "kind grid zone in1 in2 out1 out2");
    }
    void originalResults()
    {
        const double out1 = field("out1").toDouble(), out2 = field("out2").toDouble();
        const Conversion c = convert(field("kind"), field("grid"), field("zone"), field("in1").toDouble(),
                                     field("in2").toDouble());
        const bool gauss = field("kind").startsWith(QLatin1String("Gauss"));
        if (!gauss || c.ok) // a Gauss call that fails leaves its outputs as they were
            COMPARE_BITS(c.single[0], c.single[1], out1, out2);
        COMPARE_BITS(c.both[0], c.both[1], c.single[0], c.single[1]);
        QCOMPARE(c.array.failed, c.ok ? std::size_t(1) : std::size_t(3));
        QCOMPARE(c.array.firstFailed, c.ok ? std::size_t(1) : std::size_t(0));
        QVERIFY2(std::isnan(c.arrayOut[1][0]) && std::isnan(c.arrayOut[1][1]), c.array.error.toUtf8());
        if (c.ok) {
            COMPARE_BITS(c.arrayOut[0][0], c.arrayOut[0][1], out1, out2);
            COMPARE_BITS(c.arrayOut[2][0], c.arrayOut[2][1], out1, out2);
        }
    }

    // What an array conversion says about the points it cannot convert.
    void failures_data()
    {
        KvTest::addRows("coord/array_failures.txt", "kind grid zone points failed first error");
    }
    void failures()
    {
        QVector<double> a, b;
        for (const QString& point : field("points").split(QLatin1Char(';'))) {
            a.append(point.section(QLatin1Char(','), 0, 0).toDouble());
            b.append(point.section(QLatin1Char(','), 1, 1).toDouble());
        }
        const std::size_t n = std::size_t(a.size());
        QVector<double> x(a.size()), y(a.size());
        QVector<int> zone(a.size(), field("zone").left(2).toInt());
        QVector<char> band(a.size(), field("zone").right(1).at(0).toLatin1());
        const QString& kind = field("kind");
        const CMercCoordTrans t;
        const GaussKrugerProjection p(field("grid"));
        const ArrayResult r =
            kind == QLatin1String("LL2TM")     ? t.LL2TM(n, a.data(), b.data(), field("grid").toInt(),
                                                         field("zone").toLong(), x.data(), y.data())
            : kind == QLatin1String("TM2LL")   ? t.TM2LL(n, a.data(), b.data(), field("grid").toInt(),
                                                         field("zone").toLong(), x.data(), y.data())
            : kind == QLatin1String("LLtoUTM") ? LLtoUTM(field("grid").toInt(), n, a.data(), b.data(),
                                                         x.data(), y.data(), zone.data(), band.data())
            : kind == QLatin1String("UTMtoLL") ? UTMtoLL(field("grid").toInt(), n, a.data(), b.data(),
                                                         zone.data(), band.data(), x.data(), y.data())
            : kind == QLatin1String("Gauss")   ? p.geodeticToGrid(n, a.data(), b.data(), x.data(), y.data())
                                               : p.gridToGeodetic(n, a.data(), b.data(), x.data(), y.data());
        QCOMPARE(r.error, field("error"));
        QCOMPARE(r.failed, std::size_t(field("failed").toUInt()));
        QCOMPARE(r.firstFailed, std::size_t(field("first").toUInt()));
        QCOMPARE(r.ok(), r.failed == 0);
        int nanPoints = 0;
        for (int i = 0; i < a.size(); ++i)
            nanPoints += std::isnan(x[i]) && std::isnan(y[i]) ? 1 : 0;
        QCOMPARE(std::size_t(nanPoints), r.failed);
    }

    void missingArraysFailWithoutWriting()
    {
        const double lat[] = {52.0};
        double out = 7.0;
        const ArrayResult r = CMercCoordTrans().LL2TM(1, lat, nullptr, 1, 0, &out, &out);
        QCOMPARE(r.failed, std::size_t(1));
        QCOMPARE(r.error, QStringLiteral("an array pointer is null"));
        QCOMPARE(out, 7.0);
        QVERIFY(CMercCoordTrans().TM2LL(0, nullptr, nullptr, 4, 9, nullptr, nullptr).ok());
    }

    // sumRoundsAlike against the rounding it claims: rows where the answer is known, then
    // random sums whose claimed interval is checked at its ends.
    void sumRoundsAlike_data()
    {
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<double>("bound");
        QTest::addColumn<bool>("alike");
        QTest::newRow("exact sum, exact term") << 1.0 << 0x1p-60 << 0.0 << true;
        QTest::newRow("a tie cannot be proved") << 1.0 << 0x1p-53 << 0.0 << false;
        QTest::newRow("bound inside the half step") << 1.0 << 0x1p-54 << 0x1p-56 << true;
        QTest::newRow("bound reaching the half step") << 1.0 << 0x1p-54 << 0x1p-54 << false;
        QTest::newRow("below a power of two the step halves") << 1.0 << -0x1p-55 << 0x1p-55 << false;
        QTest::newRow("below a power of two, inside") << 1.0 << -0x1p-55 << 0x1p-57 << true;
        QTest::newRow("zero sum") << 1.0 << -1.0 << 0.0 << false;
        QTest::newRow("infinite sum") << HUGE_VAL << 1.0 << 0.0 << false;
        QTest::newRow("NaN term") << 1.0 << kNaN << 0.0 << false;
    }
    void sumRoundsAlike()
    {
        QFETCH(double, a);
        QFETCH(double, b);
        QFETCH(double, bound);
        QFETCH(bool, alike);
        QCOMPARE(Geodesy::RoundingCheck::sumRoundsAlike(a, b, a + b, bound), alike);
    }
    void sumRoundsAlikeHoldsAtTheBoundEnds()
    {
        std::mt19937_64 random(7);
        std::uniform_real_distribution<double> unit(-1.0, 1.0);
        int proved = 0;
        for (int i = 0; i < 200000; ++i) {
            // b far below a, so that b plus or minus the bound is a double close enough
            // to the real value to test with.
            const double a = std::ldexp(unit(random), int(random() % 20) - 10);
            const double b = a * std::ldexp(unit(random), -25 - int(random() % 15));
            const double s = a + b;
            const double bound = std::fabs(s) * std::ldexp(unit(random) + 1.0, -55);
            if (!Geodesy::RoundingCheck::sumRoundsAlike(a, b, s, bound))
                continue;
            ++proved;
            const double inside = bound * (1.0 - 0x1p-20);
            QVERIFY2(a + (b + inside) == s && a + (b - inside) == s,
                     QByteArray::number(a, 'a') + " + " + QByteArray::number(b, 'a'));
        }
        QVERIFY2(proved > 40000, QByteArray::number(proved));
    }
};

QTEST_GUILESS_MAIN(tst_CoordArrays)
#include "tst_coordarrays.moc"
