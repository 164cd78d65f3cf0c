#ifndef KVBASE_COORD_MERCCOORDTRANS_H
#define KVBASE_COORD_MERCCOORDTRANS_H

/// \file coord/merccoordtrans.h
/// \brief Transverse Mercator grids, UTM zones, MGRS and national grid references.

#include "kvbase_export.h"

#include "coord/arrayresult.h"

#include <QString>

#include <cstddef>

/// Notations of the free conversion functions CoordToString, CoordToRT90String,
/// CoordToSWEREF99String and StringToCoord. The numbers are stored by applications.
enum TCoordFormat : int
{
    TCoordFormatMGRS = 1,        ///< "ZZB-CR-EEEEE-NNNNN", WGS-84
    TCoordFormatUTM = 2,         ///< "ZZB EEEEEE NNNNNNN", WGS-84, metres
    TCoordFormatBritishGrid = 3, ///< "NN1234567890", Ordnance Survey national grid
    TCoordFormatRT90 = 4,        ///< "X%011.3fY%011.3f", RT90 2.5 gon V, metres
    TCoordFormatSWEREF99 = 5,    ///< "lon;lat" in degrees on SWEREF99
    TCoordFormatIrishGrid = 6    ///< "A1234567890", Irish national grid
};

/// Transverse Mercator grids: British and Irish national grids, UTM on several
/// ellipsoids (central meridian given per call), Swedish and other national grids,
/// with UTM zones, latitude bands, MGRS and British/Irish grid references.
/// Angles in degrees (latitude north, longitude east positive), grid values in metres.
/// Stateless and reentrant. The series of LL2TM/TM2LL are good to about 1 mm within
/// 3.5 degrees of the central meridian, 0.1 m at 6 degrees; LL2TM adds deliberate
/// 5 mm offsets (easting -0.005 m, northing +0.005 m).
///
/// Grid numbers (the absolute value counts; negative numbers select the alternative
/// MGRS row lettering): 1 British national grid (Airy 1830), 2 Irish grid (modified
/// Airy), 3 UTM International, 4 UTM WGS-84, 5 RT90 2.5 gon V on Bessel 1841,
/// 6, 7, 8 and 9 further national grids, 10 UTM Clarke 1880, 11 UTM Clarke 1866,
/// 12 RT90 2.5 gon V direct projection, 13-18 the six RT90 zones of GetRT90param
/// (forward only).
///
/// Datum numbers of ToWGS84/FromWGS84 (7-parameter Helmert shifts, about 1 m):
/// 1 OSGB36 (Airy 1830), 2 Ireland 1965 (modified Airy), 4 WGS-84 (identity),
/// 5 RT90 (Bessel 1841), 12 SWEREF99 (treated as identical to WGS-84).
///
/// \code
/// CMercCoordTrans grids;
/// QString mgrs = grids.LL2GR(59.3293, 18.0686, 4);                      // "34VCL3323180391"
/// double lat = grids.GR2LL(true, QStringLiteral("34V CL 33231 80391"), 4);
/// double easting = grids.LL2TM(true, 59.3293, 18.0686, 4, 21);          // zone 34, metres
/// \endcode
class KVBASE_EXPORT CMercCoordTrans
{
public:
    /// Stateless; nothing to set up.
    CMercCoordTrans();
    /// \param other ignored: the object has no state
    CMercCoordTrans(const CMercCoordTrans& other);
    /// \param other ignored: the object has no state
    /// \return this object
    CMercCoordTrans& operator=(const CMercCoordTrans& other);
    ~CMercCoordTrans();

    /// Easting or northing of a position in a grid.
    /// \param wantEasting  true for the easting, false for the northing
    /// \param lat          latitude in degrees, -90..90
    /// \param lon          longitude in degrees, -180..180
    /// \param grid         grid number (see the class description)
    /// \param zoneMeridian central meridian in whole degrees for grids 3, 4, 10 and 11
    /// \return metres; -1.0 for an invalid position, grid or meridian
    double LL2TM(bool wantEasting, double lat, double lon, int grid, long zoneMeridian) const;
    /// Latitude or longitude of a grid position.
    /// \param wantLatitude true for the latitude, false for the longitude
    /// \param easting      metres
    /// \param northing     metres
    /// \param grid         grid number 1 to 12
    /// \param zoneMeridian central meridian in whole degrees for grids 3, 4, 10 and 11
    /// \return degrees; -1.0 for another grid
    double TM2LL(bool wantLatitude, double easting, double northing, int grid, long zoneMeridian) const;

    /// Easting and northing at once from one evaluation of the series: they get exactly
    /// what LL2TM(true, ...) and LL2TM(false, ...) return.
    /// \param lat, lon, grid, zoneMeridian as for LL2TM
    /// \param easting, northing receive the grid values in metres
    /// \return false (both -1.0) for an invalid position, grid or meridian
    bool LL2TM(double lat, double lon, int grid, long zoneMeridian, double& easting, double& northing) const;
    /// Latitude and longitude at once from one run of the iteration: they get exactly
    /// what TM2LL(true, ...) and TM2LL(false, ...) return.
    /// \param easting, northing, grid, zoneMeridian as for TM2LL
    /// \param lat, lon receive degrees
    /// \return false when the position gives no latitude or no longitude (unknown grid,
    ///         non-finite input, a northing beyond the poles, a result that is not finite
    ///         far from the meridian); the missing value is then -1.0 as TM2LL has it
    bool TM2LL(double easting, double northing, int grid, long zoneMeridian, double& lat, double& lon) const;

