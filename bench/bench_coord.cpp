// The projections of KvBase against PROJ doing the same job on the same positions, in
// one program: BM_<operation>/KvBase beside BM_<operation>/PROJ (proj_trans per point) or
// BM_<operation>/PROJ generic (proj_trans_generic on arrays). Every benchmark reports
// points processed, so the table shows the time per point. One iteration converts one
// position (or one array of kArraySize) from a fixed set spread over the grid's area, so
// that no branch or cache state is favoured.

#include "coord/merccoordtrans.h"
#include "coord/positiontext.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"

#include <benchmark/benchmark.h>
#include <proj.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegToRad = kPi / 180.0;
constexpr std::size_t kArraySize = 256;

struct Position
{
    double lat;
    double lon;
};

// kArraySize positions uniformly in a latitude and longitude box (degrees).
std::vector<Position> positionsIn(double south, double north, double west, double east)
{
    std::mt19937_64 random(20240501);
    std::uniform_real_distribution<double> lat(south, north);
    std::uniform_real_distribution<double> lon(west, east);
    std::vector<Position> out(kArraySize);
    for (Position& p : out)
        p = {lat(random), lon(random)};
    return out;
}

class ProjOperation
{
public:
    explicit ProjOperation(const std::string& definition)
        : m_ctx(proj_context_create()), m_pj(proj_create(m_ctx, definition.c_str()))
    {
    }
    ~ProjOperation()
    {
        proj_destroy(m_pj);
        proj_context_destroy(m_ctx);
    }
    ProjOperation(const ProjOperation&) = delete;
    ProjOperation& operator=(const ProjOperation&) = delete;
    PJ* get() const { return m_pj; }

    PJ_COORD forward(const Position& p) const
    {
        return proj_trans(m_pj, PJ_FWD, proj_coord(p.lon * kDegToRad, p.lat * kDegToRad, 0, 0));
    }

private:
    PJ_CONTEXT* m_ctx;
    PJ* m_pj;
};

// A grid of CMercCoordTrans with the PROJ definition of the same projection.
struct GridCase
{
    int grid;
    long zoneMeridian;
    const char* proj;
    double south, north, west, east;
    const char* name;
};

const GridCase kBritish{
    1,
    0,
    "+proj=tmerc +lat_0=49 +lon_0=-2 +k=0.9996012717 +x_0=400000 +y_0=-100000 +ellps=airy",
    50,
    58.5,
    -6,
    1.5,
    "British national grid"};
const GridCase kIrish{2,
                      0,
                      "+proj=tmerc +lat_0=53.5 +lon_0=-8 +k=1.000035 +x_0=200000 +y_0=250000 +ellps=mod_airy",
                      51.5,
                      55.3,
                      -10.3,
                      -5.5,
                      "Irish grid"};
const GridCase kUtm{4, 15, "+proj=utm +zone=33 +ellps=WGS84", 45, 70, 12, 18, "UTM 33N WGS 84"};
const GridCase kRt90Bessel{5,
                           0,
                           "+proj=tmerc +lon_0=15.808277777777779 +x_0=1500000 +ellps=bessel",
                           55.5,
                           68.5,
                           12,
                           19.5,
                           "RT90 2.5 gon V on Bessel"};
const GridCase kHongKong{9,
                         0,
                         "+proj=tmerc +lat_0=22.312133333333 +lon_0=114.178555555556 +k=1 +x_0=836694.05 "
                         "+y_0=819069.8 +ellps=intl",
                         22.15,
                         22.55,
                         113.85,
                         114.45,
                         "Hong Kong 1980 grid"};
const GridCase kRt90Zone{15,
                         0,
                         "+proj=tmerc +lon_0=15.80628333 +k=1.00000561024 +x_0=1500064.274 +y_0=-667.711 "
                         "+ellps=GRS80",
                         55.5,
                         68.5,
                         12,
                         19.5,
                         "RT90 zone grid 15"};

void perPoint(benchmark::State& state, std::size_t pointsPerIteration = 1)
{
    state.SetItemsProcessed(std::int64_t(state.iterations() * pointsPerIteration));
}

// ---- CMercCoordTrans: LL2TM and TM2LL ------------------------------------------------

