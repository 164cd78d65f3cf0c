#ifndef KVBASE_COORD_SWEDISHGRIDS_H
#define KVBASE_COORD_SWEDISHGRIDS_H

/// \file coord/swedishgrids.h
/// \brief The Swedish grids RT90 and SWEREF 99 and the texts of their positions.

#include "kvbase_export.h"

#include "coord/arrayresult.h"
#include "coord/merccoordtrans.h"

#include <QString>

#include <cstddef>

/// Gauss conformal (transverse Mercator) projection with Krueger's series to n^4,
/// configured by the name of a Swedish parameter set: "rt90_7.5_gon_v" ...
/// "rt90_5.0_gon_o" (direct projection from GRS 80), "bessel_rt90_..." (classic RT90 on
/// Bessel 1841), "sweref_99_tm" and the twelve local "sweref_99_hhmm" zones.
/// Latitude and longitude in degrees on the set's ellipsoid, x (northing) and y
/// (easting) in metres. Better than 1 mm within 20 degrees of the central meridian.
/// A value type; reentrant.
///
/// \code
/// GaussKrugerProjection sweref(QStringLiteral("sweref_99_tm"));
/// double northing = 0.0, easting = 0.0;
/// if (sweref.geodeticToGrid(59.3293, 18.0686, northing, easting))
///     show(northing, easting);   // metres
/// \endcode
class KVBASE_EXPORT GaussKrugerProjection
{
public:
    /// GRS 80, no parameter set chosen yet (every result is meaningless until one is).
    GaussKrugerProjection();
    /// \param parameterSet a set name, as for setParameterSet()
    explicit GaussKrugerProjection(const QString& parameterSet);

    /// Chooses a set by its exact name. An unknown name keeps axis, flattening, scale
    /// and false origin and sets the central meridian to the lowest double, so that
    /// later results are meaningless (geodeticToGrid/gridToGeodetic then mostly fail).
    /// \param name the set's name, such as "sweref_99_tm"
    void setParameterSet(const QString& name);
    /// Chooses the rt90_ set of an RT90 zone.
    /// \param zoneIndex 0 (7.5 gon V) to 5 (5.0 gon O); every other index
    ///                  chooses "rt90_2.5_gon_v"
    void setRt90Zone(int zoneIndex);
    /// \param zoneIndex an RT90 zone index, as for setRt90Zone()
    /// \return the rt90_ set name that setRt90Zone() chooses for it
    static QString rt90ZoneName(int zoneIndex);

    /// Grid values of a position.
    /// \param lat latitude in degrees on the set's ellipsoid
    /// \param lon longitude in degrees on the set's ellipsoid
    /// \param x   receives the northing in metres
    /// \param y   receives the easting in metres
    /// \return false (x, y untouched) for non-finite input or results
    bool geodeticToGrid(double lat, double lon, double& x, double& y) const;
    /// Position of grid values.
    /// \param x   northing in metres
    /// \param y   easting in metres
    /// \param lat receives the latitude in degrees
    /// \param lon receives the longitude in degrees
    /// \return false (lat, lon untouched) for non-finite input or results
    bool gridToGeodetic(double x, double y, double& lat, double& lon) const;

    /// geodeticToGrid of many positions, each exactly what the single call gives.
    /// \param count number of positions
    /// \param lat   latitudes in degrees (count values)
    /// \param lon   longitudes in degrees (count values)
    /// \param x     receives count northings in metres
    /// \param y     receives count eastings in metres
    /// \return the points that failed (their outputs NaN) and why the first failed
    ArrayResult geodeticToGrid(std::size_t count, const double* lat, const double* lon, double* x,
                               double* y) const;
    /// gridToGeodetic of many grid positions, each exactly what the single call gives.
    /// \param count number of positions
    /// \param x     northings in metres (count values)
    /// \param y     eastings in metres (count values)
    /// \param lat   receives count latitudes in degrees
    /// \param lon   receives count longitudes in degrees
    /// \return the points that failed (their outputs NaN) and why the first failed
    ArrayResult gridToGeodetic(std::size_t count, const double* x, const double* y, double* lat,
                               double* lon) const;

    /// \return the semi-major axis in metres
    double axis() const { return m_dAxis; } ///< semi-major axis, metres
    /// \return the flattening
    double flattening() const { return m_dFlattening; } ///< flattening
    /// \return the central meridian in degrees
    double centralMeridian() const { return m_dCentralMeridian; } ///< degrees
    /// \return the scale on the central meridian
    double scale() const { return m_dScale; } ///< scale on the central meridian
    /// \return the false northing in metres
    double falseNorthing() const { return m_dFalseNorthing; } ///< metres
    /// \return the false easting in metres
    double falseEasting() const { return m_dFalseEasting; } ///< metres
    /// \return the RT90 zone index given to setRt90Zone(), -1 when the set was chosen by name
    int zoneIndex() const { return m_nZoneIndex; }

private:
    double m_dAxis;
    double m_dFlattening;
    double m_dCentralMeridian;
    double m_dScale;
    double m_dFalseNorthing;
    double m_dFalseEasting;
    int m_nZoneIndex;
};

/// RT90 text of a WGS-84 position (degrees) for format 4: "rt90_2.5_gon_v" (X northing,
/// Y easting) as "X%011.3fY%011.3f", e.g. "X6580822.000Y1628288.000". Returns 0, or
/// non-zero with out empty for another format or a position outside -90..90/-180..180.
/// Reentrant.
/// \param out    receives the text
/// \param lon    longitude in degrees on WGS-84
/// \param lat    latitude in degrees on WGS-84
/// \param format TCoordFormatRT90
/// \return 0 on success
KVBASE_EXPORT int CoordToRT90String(QString& out, double lon, double lat, TCoordFormat format);

/// SWEREF99 text of a WGS-84 position (degrees) for format 5: longitude ";" latitude in
/// degrees, shortest "g" form as Qt 5 writes it (also in the Qt 6 build), e.g.
/// "18.0686;59.3293". Reentrant.
/// \param out    receives the text
/// \param lon    longitude in degrees on WGS-84
/// \param lat    latitude in degrees on WGS-84
/// \param format TCoordFormatSWEREF99
/// \return 0; non-zero with out empty for another format or a non-finite value
KVBASE_EXPORT int CoordToSWEREF99String(QString& out, double lon, double lat, TCoordFormat format);

/// Reads a text back into WGS-84 degrees: format 4 the RT90 text of CoordToRT90String,
/// also without dots (seven integer and three decimal digits per axis) and with blanks
/// between the axes; format 5 the "lon;lat" text; format 1 an MGRS reference as
/// CMercCoordTrans::GR2LL reads it. Reentrant.
/// \param text   the text
/// \param lon    receives the longitude in degrees on WGS-84; must not be null
/// \param lat    receives the latitude in degrees on WGS-84; must not be null
/// \param format TCoordFormatRT90, TCoordFormatSWEREF99 or TCoordFormatMGRS
/// \return 0, or non-zero with lon and lat untouched (also for a null pointer)
KVBASE_EXPORT int StringToCoord(QString& text, double* lon, double* lat, TCoordFormat format);

#endif // KVBASE_COORD_SWEDISHGRIDS_H
