#ifndef KVBASE_COORD_POSITIONTEXT_H
#define KVBASE_COORD_POSITIONTEXT_H

#include "kvbase_export.h"

#include <QString>

#include <optional>

/// @file
/// Standard texts of a geographic position: reads a position in any of nine notations
/// (detected, or named by the caller) and writes one the way the standards and the
/// geodesists' tools write it.

/// Position texts the way standards and other careful tools write and read them.
///
/// Positions are WGS-84 latitude and longitude in degrees, north and east positive
/// (latitude -90 to 90, longitude -180 to 180). SWEREF 99 and ETRS 89 are taken as
/// WGS-84, which they match to well under a metre; the British and Irish grids shift
/// through their national 7-parameter Helmert transformations (about 1 m, as published).
///
/// Accuracy: UTM, UPS and MGRS use Krueger's series to the sixth order and the exact
/// polar stereographic projection, good to a few nanometres; their texts agree with
/// GeographicLib's GeoConvert digit for digit (apart from values within floating-point
/// noise of a rounding boundary). RT90, SWEREF 99 TM, the British and the Irish grid
/// agree with PROJ to well under a millimetre for the same parameters.
///
/// Every function is reentrant and thread-safe: no state is shared and nothing is
/// cached beyond constant tables built once. Nothing throws; a text that cannot be read
/// or a position that cannot be written gives an empty result and an error text.
///
/// These texts are not the edit-field texts of Coord (CoordFormat): those follow the
/// applications' input masks, quirks included, and stay as they are. Use PositionText
/// for texts that people and other programs exchange.
namespace PositionText {

/// The notations, with the text that format() writes for Stockholm (59.3293 N, 18.0686 E)
/// and the meaning of the precision (default in brackets).
enum class Notation
{
    /// "59.329300 18.068600": latitude, longitude, signed decimal degrees;
    /// precision = decimals, 0 to 10 [6].
    Decimal = 0,
    /// "59°19'45.48\"N 18°04'06.96\"E": latitude first, minutes and seconds with two
    /// digits, hemisphere letters; precision = decimals of the seconds, 0 to 6 [2].
    DMS = 1,
    /// "34V 333230 6580391": zone (two digits) and latitude band, easting, northing in
    /// metres, rounded; UPS north of 84 degrees and south of 80 degrees
    /// ("Z 2096454 1452981"); precision = decimals of the metres, 0 to 9 [0].
    UTM = 2,
    /// "34VCL3323080391": grid zone, 100 km square, easting and northing digits,
    /// truncated; UPS areas included; precision = digits per axis, 0 to 5 [5].
    MGRS = 3,
    /// "X6580909 Y1628833": RT90 2.5 gon V (GRS 80 direct projection), X northing and
    /// Y easting in metres; precision = decimals, 0 to 3 [0].
    RT90 = 4,
    /// "N6580743 E674572": SWEREF 99 TM (EPSG:3006), northing and easting in metres;
    /// precision = decimals, 0 to 3 [0].
    SWEREF99TM = 5,
    /// "JO99AH": field, square, subsquare, ... locator, upper case; precision = pairs
    /// of characters, 1 to 5 [3].
    Maidenhead = 6,
    /// "TQ 30028 80380": Ordnance Survey National Grid (OSGB36), 100 km square letters,
    /// easting and northing digits, truncated; precision = digits per axis, 1 to 5 [5].
    BritishGrid = 7,
    /// "O 15900 34671": Irish Grid (Ireland 1965), 100 km square letter, easting and
    /// northing digits, truncated; precision = digits per axis, 1 to 5 [5].
    IrishGrid = 8
};

/// A position read from a text.
struct Position
{
    double latitude = 0.0;                 ///< WGS-84 degrees, north positive, -90 to 90
    double longitude = 0.0;                ///< WGS-84 degrees, east positive, -180 to 180
    Notation notation = Notation::Decimal; ///< the notation the text was read as
};

/// Reads a position from a text in any notation, detecting which.
///
/// Besides everything format() writes, at any precision, parse() reads what people
/// type: any case; extra or missing blanks; a comma or semicolon between two values;
/// decimal degrees and DMS with hemisphere letters before or after the value
/// ("N59.3293 E18.0686", "59.3293N 18.0686E") or a sign, with the marks ° ' ", the
/// letters d m s, or colons ("59:19:45.48"), degrees and minutes without seconds, and
/// either order when hemisphere letters say which value is which (latitude first
/// otherwise); UTM with a latitude band or a hemisphere ("34N 333230 6580391", as
/// GeoConvert writes it; zone with or without a leading zero); MGRS with blanks or
/// dashes between its parts and 0 to 10 digits; British and Irish references with or
/// without blanks. MGRS, Maidenhead, British and Irish references give the centre of
/// the square they name.
///
/// Detection rule: the text is split into numbers, letter groups and marks; each
/// notation whose shape fits is tried, and the one that reads the text is taken.
/// - A zone number (1 to 60) followed by one letter or "north"/"south" and two
///   numbers is UTM; by three letters (band, column, row) and digits, MGRS.
/// - A, B, Y or Z with two more letters and digits is MGRS in a polar area; one of
///   A, B, Y, Z, N, S with two numbers of six or more digits is UPS (UTM).
/// - X and Y before the two numbers is RT90; N and E before numbers too large for
///   degrees is SWEREF 99 TM.
/// - Two letters and digits is a British reference, one letter and digits (up to five
///   per axis) an Irish one; letter pairs and digit pairs alternating ("JO99AH") are
///   Maidenhead.
/// - Two values with marks (° ' " d m s :) are DMS, plain numbers decimal degrees.
/// Grid values without their letters (RT90, SWEREF 99 TM) are read only when the
/// notation is given. When more than one notation reads the text (a four-character
/// locator such as "JO99" is also a British reference at 10 km, and "N 7 1" an Irish
/// reference at 10 km as well as 7 degrees north, 1 degree east), parse() fails with an
/// error that names the candidates.
///
/// In degree texts the letters d and m after a number are the degree and minute marks,
/// and s after the seconds is their mark when the minutes were marked with m
/// ("59d19m45.48sN"); N, S, E and W are hemispheres.
///
/// In UTM texts a lower-case "s" is the southern hemisphere (GeoConvert's form) and an
/// upper-case "S" the latitude band S (32 to 40 degrees north); "n" and "N" both mean
/// the northern hemisphere, in which band N lies.
///
/// @param text  the text; at most 256 characters
/// @param error if not null, receives an empty text on success, otherwise a
///              description of the problem and, where there is one, the 1-based
///              character position ("MGRS: column letter Q is not used in zone 34 (A to
///              H) at 4")
/// @return the position and the notation read, or nothing for empty texts, garbage,
///         ambiguous texts and values out of range (latitude beyond 90 degrees,
///         minutes or seconds of 60 or more, an MGRS square that does not exist in its
///         zone, a UTM easting outside 100 km to 900 km, a band letter that contradicts
///         the northing, ...)
///
/// Thread-safe. Example:
/// @code
/// QString error;
/// if (const auto p = PositionText::parse(QStringLiteral("34VCL3323080391"), &error))
///     show(p->latitude, p->longitude);          // 59.32929..., 18.06862..., Notation::MGRS
/// else
///     complain(error);
/// @endcode
KVBASE_EXPORT std::optional<Position> parse(const QString& text, QString* error = nullptr);

/// Reads a position from a text in the given notation.
///
/// Reads the same texts as parse(const QString&, QString*) restricted to one notation,
/// and also RT90 and SWEREF 99 TM grid values without their X/Y and N/E letters
/// (northing first). A text that only another notation reads fails with an error.
///
/// @param text     the text; at most 256 characters
/// @param notation the notation to read
/// @param error    if not null, receives an empty text on success or the problem and
///                 its 1-based character position
/// @return the position (with notation set to the given one), or nothing
///
/// Thread-safe. Example:
/// @code
/// const auto p = PositionText::parse(QStringLiteral("6580743 674572"),
///                                    PositionText::Notation::SWEREF99TM);
/// @endcode
KVBASE_EXPORT std::optional<Position> parse(const QString& text, Notation notation, QString* error = nullptr);

/// Writes a WGS-84 position in a notation.
///
/// Decimal and DMS are rounded correctly (DMS carries into minutes and degrees, never
/// writing 60 seconds or 60 minutes); UTM, RT90 and SWEREF 99 TM round to nearest; MGRS, British and Irish
/// references truncate, as their standards do. UTM switches to UPS from 84 degrees north
/// (inclusive) and south of 80 degrees south, as GeoConvert does, and uses the Norway
/// and Svalbard zones. Maidenhead keeps latitude 90 and longitude 180 inside the grid.
///
/// @param latitude  WGS-84 degrees, north positive, -90 to 90
/// @param longitude WGS-84 degrees, east positive, -180 to 180
/// @param notation  the notation to write
/// @param precision the notation's precision (see Notation); negative for its default
/// @param error     if not null, receives an empty text on success or the reason
/// @return the text, or an empty text when the position cannot be written in the
///         notation: non-finite or out-of-range degrees, a precision outside the
///         notation's range, a position outside the grid's area (RT90 and SWEREF 99 TM:
///         50 to 75 degrees north, 0 to 35 degrees east, where the easting is not
///         negative; British and Irish grids: their lettered 100 km squares)
///
/// Thread-safe. Example:
/// @code
/// PositionText::format(59.3293, 18.0686, PositionText::Notation::MGRS);     // "34VCL3323080391"
/// PositionText::format(59.3293, 18.0686, PositionText::Notation::UTM, 2);   // "34V 333230.06 6580391.32"
/// @endcode
KVBASE_EXPORT QString format(double latitude, double longitude, Notation notation, int precision = -1,
                             QString* error = nullptr);

/// The name of a notation.
///
/// @param notation the notation
/// @return "Decimal", "DMS", "UTM", "MGRS", "RT90", "SWEREF 99 TM", "Maidenhead",
///         "British grid" or "Irish grid"; an empty text for a value outside the enum
///
/// Thread-safe. Example:
/// @code
/// PositionText::name(PositionText::Notation::IrishGrid);            // "Irish grid"
/// @endcode
KVBASE_EXPORT QString name(Notation notation);

/// The notation of a name as name() gives it or as the enum spells it, compared without
/// regard to case, blanks and underscores ("sweref99tm", "British Grid"), or of its
/// number ("3" is MGRS).
///
/// @param name the name or number; surrounding blanks are ignored
/// @return the notation, or nothing for an unknown name or a number outside 0 to 8
///
/// Thread-safe. Example:
/// @code
/// PositionText::notationFromName(QStringLiteral("mgrs"));          // Notation::MGRS
/// @endcode
KVBASE_EXPORT std::optional<Notation> notationFromName(const QString& name);

} // namespace PositionText

#endif // KVBASE_COORD_POSITIONTEXT_H
