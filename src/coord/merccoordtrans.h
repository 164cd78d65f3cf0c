#ifndef KVBASE_COORD_MERCCOORDTRANS_H
#define KVBASE_COORD_MERCCOORDTRANS_H

#include "kvbase_export.h"

#include <QString>

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
class KVBASE_EXPORT CMercCoordTrans
{
public:
    CMercCoordTrans();
    CMercCoordTrans(const CMercCoordTrans& other);
    CMercCoordTrans& operator=(const CMercCoordTrans& other);
    ~CMercCoordTrans();

    /// Easting (wantEasting) or northing of a position in a grid, in metres;
    /// zoneMeridian is the central meridian in whole degrees for grids 3, 4, 10 and 11.
    /// -1.0 for an invalid position, grid or meridian.
    double LL2TM(bool wantEasting, double lat, double lon, int grid, long zoneMeridian) const;
    /// Latitude (wantLatitude) or longitude in degrees of a grid position (metres);
    /// grids 1 to 12 only, -1.0 otherwise.
    double TM2LL(bool wantLatitude, double easting, double northing, int grid, long zoneMeridian) const;

    /// UTM central meridian in degrees with the Norwegian and Svalbard exceptions; -1 if invalid.
    long UTMCM(double lat, double lon) const;
    /// UTM zone number from UTMCM: 1 to 60, but 0 at -180 and 61 at 180 degrees; -1 if invalid.
    long UTMLongZone(double lat, double lon) const;

    /// British (grid 1, "NN1234567890") or Irish (grid 2, "N1234567890") grid reference,
    /// or MGRS for the UTM grids ("32VNM0537255413"); errors as texts starting with "#",
    /// and "Invalid" where the grid gives no 100 km letters (unknown grid, far off zone).
    QString LL2GR(double lat, double lon, int grid) const;
    /// Latitude (wantLatitude) or longitude in degrees of a grid reference; reads what
    /// LL2GR writes, also lower case, blanks or dashes between the groups and 2 to 10
    /// digits (fewer digits: the south-west corner of the square). -1.0 if unreadable.
    double GR2LL(bool wantLatitude, QString ref, int grid) const;
    /// Both at once, reading the reference once: lat and lon get exactly what
    /// GR2LL(true, ...) and GR2LL(false, ...) return. False (both -1.0) if unreadable.
    bool GR2LL(const QString& ref, int grid, double& lat, double& lon) const;

    /// Latitude (wantLatitude) or longitude in degrees on WGS-84 of a position given in
    /// degrees on the datum (see the datum numbers above); zone is not used by these
    /// datums. -1.0 for an unknown datum or invalid position.
    double ToWGS84(bool wantLatitude, double lat, double lon, int datum, long zone) const;
    /// The inverse of ToWGS84: from WGS-84 degrees to the datum's degrees.
    double FromWGS84(bool wantLatitude, double lat, double lon, int datum, long zone) const;

    /// Direct-projection row of RT90 zone index 0 (7.5 gon V) to 5 (5.0 gon O) on GRS 80:
    /// central meridian in degrees, scale, false northing and false easting in metres.
    /// Any other index gives the row of index 3 (0.0 gon). Returns 1.0.
    static double GetRT90param(int index, double& centralMeridian, double& scale, double& falseNorthing,
                               double& falseEasting);
    /// RT90 2.5 gon V grid values X (northing) and Y (easting) in metres to WGS-84
    /// latitude and longitude in degrees; false (outputs untouched) for non-finite or
    /// far-off input.
    static bool convertRt90gon(double x, double y, double& lat, double& lon);
};

/// Position (degrees, WGS-84) as text of a notation: MGRS as "ZZB-CR-EEEEE-NNNNN"
/// (or the "#..." text of LL2GR outside the MGRS area), the others as described at
/// TCoordFormat. Returns 0 on success, non-zero on failure (out then holds the "#"
/// text or is empty).
KVBASE_EXPORT int CoordToString(QString& out, double lon, double lat, TCoordFormat format);

#endif // KVBASE_COORD_MERCCOORDTRANS_H