void ll2tm(benchmark::State& state, const GridCase& c)
{
    const CMercCoordTrans trans;
    const std::vector<Position> positions = positionsIn(c.south, c.north, c.west, c.east);
    std::size_t i = 0;
    double e = 0, n = 0;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(trans.LL2TM(p.lat, p.lon, c.grid, c.zoneMeridian, e, n));
        benchmark::DoNotOptimize(e);
        benchmark::DoNotOptimize(n);
    }
    state.SetLabel(std::string("LL2TM grid ") + std::to_string(c.grid) + ", " + c.name +
                   ", easting + northing");
    perPoint(state);
}

void ll2tmTwoCalls(benchmark::State& state, const GridCase& c)
{
    const CMercCoordTrans trans;
    const std::vector<Position> positions = positionsIn(c.south, c.north, c.west, c.east);
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(trans.LL2TM(true, p.lat, p.lon, c.grid, c.zoneMeridian));
        benchmark::DoNotOptimize(trans.LL2TM(false, p.lat, p.lon, c.grid, c.zoneMeridian));
    }
    state.SetLabel(std::string("LL2TM grid ") + std::to_string(c.grid) +
                   ", easting + northing as two calls LL2TM(true/false, ...)");
    perPoint(state);
}

void projForward(benchmark::State& state, const GridCase& c)
{
    const ProjOperation op(c.proj);
    if (!op.get()) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    const std::vector<Position> positions = positionsIn(c.south, c.north, c.west, c.east);
    std::vector<PJ_COORD> radians;
    for (const Position& p : positions)
        radians.push_back(proj_coord(p.lon * kDegToRad, p.lat * kDegToRad, 0, 0));
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(proj_trans(op.get(), PJ_FWD, radians[i++ % kArraySize]));
    perPoint(state);
}

// Grid positions (northing, easting) of the box, from PROJ's forward: grid 9 takes its
// central meridian in degrees as radians, so its own forward gives no sensible values.
std::vector<Position> gridPositions(const GridCase& c)
{
    const ProjOperation op(c.proj);
    std::vector<Position> grid;
    for (const Position& p : positionsIn(c.south, c.north, c.west, c.east)) {
        const PJ_COORD g = op.forward(p);
        grid.push_back({g.enu.n, g.enu.e});
    }
    return grid;
}

void tm2ll(benchmark::State& state, const GridCase& c)
{
    const CMercCoordTrans trans;
    const std::vector<Position> grid = gridPositions(c);
    std::size_t i = 0;
    double lat = 0, lon = 0;
    for (auto _ : state) {
        const Position& g = grid[i++ % kArraySize];
        benchmark::DoNotOptimize(trans.TM2LL(g.lon, g.lat, c.grid, c.zoneMeridian, lat, lon));
        benchmark::DoNotOptimize(lat);
        benchmark::DoNotOptimize(lon);
    }
    state.SetLabel(std::string("TM2LL grid ") + std::to_string(c.grid) + ", " + c.name +
                   ", latitude + longitude");
    perPoint(state);
}

void tm2llTwoCalls(benchmark::State& state, const GridCase& c)
{
    const CMercCoordTrans trans;
    const std::vector<Position> grid = gridPositions(c);
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& g = grid[i++ % kArraySize];
        benchmark::DoNotOptimize(trans.TM2LL(true, g.lon, g.lat, c.grid, c.zoneMeridian));
        benchmark::DoNotOptimize(trans.TM2LL(false, g.lon, g.lat, c.grid, c.zoneMeridian));
    }
    state.SetLabel(std::string("TM2LL grid ") + std::to_string(c.grid) +
                   ", latitude + longitude as two calls TM2LL(true/false, ...)");
    perPoint(state);
}

void projInverse(benchmark::State& state, const GridCase& c)
{
    const ProjOperation op(c.proj);
    if (!op.get()) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    std::vector<PJ_COORD> grid;
    for (const Position& p : positionsIn(c.south, c.north, c.west, c.east))
        grid.push_back(op.forward(p));
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(proj_trans(op.get(), PJ_INV, grid[i++ % kArraySize]));
    perPoint(state);
}

// Arrays: kArraySize points per iteration.
struct Arrays
{
    explicit Arrays(const std::vector<Position>& positions)
    {
        for (const Position& p : positions) {
            a.push_back(p.lat);
            b.push_back(p.lon);
        }
        x.resize(a.size());
        y.resize(a.size());
    }
    std::vector<double> a, b, x, y;
};