    /// LL2TM of many positions in one grid, each result exactly what the single call
    /// gives, at less cost per point.
    /// \param count        number of positions
    /// \param lat          latitudes in degrees, north positive (count values)
    /// \param lon          longitudes in degrees, east positive (count values)
    /// \param grid         grid number as for LL2TM
    /// \param zoneMeridian central meridian in whole degrees for grids 3, 4, 10 and 11
    /// \param easting      receives count eastings in metres
    /// \param northing     receives count northings in metres
    /// \return the points that failed (their outputs NaN) and why the first failed
    ArrayResult LL2TM(std::size_t count, const double* lat, const double* lon, int grid, long zoneMeridian,
                      double* easting, double* northing) const;
    /// TM2LL of many grid positions, each result exactly what the single calls give.
    /// \param count        number of positions
    /// \param easting      eastings in metres (count values)
    /// \param northing     northings in metres (count values)
    /// \param grid         grid number 1 to 12 as for TM2LL
    /// \param zoneMeridian central meridian in whole degrees for grids 3, 4, 10 and 11
    /// \param lat          receives count latitudes in degrees
    /// \param lon          receives count longitudes in degrees
    /// \return the points that failed (their outputs NaN) and why the first failed
    ArrayResult TM2LL(std::size_t count, const double* easting, const double* northing, int grid,
                      long zoneMeridian, double* lat, double* lon) const;

    /// \param lat latitude in degrees, -90..90
    /// \param lon longitude in degrees, -180..180
    /// \return UTM central meridian in degrees with the Norwegian and Svalbard
    ///         exceptions; -1 if invalid
    long UTMCM(double lat, double lon) const;
    /// \param lat latitude in degrees, -90..90
    /// \param lon longitude in degrees, -180..180
    /// \return UTM zone number from UTMCM(): 1 to 60, but 0 at -180 and 61 at
    ///         180 degrees; -1 if invalid
    long UTMLongZone(double lat, double lon) const;

    /// British (grid 1, "NN1234567890") or Irish (grid 2, "N1234567890") grid
    /// reference, or MGRS for the UTM grids ("32VNM0537255413").
    /// \param lat  latitude in degrees
    /// \param lon  longitude in degrees
    /// \param grid grid number
    /// \return the reference; errors as texts starting with "#", and "Invalid"
    ///         where the grid gives no 100 km letters (unknown grid, far off zone)
    QString LL2GR(double lat, double lon, int grid) const;
    /// Latitude or longitude of a grid reference; reads what LL2GR() writes,
    /// also lower case, blanks or dashes between the groups and 2 to 10 digits
    /// (fewer digits: the south-west corner of the square).
    /// \param wantLatitude true for the latitude, false for the longitude
    /// \param ref          the reference
    /// \param grid         grid number
    /// \return degrees; -1.0 if unreadable
    double GR2LL(bool wantLatitude, QString ref, int grid) const;
    /// Both at once, reading the reference once: lat and lon get exactly what
    /// GR2LL(true, ...) and GR2LL(false, ...) return.
    /// \param ref  the reference
    /// \param grid grid number
    /// \param lat  receives the latitude in degrees (-1.0 if unreadable)
    /// \param lon  receives the longitude in degrees (-1.0 if unreadable)
    /// \return false if unreadable
    bool GR2LL(const QString& ref, int grid, double& lat, double& lon) const;

    /// Latitude or longitude on WGS-84 of a position on a datum.
    /// \param wantLatitude true for the latitude, false for the longitude
    /// \param lat          latitude in degrees on the datum
    /// \param lon          longitude in degrees on the datum
    /// \param datum        datum number (see the class description)
    /// \param zone         not used by these datums
    /// \return degrees on WGS-84; -1.0 for an unknown datum or invalid position
    double ToWGS84(bool wantLatitude, double lat, double lon, int datum, long zone) const;
    /// The inverse of ToWGS84(): from WGS-84 degrees to the datum's degrees.
    /// \param wantLatitude true for the latitude, false for the longitude
    /// \param lat          latitude in degrees on WGS-84
    /// \param lon          longitude in degrees on WGS-84
    /// \param datum        datum number
    /// \param zone         not used by these datums
    /// \return degrees on the datum; -1.0 for an unknown datum or invalid position
    double FromWGS84(bool wantLatitude, double lat, double lon, int datum, long zone) const;

    /// Direct-projection row of an RT90 zone on GRS 80.
    /// \param index           zone index 0 (7.5 gon V) to 5 (5.0 gon O); any other
    ///                        index gives the row of index 3 (0.0 gon)
    /// \param centralMeridian receives the central meridian in degrees
    /// \param scale           receives the scale on the central meridian
    /// \param falseNorthing   receives the false northing in metres
    /// \param falseEasting    receives the false easting in metres
    /// \return always 1.0
    static double GetRT90param(int index, double& centralMeridian, double& scale, double& falseNorthing,
                               double& falseEasting);
    /// RT90 2.5 gon V grid values to WGS-84.
    /// \param x   northing X in metres
    /// \param y   easting Y in metres
    /// \param lat receives the latitude in degrees
    /// \param lon receives the longitude in degrees
    /// \return false (outputs untouched) for non-finite or far-off input
    static bool convertRt90gon(double x, double y, double& lat, double& lon);
};

/// Position (degrees, WGS-84) as text of a notation: MGRS as "ZZB-CR-EEEEE-NNNNN"
/// (or the "#..." text of LL2GR outside the MGRS area), the others as described at
/// TCoordFormat. Reentrant.
/// \param out    receives the text; on failure the "#" text or empty
/// \param lon    longitude in degrees, -180..180
/// \param lat    latitude in degrees, -90..90
/// \param format the notation
/// \return 0 on success, non-zero on failure
KVBASE_EXPORT int CoordToString(QString& out, double lon, double lat, TCoordFormat format);

#endif // KVBASE_COORD_MERCCOORDTRANS_H
