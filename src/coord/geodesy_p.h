#ifndef KVBASE_COORD_GEODESY_P_H
#define KVBASE_COORD_GEODESY_P_H

// The facts and formulas every coordinate file shares: ellipsoids, angle factors, UTM
// zones and latitude bands, the MGRS 100 km letters, the transverse Mercator series and
// the Swedish grid parameters. Not part of the API.
//
// Angles are degrees unless a name says radians, lengths metres. Functions that can
// fail return std::optional; the "legacy" and "grid" functions reproduce the results
// that CMercCoordTrans, LLtoUTM and UTMtoLL have always given, quirks included, and
// say where they differ from the standard ones beside them.

#include "coord/utm.h"

#include <QChar>
#include <QString>

#include <optional>

namespace Geodesy {

// ---- Angles ---------------------------------------------------------------------------

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegToRad = kPi / 180.0; // 0.017453292519943295
constexpr double kRadToDeg = 180.0 / kPi; // 57.29577951308232
/// The factor of CMercCoordTrans's grids. It differs from pi/180 in the 16th digit;
/// the grid values the applications have stored were computed with it.
constexpr double kGridDegToRad = 0.017453292519943278;
/// The forward factor of LLtoUTM, pi/180 cut to ten digits (about 7 mm of northing at
/// 60 degrees); the UTM texts on record were computed with it. Its inverse is exact.
constexpr double kLegacyUtmDegToRad = 0.0174532925;

// ---- Ellipsoids -----------------------------------------------------------------------

struct Ellipsoid
{
    double a; ///< semi-major axis, metres
    double f; ///< flattening
    constexpr double e2() const { return f * (2.0 - f); }
};

constexpr Ellipsoid kWgs84{6378137.0, 1.0 / 298.257223563};         // NIMA TR8350.2
constexpr Ellipsoid kGrs80{6378137.0, 0.003352810681182319};        // 1/298.257222101, IUGG 1979
constexpr Ellipsoid kBessel1841{6377397.155, 0.003342773182174806}; // 1/299.1528128, RT90
constexpr Ellipsoid kAiry1830{6377563.396, 1.0 / 299.3249646};      // OSGB36
constexpr Ellipsoid kAiryModified{6377340.189, 1.0 / 299.3249646};  // Ireland 1965

/// The rounded table of LLtoUTM and UTMtoLL (radius to the metre, e^2 to about nine
/// digits): index 0 a placeholder, 1 "Airy" to 23 "WGS-84"; nullptr outside.
const UtmEllipsoid* legacyUtmEllipsoid(int index);
/// Index of "WGS-84" in that table.
constexpr int kLegacyUtmWgs84 = 23;

// ---- Points ---------------------------------------------------------------------------

struct GeoPoint
{
    double lat; ///< degrees, north positive
    double lon; ///< degrees, east positive
};

struct GridPoint
{
    double easting;  ///< metres
    double northing; ///< metres
};

// ---- UTM zones and latitude bands -----------------------------------------------------

/// The 24 letters of MGRS: A to Z without I and O. The latitude bands C to X are the
/// letters 2 to 21.
constexpr char kLetters[] = "ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr int kLetterCount = 24;
constexpr int kBandCount = 20;

/// The zone the Norway exception (32 for 56 <= lat < 64 and 3 <= lon < 12) or the
/// Svalbard exceptions (31, 33, 35, 37 for 72 <= lat < svalbardNorthEnd and 0 <= lon < 42,
/// split at 9, 21 and 33) give a position; nullopt where neither applies.
std::optional<int> utmZoneException(double lat, double lon, double svalbardNorthEnd);
/// UTM zone 1 to 60 of a position: the 6-degree strip from 180 W (180 E belongs to
/// zone 60) or the exception (Svalbard's for 72 <= lat < 84); nullopt for NaN,
/// |lat| > 90 or |lon| > 180.
std::optional<int> utmZone(double lat, double lon);
/// True for the zone numbers 1 to 60.
constexpr bool validUtmZone(long zone)
{
    return zone >= 1 && zone <= 60;
}
/// Central meridian in degrees of a UTM zone.
constexpr long utmCentralMeridian(long zone)
{
    return 6 * zone - 183;
}
/// CMercCoordTrans's zone rule (position already checked): strip k = trunc(lon / 6) east
/// of Greenwich and trunc(lon / 6 - 1) west of it, zone k + 31, so an exact negative
/// multiple of 6 lands one zone further west, -180 gives 0 and 180 gives 61; then the
/// exceptions, Svalbard's with no northern end.
long gridUtmZone(double lat, double lon);

/// Latitude band letter C to X of -80 <= lat <= 84 (X reaches from 72 to 84); nullopt
/// outside and for NaN.
std::optional<char> bandLetter(double lat);
/// CMercCoordTrans's band letter (latitude already checked): letter trunc(lat / 8 + 13) - 1
/// of kLetters, so A and B south of -80 and X from 72 to the pole. It can differ from
/// bandLetter within 1e-14 degrees of a band edge, where the two sums round apart.
char gridBandLetter(double lat);
/// Band index 0 (C) to 19 (X) of a letter; nullopt for any other character.
std::optional<int> bandIndex(QChar letter);

// ---- MGRS 100 km squares --------------------------------------------------------------

/// Column letter of the 100 km square whose easting digit (easting / 100 km, 1 to 8
/// inside a zone) is given: the zone's set, (zone - 1) mod 3, letters A-H, J-R or S-Z.
/// Digits 0 and 9 spill into the neighbouring set's letters, as stored references do;
/// nullopt where the index leaves the 24 letters.
std::optional<char> mgrsColumnLetter(long zone, long eastingDigit);
/// Row letter of the 100 km square with the northing index (northing / 100 km, >= 0):
/// A to V, repeating every 2000 km, starting at F in even zones. The alternative
/// lettering (older MGRS, on the Clarke ellipsoids) starts ten letters later.
char mgrsRowLetter(long zone, long northingIndex, bool alternative);
/// Easting digit 1 to 8 of a column letter; nullopt when the letter is not one of the
/// zone's set.
std::optional<int> mgrsEastingDigit(long zone, QChar letter);
/// Northing index 0 to 19 (northing / 100 km modulo 20) of a row letter; nullopt for a
/// letter that is not A to V.
std::optional<int> mgrsNorthingIndex(long zone, QChar letter, bool alternative);

// ---- British and Irish grid letters ---------------------------------------------------

/// A square of a national grid counted from the false origin: 500 km squares for the
/// first British letter, 100 km squares for the other letter.
struct SquareIndex
{
    int east;
    int north;
};

/// First letter of a British reference, of the 500 km square east 0 or 1, north 0 to 2:
/// S T, N O, H J from south to north.
char britishFirstLetter(const SquareIndex& square500);
/// The 500 km square of a first letter; nullopt for letters other than H J N O S T.
std::optional<SquareIndex> britishFirstLetterSquare(QChar letter);
/// The letter of a 100 km square (digits 0 to 9, the 5 x 5 lettering repeating every
/// 500 km): the second British letter, the only Irish one.
char squareLetter(const SquareIndex& square100);
/// The first square (digits 0 to 4) of a letter; nullopt for I and non-letters.
std::optional<SquareIndex> squareLetterIndex(QChar letter);

// ---- Transverse Mercator --------------------------------------------------------------

/// A transverse Mercator projection.
struct TmParameters
{
    Ellipsoid ellipsoid;
    double centralMeridian; ///< degrees
    double scale;           ///< on the central meridian
    double falseNorthing;   ///< metres
    double falseEasting;    ///< metres
};

/// Gauss conformal projection with Krueger's series to n^4 (the form of the Swedish
/// mapping authority): better than 1 mm within 20 degrees of the central meridian.
/// nullopt for non-finite input or results.
std::optional<GridPoint> tmForward(const TmParameters& p, const GeoPoint& position);
/// The inverse of tmForward.
std::optional<GeoPoint> tmInverse(const TmParameters& p, const GridPoint& grid);

/// A grid of CMercCoordTrans: semi-axes already multiplied by the central scale.
struct OsGridRow
{
    double aF0;
    double bF0;
    double phi0;    ///< latitude of true origin, radians
    double lambda0; ///< central meridian, radians
    double N0;
    double E0;
};

/// The Ordnance Survey's series (about 1 mm within 3.5 degrees of the central
/// meridian, 0.1 m at 6), angles through kGridDegToRad. No check of the input.
GridPoint osTmForward(const OsGridRow& r, const GeoPoint& position);
/// Its inverse: iterates the meridional arc to 1 mm. nullopt for non-finite input or
/// a northing so far beyond the poles that it never settles; either value of the
/// result may still be non-finite far from the meridian.
std::optional<GeoPoint> osTmInverse(const OsGridRow& r, const GridPoint& grid);

/// Scale, false easting and southern false northing of UTM.
constexpr double kUtmScale = 0.9996;
constexpr double kUtmFalseEasting = 500000.0;
constexpr double kUtmFalseNorthingSouth = 10000000.0;

/// The series of LLtoUTM (Snyder's, to e^6) on a radius and e^2, the forward with
/// kLegacyUtmDegToRad. Northing counted from the equator (negative south). No checks.
GridPoint legacyUtmForward(double a, double e2, double lat, double lon, double centralMeridian);
/// The series of UTMtoLL, with the exact factor. No checks; may be non-finite.
GeoPoint legacyUtmInverse(double a, double e2, double centralMeridian, const GridPoint& grid);

/// A UTM position as parts.
struct UtmPoint
{
    int zone;       ///< number
    char band;      ///< latitude band letter
    GridPoint grid; ///< false northing included south of the equator
};

/// LLtoUTM's position as parts: the longitude wrapped into -180..180 (values just below
/// -180 stay and give zone 0 or less), the zone with the exceptions, Svalbard's up to
/// 84 N, band "Z" outside -80..84. Without a point, failure holds LLtoUTM's zone text:
/// "#INVALID ELLIPSOID", "#INVALID LATITUDE" or "#INVALID LONGITUDE".
struct LegacyUtmResult
{
    std::optional<UtmPoint> point;
    const char* failure = nullptr;
};
LegacyUtmResult legacyUtm(int ellipsoid, double lat, double lon);

// ---- The grids of CMercCoordTrans -----------------------------------------------------

/// Row of grid g (1 to 18): zoneMeridian (whole degrees) is the central meridian of the
/// UTM grids 3, 4, 10 and 11; 13 to 18 are the RT90 zones of rt90Zone(g - 13).
/// nullopt for other grids.
std::optional<OsGridRow> gridRow(int g, long zoneMeridian);
/// |grid| without overflow (INT_MIN is as unknown as any other grid beyond 18).
int absGrid(int grid);
/// True for the UTM grids 3, 4, 10 and 11, which take their meridian from the caller.
bool isUtmGrid(int g);
/// True when trunc(lat) is within -90..90 and trunc(lon) within -180..180 (NaN and
/// values beyond a long are not).
bool validGridPosition(double lat, double lon);
/// LL2TM's easting and northing, with its deliberate offsets of -5 mm easting and
/// +5 mm northing; nullopt where LL2TM gives -1.0.
std::optional<GridPoint> gridForward(double lat, double lon, int grid, long zoneMeridian);

/// A British ("TG", grid 1), Irish ("O", grid 2) or MGRS (any other grid) reference.
struct GridReference
{
    long zone = 0;    ///< MGRS only
    char band = 0;    ///< MGRS only
    QString letters;  ///< two (British, MGRS column and row) or one (Irish)
    int easting = 0;  ///< metres within the 100 km square, 0 to 99999
    int northing = 0; ///< metres within the 100 km square, 0 to 99999
};

/// LL2GR's reference as parts. Without a reference, failure holds the text LL2GR writes
/// instead: "#INVALID LATITUDE", "#INVALID LONGITUDE", "#LATITUDE OUTSIDE MGRS AREA",
/// "#OUTSIDE BRITISH GRID AREA", "#OUTSIDE IRISH GRID AREA" or "Invalid".
struct GridReferenceResult
{
    std::optional<GridReference> reference;
    const char* failure = nullptr;
};
GridReferenceResult gridReference(double lat, double lon, int grid);

// ---- Swedish grids --------------------------------------------------------------------

/// One of the six RT90 zones, 0 (7.5 gon V) to 5 (5.0 gon O).
struct Rt90Zone
{
    const char* name;       ///< "rt90_7.5_gon_v", the direct projection from GRS 80
    const char* besselName; ///< "bessel_rt90_7.5_gon_v", classic RT90 on Bessel 1841
    double centralMeridian; ///< degrees, of the direct projection
    /// The same meridian rounded to eight decimals, as CMercCoordTrans::GetRT90param has
    /// always given it to grids 13 to 18.
    double roundedMeridian;
    double besselMeridian; ///< degrees, of classic RT90
    double scale;
    double falseNorthing;
    double falseEasting;
};
constexpr int kRt90ZoneCount = 6;
/// The zone of an index 0 to 5; the caller picks its fallback for other indexes.
const Rt90Zone& rt90Zone(int index);
/// The direct projection from GRS 80 of an RT90 zone (index 0 to 5).
TmParameters rt90Projection(int index);
/// The RT90 zone of the RT90 text: 2.5 gon V.
constexpr int kRt90TextZone = 2;

/// The projection of a Swedish parameter set by its exact name: the rt90_ and
/// bessel_rt90_ sets of rt90Zone, "sweref_99_tm" and the twelve "sweref_99_hhmm" local
/// zones; nullopt for any other name.
std::optional<TmParameters> swedishParameterSet(const QString& name);

// ---- National grids as published ---------------------------------------------------------

/// A national transverse Mercator grid as its mapping agency publishes it, on the
/// ellipsoid of its datum (datumshift_p.h): latitude and meridian of origin (degrees),
/// scale, false origin (metres) and the extent of its lettered 100 km squares. Rows 1
/// and 2 of gridRow hold the same grids as CMercCoordTrans has always stored them (axes
/// times scale, radians through kGridDegToRad).
struct NationalGridDefinition
{
    double lat0;
    double lon0;
    double scale;
    double falseEasting;
    double falseNorthing;
    int squaresEast;  ///< lettered 100 km squares east of the false origin
    int squaresNorth; ///< and north of it
};
/// Ordnance Survey National Grid (OSGB36): the 500 km squares S, T, N, O, H, J.
constexpr NationalGridDefinition kBritishGridDefinition{49.0, -2.0, 0.9996012717, 400000.0, -100000.0, 10, 15};
/// Irish Grid (Ireland 1965): 5 x 5 squares A to Z without I.
constexpr NationalGridDefinition kIrishGridDefinition{53.5, -8.0, 1.000035, 200000.0, 250000.0, 5, 5};

// ---- Transverse Mercator to n^6 and polar stereographic --------------------------------

/// Krueger's series of an ellipsoid to the sixth order in n, with the exact conformal
/// latitude (Karney, "Transverse Mercator with an accuracy of a few nanometers", 2011):
/// good to a few nanometres within 4000 km of the central meridian. This is the series
/// UTM, UPS, MGRS and the British and Irish grids of PositionText use, where texts must
/// come out digit for digit as other careful implementations write them; the n^4 series
/// of tmForward stays the Swedish grids' definition. Build once, share freely.
struct TmSeries
{
    explicit TmSeries(const Ellipsoid& ellipsoid);