void ll2tmArray(benchmark::State& state, const GridCase& c)
{
    const CMercCoordTrans trans;
    Arrays v(positionsIn(c.south, c.north, c.west, c.east));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            trans.LL2TM(kArraySize, v.a.data(), v.b.data(), c.grid, c.zoneMeridian, v.x.data(), v.y.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel(std::string("LL2TM grid ") + std::to_string(c.grid) + ", arrays of " +
                   std::to_string(kArraySize) + " points");
    perPoint(state, kArraySize);
}

void tm2llArray(benchmark::State& state, const GridCase& c)
{
    const CMercCoordTrans trans;
    Arrays v(gridPositions(c)); // a: northings, b: eastings
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            trans.TM2LL(kArraySize, v.b.data(), v.a.data(), c.grid, c.zoneMeridian, v.x.data(), v.y.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel(std::string("TM2LL grid ") + std::to_string(c.grid) + ", arrays of " +
                   std::to_string(kArraySize) + " points");
    perPoint(state, kArraySize);
}

// proj_trans_generic works in place: each iteration copies the input in first.
void projGeneric(benchmark::State& state, const GridCase& c, PJ_DIRECTION direction)
{
    const ProjOperation op(c.proj);
    if (!op.get()) {
        state.SkipWithError("PROJ could not create the projection");
        return;
    }
    std::vector<double> inX, inY;
    for (const Position& p : positionsIn(c.south, c.north, c.west, c.east)) {
        const PJ_COORD in =
            direction == PJ_FWD ? proj_coord(p.lon * kDegToRad, p.lat * kDegToRad, 0, 0) : op.forward(p);
        inX.push_back(in.xy.x);
        inY.push_back(in.xy.y);
    }
    std::vector<double> x(kArraySize), y(kArraySize);
    for (auto _ : state) {
        std::memcpy(x.data(), inX.data(), kArraySize * sizeof(double));
        std::memcpy(y.data(), inY.data(), kArraySize * sizeof(double));
        benchmark::DoNotOptimize(proj_trans_generic(op.get(), direction, x.data(), sizeof(double), kArraySize,
                                                    y.data(), sizeof(double), kArraySize, nullptr, 0, 0,
                                                    nullptr, 0, 0));
        benchmark::ClobberMemory();
    }
    perPoint(state, kArraySize);
}

// ---- LLtoUTM and UTMtoLL -------------------------------------------------------------

void llToUtm(benchmark::State& state)
{
    const std::vector<Position> positions = positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east);
    std::size_t i = 0;
    double n = 0, e = 0;
    QString zone;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        LLtoUTM(23, p.lat, p.lon, n, e, zone);
        benchmark::DoNotOptimize(n);
        benchmark::DoNotOptimize(e);
        benchmark::DoNotOptimize(zone);
    }
    state.SetLabel("LLtoUTM WGS-84 (zone chosen, zone text)");
    perPoint(state);
}

void utmToLl(benchmark::State& state)
{
    std::vector<Position> grid;
    std::vector<QString> zones;
    for (const Position& p : positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east)) {
        double n, e;
        QString zone;
        LLtoUTM(23, p.lat, p.lon, n, e, zone);
        grid.push_back({n, e});
        zones.push_back(zone);
    }
    std::size_t i = 0;
    double lat = 0, lon = 0;
    for (auto _ : state) {
        const std::size_t k = i++ % kArraySize;
        UTMtoLL(23, grid[k].lat, grid[k].lon, zones[k], lat, lon);
        benchmark::DoNotOptimize(lat);
        benchmark::DoNotOptimize(lon);
    }
    state.SetLabel("UTMtoLL WGS-84 (zone text read)");
    perPoint(state);
}

