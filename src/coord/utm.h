#ifndef KVBASE_COORD_UTM_H
#define KVBASE_COORD_UTM_H

/// \file coord/utm.h
/// \brief Plain UTM on a table of reference ellipsoids.

#include "kvbase_export.h"

#include "coord/arrayresult.h"

#include <QString>

#include <cstddef>

/// One row of the reference ellipsoid table of LLtoUTM/UTMtoLL.
struct UtmEllipsoid
{
    const char* name;           ///< e.g. "WGS-84" (Latin-1)
    double equatorialRadius;    ///< semi-major axis in metres
    double eccentricitySquared; ///< first eccentricity squared
};

/// Rows of the ellipsoid table: index 0 is a placeholder, 1 "Airy" to 23 "WGS-84".
constexpr int UtmEllipsoidCount = 24;

/// \param ellipsoid table index, 0 to 23
/// \return the ellipsoid, or nullptr outside the table
KVBASE_EXPORT const UtmEllipsoid* GetUtmEllipsoid(int ellipsoid);

/// Plain UTM (scale 0.9996, false easting 500000 m, false northing 10000000 m south
/// of the equator) on the ellipsoid of the given index (1 to 23, 23 = WGS-84), with
/// the Norwegian and Svalbard zone exceptions. Latitude and longitude in degrees, the
/// longitude is wrapped into -180..180. Northing and easting in metres; zone is the
/// number and latitude band letter, e.g. "32V" ("Z" as band outside -80..84).
/// Good to about 1 mm within the zone. Reentrant.
/// Invalid input (unknown ellipsoid, latitude outside -90..90, NaN, infinity) gives
/// northing and easting -1.0 and a zone text starting with "#".
/// \param ellipsoid table index, 1 to 23 (23 = WGS-84)
/// \param lat       latitude in degrees, -90..90
/// \param lon       longitude in degrees
/// \param northing  receives the northing in metres
/// \param easting   receives the easting in metres
/// \param zone      receives the zone number and band letter
KVBASE_EXPORT void LLtoUTM(int ellipsoid, double lat, double lon, double& northing, double& easting,
                           QString& zone);

/// The inverse of LLtoUTM: zone text as LLtoUTM writes it (number 1 to 60 and band
/// letter; "N" to "X" are northern); lat and lon in degrees. Invalid input (unknown
/// ellipsoid, unreadable zone, NaN, infinity) gives lat and lon -1.0. Reentrant.
/// \param ellipsoid table index, 1 to 23 (23 = WGS-84)
/// \param northing  metres
/// \param easting   metres
/// \param zone      zone number and band letter, e.g. "32V"
/// \param lat       receives the latitude in degrees
/// \param lon       receives the longitude in degrees
KVBASE_EXPORT void UTMtoLL(int ellipsoid, double northing, double easting, QString zone, double& lat,
                           double& lon);

/// LLtoUTM of many positions on one ellipsoid, each exactly what the single call gives
/// but with the zone as parts instead of a text.
/// \param ellipsoid index 1 to 23 of the ellipsoid table (23 = WGS-84)
/// \param count     number of positions
/// \param lat       latitudes in degrees, north positive (count values)
/// \param lon       longitudes in degrees, east positive (count values)
/// \param northing  receives count northings in metres
/// \param easting   receives count eastings in metres
/// \param zone      receives count zone numbers (the number of the zone text)
/// \param band      receives count latitude band letters ("Z" outside -80..84)
/// \return the points that failed (NaN values, zone 0, band 0) and why the first failed
KVBASE_EXPORT ArrayResult LLtoUTM(int ellipsoid, std::size_t count, const double* lat, const double* lon,
                                  double* northing, double* easting, int* zone, char* band);

/// UTMtoLL of many positions on one ellipsoid, each exactly what the single call gives
/// for the zone text of its zone number and band letter.
/// \param ellipsoid index 1 to 23 of the ellipsoid table (23 = WGS-84)
/// \param count     number of positions
/// \param northing  northings in metres (count values)
/// \param easting   eastings in metres (count values)
/// \param zone      zone numbers 1 to 60 (count values)
/// \param band      band letters (count values; "N" to "Z" are northern, either case)
/// \param lat       receives count latitudes in degrees
/// \param lon       receives count longitudes in degrees
/// \return the points that failed (NaN values) and why the first failed
KVBASE_EXPORT ArrayResult UTMtoLL(int ellipsoid, std::size_t count, const double* northing,
                                  const double* easting, const int* zone, const char* band, double* lat,
                                  double* lon);

#endif // KVBASE_COORD_UTM_H