    Ellipsoid ellipsoid;
    double e;        ///< first eccentricity
    double rectA;    ///< rectifying radius, metres
    double alpha[7]; ///< forward coefficients alpha[1..6]
    double beta[7];  ///< inverse coefficients beta[1..6]
    double upsC;     ///< (1 - f) exp(e atanh e), of the polar stereographic projection
    /// Geographic minus conformal latitude as a series in sin(2k chi), k = 1..7: the sine
    /// transform of Newton's exact inverse at 32 points, so good to the last bit.
    double chiToPhi[8];
};

/// The series of WGS 84, built on first use.
const TmSeries& wgs84TmSeries();

/// A transverse Mercator grid on a TmSeries; originNorthing is meridianDistance() of the
/// latitude of origin (0 for the equator).
struct PreciseTm
{
    const TmSeries* series;
    double centralMeridian; ///< degrees
    double scale;           ///< on the central meridian
    double falseNorthing;   ///< metres
    double falseEasting;    ///< metres
    double originNorthing;  ///< metres at scale 1
};

/// Distance along the meridian from the equator to a latitude (degrees), scale 1.
double meridianDistance(const TmSeries& series, double lat);
/// Grid values of a position less than 90 degrees from the central meridian. No checks;
/// non-finite input gives non-finite output.
GridPoint preciseTmForward(const PreciseTm& p, const GeoPoint& position);
/// The inverse of preciseTmForward; the longitude is the meridian plus at most 90 degrees.
GeoPoint preciseTmInverse(const PreciseTm& p, const GridPoint& grid);

/// UTM between 80 S (inclusive) and 84 N (exclusive), UPS beyond, as GeoConvert switches.
constexpr double kUtmNorthEnd = 84.0;
constexpr double kUtmSouthEnd = -80.0;
/// UPS: polar stereographic on WGS 84, scale 0.994 at the pole, false easting and
/// northing 2000 km.
constexpr double kUpsScale = 0.994;
constexpr double kUpsFalseOrigin = 2000000.0;
/// UPS grid values of a position on the side of the given pole (degrees).
GridPoint upsForward(bool north, const GeoPoint& position);
/// The inverse of upsForward.
GeoPoint upsInverse(bool north, const GridPoint& grid);

/// Southern and northern limit of a latitude band letter (degrees; X reaches 84);
/// nullopt for letters that are not bands.
struct BandRange
{
    double south;
    double north;
};
std::optional<BandRange> bandRange(QChar letter);

/// MGRS letters of the polar areas A, B (south) and Y, Z (north): columns from A, B,
/// C, F, G, H, J, K, L, P, Q, R, S, T, U, X, Y, Z (easting / 100 km from 2 on, west of
/// the pole from 8 (south) or 13 (north), east of it from 20); rows A to Z without I and O
/// from 800 km (south) or 1300 km (north).
char mgrsPolarColumnLetter(long eastingIndex);
char mgrsPolarRowLetter(bool north, long northingIndex);
/// Easting / 100 km of a column letter in a polar area; nullopt for a letter the area
/// does not use.
std::optional<int> mgrsPolarEastingIndex(char area, QChar letter);
/// Northing / 100 km of a row letter in the polar area of a pole; nullopt for a letter
/// it does not use.
std::optional<int> mgrsPolarNorthingIndex(bool north, QChar letter);

} // namespace Geodesy

#endif // KVBASE_COORD_GEODESY_P_H