void llToUtmArray(benchmark::State& state)
{
    Arrays v(positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east));
    std::vector<int> zone(kArraySize);
    std::vector<char> band(kArraySize);
    for (auto _ : state) {
        benchmark::DoNotOptimize(LLtoUTM(23, kArraySize, v.a.data(), v.b.data(), v.x.data(), v.y.data(),
                                         zone.data(), band.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel("LLtoUTM WGS-84, arrays of " + std::to_string(kArraySize) + " points");
    perPoint(state, kArraySize);
}

void utmToLlArray(benchmark::State& state)
{
    Arrays v(positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east));
    std::vector<double> n(kArraySize), e(kArraySize);
    std::vector<int> zone(kArraySize);
    std::vector<char> band(kArraySize);
    LLtoUTM(23, kArraySize, v.a.data(), v.b.data(), n.data(), e.data(), zone.data(), band.data());
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            UTMtoLL(23, kArraySize, n.data(), e.data(), zone.data(), band.data(), v.x.data(), v.y.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel("UTMtoLL WGS-84, arrays of " + std::to_string(kArraySize) + " points");
    perPoint(state, kArraySize);
}

// ---- GaussKrugerProjection (SWEREF 99 TM) ----------------------------------------------

const GridCase kSweref{
    0, 0, "+proj=tmerc +lon_0=15 +k=0.9996 +x_0=500000 +ellps=GRS80", 55.3, 69, 11, 24, "SWEREF 99 TM"};

void gaussForward(benchmark::State& state)
{
    const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    const std::vector<Position> positions =
        positionsIn(kSweref.south, kSweref.north, kSweref.west, kSweref.east);
    std::size_t i = 0;
    double x = 0, y = 0;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(projection.geodeticToGrid(p.lat, p.lon, x, y));
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
    }
    state.SetLabel("GaussKrugerProjection::geodeticToGrid, SWEREF 99 TM");
    perPoint(state);
}

void gaussInverse(benchmark::State& state)
{
    const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    std::vector<Position> grid;
    for (const Position& p : positionsIn(kSweref.south, kSweref.north, kSweref.west, kSweref.east)) {
        Position g{};
        projection.geodeticToGrid(p.lat, p.lon, g.lat, g.lon);
        grid.push_back(g);
    }
    std::size_t i = 0;
    double lat = 0, lon = 0;
    for (auto _ : state) {
        const Position& g = grid[i++ % kArraySize];
        benchmark::DoNotOptimize(projection.gridToGeodetic(g.lat, g.lon, lat, lon));
        benchmark::DoNotOptimize(lat);
        benchmark::DoNotOptimize(lon);
    }
    state.SetLabel("GaussKrugerProjection::gridToGeodetic, SWEREF 99 TM");
    perPoint(state);
}

void gaussForwardArray(benchmark::State& state)
{
    const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    Arrays v(positionsIn(kSweref.south, kSweref.north, kSweref.west, kSweref.east));
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            projection.geodeticToGrid(kArraySize, v.a.data(), v.b.data(), v.x.data(), v.y.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel("GaussKrugerProjection::geodeticToGrid, arrays of " + std::to_string(kArraySize) +
                   " points");
    perPoint(state, kArraySize);
}

void gaussInverseArray(benchmark::State& state)
{
    const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    Arrays v(positionsIn(kSweref.south, kSweref.north, kSweref.west, kSweref.east));
    std::vector<double> x(kArraySize), y(kArraySize);
    projection.geodeticToGrid(kArraySize, v.a.data(), v.b.data(), x.data(), y.data());
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            projection.gridToGeodetic(kArraySize, x.data(), y.data(), v.x.data(), v.y.data()));
        benchmark::ClobberMemory();
    }
    state.SetLabel("GaussKrugerProjection::gridToGeodetic, arrays of " + std::to_string(kArraySize) +
                   " points");
    perPoint(state, kArraySize);
}

// ---- Grid references and texts: the peer projects with PROJ and writes the same text
// with the C library ------------------------------------------------------------------

constexpr char kLetters[] = "ABCDEFGHJKLMNPQRSTUVWXYZ";

void ll2grMgrs(benchmark::State& state)
{
    const CMercCoordTrans trans;
    const std::vector<Position> positions = positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east);
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(trans.LL2GR(p.lat, p.lon, 4));
    }
    state.SetLabel("LL2GR grid 4, MGRS reference text");
    perPoint(state);
}

// UTM 33 forward and the MGRS text of zone 33 (column set 3, odd zone).
void projMgrs(benchmark::State& state)
{
    const ProjOperation op(kUtm.proj);
    const std::vector<Position> positions = positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east);
    std::size_t i = 0;
    char text[32];
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        const PJ_COORD g = op.forward(p);
        const long e = long(g.enu.e + 0.5), n = long(g.enu.n + 0.5);
        const char band = kLetters[2 + int((p.lat + 80.0) / 8.0)];
        std::snprintf(text, sizeof text, "%d%c%c%c%05ld%05ld", 33, band, kLetters[16 + e / 100000 - 1],
                      kLetters[(n / 100000) % 20], e % 100000, n % 100000);
        benchmark::DoNotOptimize(text);
    }
    perPoint(state);
}

void ll2grBritish(benchmark::State& state)
{
    const CMercCoordTrans trans;
    const std::vector<Position> positions =
        positionsIn(kBritish.south, kBritish.north, kBritish.west, kBritish.east);
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(trans.LL2GR(p.lat, p.lon, 1));
    }
    state.SetLabel("LL2GR grid 1, British grid reference text");
    perPoint(state);
}

void projBritish(benchmark::State& state)
{
    const ProjOperation op(kBritish.proj);
    const std::vector<Position> positions =
        positionsIn(kBritish.south, kBritish.north, kBritish.west, kBritish.east);
    static const char squares[] = "VQLFAWRMGBXSNHCYTOJDZUPKE";
    std::size_t i = 0;
    char text[32];
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        const PJ_COORD g = op.forward(p);
        const long e = long(g.enu.e + 0.5), n = long(g.enu.n + 0.5);
        const char first = n >= 1000000  ? (e >= 500000 ? 'J' : 'H')
                           : n >= 500000 ? (e >= 500000 ? 'O' : 'N')
                                         : (e >= 500000 ? 'T' : 'S');
        std::snprintf(text, sizeof text, "%c%c%05ld%05ld", first,
                      squares[(e / 100000 % 5) * 5 + n / 100000 % 5], e % 100000, n % 100000);
        benchmark::DoNotOptimize(text);
    }
    perPoint(state);
}

void gr2llMgrs(benchmark::State& state)
{
    const CMercCoordTrans trans;
    std::vector<QString> refs;
    for (const Position& p : positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east))
        refs.push_back(trans.LL2GR(p.lat, p.lon, 4));
    std::size_t i = 0;
    double lat = 0, lon = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(trans.GR2LL(refs[i++ % kArraySize], 4, lat, lon));
        benchmark::DoNotOptimize(lat);
        benchmark::DoNotOptimize(lon);
    }
    state.SetLabel("GR2LL grid 4, MGRS reference to latitude + longitude");
    perPoint(state);
}

// Reads the digits of a zone-33 reference and inverts with PROJ (the band resolves the
// 2000 km cycle as in GR2LL).
void projMgrsRead(benchmark::State& state)
{
    const ProjOperation op(kUtm.proj);
    const CMercCoordTrans trans;
    std::vector<std::string> refs;
    for (const Position& p : positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east))
        refs.push_back(trans.LL2GR(p.lat, p.lon, 4).toStdString());
    std::size_t i = 0;
    for (auto _ : state) {
        const std::string& ref = refs[i++ % kArraySize];
        int zone = 0;
        char band = 0, column = 0, row = 0;
        char digits[16] = {};
        std::sscanf(ref.c_str(), "%2d%c%c%c%10s", &zone, &band, &column, &row, digits);
        const double e = (std::strchr(kLetters, column) - kLetters - 15) * 100000.0 +
                         std::atof(std::string(digits, 5).c_str());
        double n = ((std::strchr(kLetters, row) - kLetters) % 20) * 100000.0 + std::atof(digits + 5);
        n += 2000000.0 * std::round((5500000.0 - n) / 2000000.0);
        benchmark::DoNotOptimize(proj_trans(op.get(), PJ_INV, proj_coord(e, n, 0, 0)));
    }
    perPoint(state);
}

// ---- PositionText UTM and MGRS against PROJ plus the same printf/sscanf -------------

void positionTextFormat(benchmark::State& state, PositionText::Notation notation)
{
    const std::vector<Position> positions = positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east);
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(PositionText::format(p.lat, p.lon, notation));
    }
    state.SetLabel("PositionText::format " + PositionText::name(notation).toStdString() + ", UTM 33 area");
    perPoint(state);
}

void positionTextParse(benchmark::State& state, PositionText::Notation notation)
{
    std::vector<QString> texts;
    for (const Position& p : positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east))
        texts.push_back(PositionText::format(p.lat, p.lon, notation));
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(PositionText::parse(texts[i++ % kArraySize], notation));
    state.SetLabel("PositionText::parse " + PositionText::name(notation).toStdString() +
                   " (notation given), UTM 33 area");
    perPoint(state);
}

// UTM 33 forward and a "33V 333230 6580391" text.
void projUtmText(benchmark::State& state)
{
    const ProjOperation op(kUtm.proj);
    const std::vector<Position> positions = positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east);
    std::size_t i = 0;
    char text[48];
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        const PJ_COORD g = op.forward(p);
        const char band = kLetters[2 + int((p.lat + 80.0) / 8.0)];
        std::snprintf(text, sizeof text, "%d%c %ld %ld", 33, band, long(g.enu.e + 0.5), long(g.enu.n + 0.5));
        benchmark::DoNotOptimize(text);
    }
    perPoint(state);
}

void projUtmTextRead(benchmark::State& state)
{
    const ProjOperation op(kUtm.proj);
    std::vector<std::string> texts;
    for (const Position& p : positionsIn(kUtm.south, kUtm.north, kUtm.west, kUtm.east))
        texts.push_back(PositionText::format(p.lat, p.lon, PositionText::Notation::UTM).toStdString());
    std::size_t i = 0;
    for (auto _ : state) {
        int zone = 0;
        char band = 0;
        double e = 0, n = 0;
        std::sscanf(texts[i++ % kArraySize].c_str(), "%d%c %lf %lf", &zone, &band, &e, &n);
        benchmark::DoNotOptimize(proj_trans(op.get(), PJ_INV, proj_coord(e, n, 0, 0)));
    }
    perPoint(state);
}

const GridCase kRt90Text{
    0,
    0,
    "+proj=tmerc +lon_0=15.806284529444445 +k=1.00000561024 +x_0=1500064.274 +y_0=-667.711 "
    "+ellps=GRS80",
    55.5,
    68.5,
    12,
    19.5,
    "RT90"};

void rt90String(benchmark::State& state)
{
    const std::vector<Position> positions =
        positionsIn(kRt90Text.south, kRt90Text.north, kRt90Text.west, kRt90Text.east);
    std::size_t i = 0;
    QString text;
    for (auto _ : state) {
        const Position& p = positions[i++ % kArraySize];
        benchmark::DoNotOptimize(CoordToRT90String(text, p.lon, p.lat, TCoordFormatRT90));
        benchmark::DoNotOptimize(text);
    }
    state.SetLabel("CoordToRT90String");
    perPoint(state);
}

void projRt90String(benchmark::State& state)
{
    const ProjOperation op(kRt90Text.proj);
    const std::vector<Position> positions =
        positionsIn(kRt90Text.south, kRt90Text.north, kRt90Text.west, kRt90Text.east);
    std::size_t i = 0;
    char text[32];
    for (auto _ : state) {
        const PJ_COORD g = op.forward(positions[i++ % kArraySize]);
        std::snprintf(text, sizeof text, "X%011.3fY%011.3f", g.enu.n, g.enu.e);
        benchmark::DoNotOptimize(text);
    }
    perPoint(state);
}

void registerGrid(const GridCase& c, bool inverse)
{
    const std::string g = "grid" + std::to_string(c.grid);
    benchmark::RegisterBenchmark(("BM_LL2TM_" + g + "/KvBase").c_str(), ll2tm, c);
    benchmark::RegisterBenchmark(("BM_LL2TM_" + g + "/PROJ").c_str(), projForward, c);
    if (inverse) {
        benchmark::RegisterBenchmark(("BM_TM2LL_" + g + "/KvBase").c_str(), tm2ll, c);
        benchmark::RegisterBenchmark(("BM_TM2LL_" + g + "/PROJ").c_str(), projInverse, c);
    }
}

} // namespace

int main(int argc, char** argv)
{
    for (const GridCase* c : {&kUtm, &kBritish, &kIrish, &kRt90Bessel, &kHongKong})
        registerGrid(*c, true);
    registerGrid(kRt90Zone, false);
    benchmark::RegisterBenchmark("BM_LL2TM_grid4_two_calls/KvBase", ll2tmTwoCalls, kUtm);
    benchmark::RegisterBenchmark("BM_LL2TM_grid4_two_calls/PROJ", projForward, kUtm);
    benchmark::RegisterBenchmark("BM_TM2LL_grid4_two_calls/KvBase", tm2llTwoCalls, kUtm);
    benchmark::RegisterBenchmark("BM_TM2LL_grid4_two_calls/PROJ", projInverse, kUtm);
    benchmark::RegisterBenchmark("BM_LL2TM_grid4_array/KvBase", ll2tmArray, kUtm);
    benchmark::RegisterBenchmark("BM_LL2TM_grid4_array/PROJ generic", projGeneric, kUtm, PJ_FWD);
    benchmark::RegisterBenchmark("BM_TM2LL_grid4_array/KvBase", tm2llArray, kUtm);
    benchmark::RegisterBenchmark("BM_TM2LL_grid4_array/PROJ generic", projGeneric, kUtm, PJ_INV);
    benchmark::RegisterBenchmark("BM_LL2TM_grid1_array/KvBase", ll2tmArray, kBritish);
    benchmark::RegisterBenchmark("BM_LL2TM_grid1_array/PROJ generic", projGeneric, kBritish, PJ_FWD);
    benchmark::RegisterBenchmark("BM_TM2LL_grid1_array/KvBase", tm2llArray, kBritish);
    benchmark::RegisterBenchmark("BM_TM2LL_grid1_array/PROJ generic", projGeneric, kBritish, PJ_INV);

    benchmark::RegisterBenchmark("BM_LLtoUTM/KvBase", llToUtm);
    benchmark::RegisterBenchmark("BM_LLtoUTM/PROJ", projForward, kUtm);
    benchmark::RegisterBenchmark("BM_UTMtoLL/KvBase", utmToLl);
    benchmark::RegisterBenchmark("BM_UTMtoLL/PROJ", projInverse, kUtm);
    benchmark::RegisterBenchmark("BM_LLtoUTM_array/KvBase", llToUtmArray);
    benchmark::RegisterBenchmark("BM_LLtoUTM_array/PROJ generic", projGeneric, kUtm, PJ_FWD);
    benchmark::RegisterBenchmark("BM_UTMtoLL_array/KvBase", utmToLlArray);
    benchmark::RegisterBenchmark("BM_UTMtoLL_array/PROJ generic", projGeneric, kUtm, PJ_INV);

    benchmark::RegisterBenchmark("BM_Gauss_forward/KvBase", gaussForward);
    benchmark::RegisterBenchmark("BM_Gauss_forward/PROJ", projForward, kSweref);
    benchmark::RegisterBenchmark("BM_Gauss_inverse/KvBase", gaussInverse);
    benchmark::RegisterBenchmark("BM_Gauss_inverse/PROJ", projInverse, kSweref);
    benchmark::RegisterBenchmark("BM_Gauss_forward_array/KvBase", gaussForwardArray);
    benchmark::RegisterBenchmark("BM_Gauss_forward_array/PROJ generic", projGeneric, kSweref, PJ_FWD);
    benchmark::RegisterBenchmark("BM_Gauss_inverse_array/KvBase", gaussInverseArray);
    benchmark::RegisterBenchmark("BM_Gauss_inverse_array/PROJ generic", projGeneric, kSweref, PJ_INV);

    benchmark::RegisterBenchmark("BM_LL2GR_MGRS/KvBase", ll2grMgrs);
    benchmark::RegisterBenchmark("BM_LL2GR_MGRS/PROJ", projMgrs);
    benchmark::RegisterBenchmark("BM_LL2GR_British/KvBase", ll2grBritish);
    benchmark::RegisterBenchmark("BM_LL2GR_British/PROJ", projBritish);
    benchmark::RegisterBenchmark("BM_GR2LL_MGRS/KvBase", gr2llMgrs);
    benchmark::RegisterBenchmark("BM_GR2LL_MGRS/PROJ", projMgrsRead);
    benchmark::RegisterBenchmark("BM_PositionText_UTM_format/KvBase", positionTextFormat,
                                 PositionText::Notation::UTM);
    benchmark::RegisterBenchmark("BM_PositionText_UTM_format/PROJ", projUtmText);
    benchmark::RegisterBenchmark("BM_PositionText_MGRS_format/KvBase", positionTextFormat,
                                 PositionText::Notation::MGRS);
    benchmark::RegisterBenchmark("BM_PositionText_MGRS_format/PROJ", projMgrs);
    benchmark::RegisterBenchmark("BM_PositionText_UTM_parse/KvBase", positionTextParse,
                                 PositionText::Notation::UTM);
    benchmark::RegisterBenchmark("BM_PositionText_UTM_parse/PROJ", projUtmTextRead);
    benchmark::RegisterBenchmark("BM_PositionText_MGRS_parse/KvBase", positionTextParse,
                                 PositionText::Notation::MGRS);
    benchmark::RegisterBenchmark("BM_PositionText_MGRS_parse/PROJ", projMgrsRead);
    benchmark::RegisterBenchmark("BM_CoordToRT90String/KvBase", rt90String);
    benchmark::RegisterBenchmark("BM_CoordToRT90String/PROJ", projRt90String);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
