#ifndef KVBASE_COORD_COORD_H
#define KVBASE_COORD_COORD_H

/// \file coord/coord.h
/// \brief Geographic positions and their eight text notations for edit fields.

#include "kvbase_export.h"

#include <QMetaType>
#include <QString>

/// The text notations of a Coord. Each has a display name, a display mask, a
/// printf format, a Qt input mask and a validation expression (see Coord).
/// Values above 7 are not notations: their texts are empty and the mask tables
/// fall back to cfGeoLong (the fixed underlying type makes them valid values).
enum CoordFormat : int
{
    cfGeoDecimal = 0,   ///< "E###.###### N##.######", millionths of a degree
    cfGeoLong = 1,      ///< "E###°##'##.## N##°##'##.##", hundredths of a second
    cfGeoShort = 2,     ///< "E###°##'## N##°##'##", whole seconds
    cfUTM = 3,          ///< "##? ####### #######", zone, band, easting, northing in metres (WGS-84)
    cfMGRS = 4,         ///< "##?-??-#####-#####", metre reference
    cfRT90 = 5,         ///< "X#######.### Y#######.###", Swedish RT90 2.5 gon V in metres
    cfSWEREF99 = 6,     ///< "E###°##'##.## N##°##'##.##", degrees on SWEREF99
    cfQTHMaidenhead = 7 ///< "??##??", six-character locator
};

/// One geographic position on WGS-84: longitude and latitude in decimal
/// degrees, east and north positive, and its conversion to and from the texts
/// of the eight notations of CoordFormat for masked line edits.
/// The raw text (GetText/SetText) holds only the significant characters; the
/// formatted text (GetString/SetString) is the raw text merged into the
/// display mask with "_" for missing characters. SetText never rejects a text:
/// unreadable numbers count as 0 and the result is wrapped into range (validate
/// with getMaskRegExp first). A value type; reentrant.
///
/// \code
/// Coord pos(18.0686, 59.3293);                     // longitude, latitude: WGS-84 degrees
/// QLineEdit edit;
/// edit.setInputMask(Coord::getQtMask(cfGeoLong));  // ">A999°99'99.99 A99°99'99.99"
/// edit.setText(pos.GetString(cfGeoLong));          // "E018°04'06.95 N59°19'45.48"
/// if (QRegularExpression(Coord::getMaskRegExp(cfGeoLong)).match(edit.text()).hasMatch())
///     pos.SetString(edit.text(), cfGeoLong);       // back to degrees
/// pos.GetText(cfQTHMaidenhead);                    // "JO99AH"
/// \endcode
class KVBASE_EXPORT Coord
{
public:
    /// The position 0, 0.
    Coord() = default;
    /// \param longitude decimal degrees, east positive, -180..180 for a valid position
    /// \param latitude  decimal degrees, north positive, -90..90 for a valid position
    Coord(double longitude, double latitude) : m_dLongitude(longitude), m_dLatitude(latitude) {}

    /// \param other the position to compare with
    /// \return true when both degrees are equal (false with a NaN)
    bool operator==(const Coord& other) const
    {
        return m_dLongitude == other.m_dLongitude && m_dLatitude == other.m_dLatitude;
    }
    /// \param other the position to compare with
    /// \return the negation of operator==()
    bool operator!=(const Coord& other) const { return !(*this == other); }
    /// Moves this position to the componentwise midpoint between it and other
    /// (no great-circle arithmetic; a position combined with itself stays put).
    /// \param other the other position
    /// \return this position
    Coord& operator|=(const Coord& other);

    /// \return decimal degrees, east positive
    double GetLongitude() const { return m_dLongitude; }
    /// \return decimal degrees, north positive
    double GetLatitude() const { return m_dLatitude; }
    /// \param longitude decimal degrees, east positive
    void SetLongitude(double longitude) { m_dLongitude = longitude; }
    /// \param latitude decimal degrees, north positive
    void SetLatitude(double latitude) { m_dLatitude = latitude; }

    /// \return true for −180 ≤ longitude ≤ 180 and −90 ≤ latitude ≤ 90; false for NaN
    bool IsValid() const;

    /// \param format the notation; above 7 falls back to cfGeoLong
    /// \return printf format of the notation as Latin-1 bytes, valid for the whole process
    const char* GetFmt(CoordFormat format) const;
    /// \param format the notation; above 7 falls back to cfGeoLong
    /// \return display mask for MaskConverter: "#", "?", "E", "N", "X", "Y" are
    ///         input positions, all other characters literals
    QString GetMask(CoordFormat format) const;
    /// \param format the notation; above 7 falls back to cfGeoLong
    /// \return input mask for QLineEdit::setInputMask()
    static QString getQtMask(CoordFormat format);
    /// \param format the notation; above 7 falls back to cfGeoLong
    /// \return validation expression for the formatted text (QRegularExpression syntax)
    static QString getMaskRegExp(CoordFormat format);

    /// Raw text of this position: significant characters only, no separators.
    /// A position outside the valid range is written as it stands ("E190...").
    /// \param format the notation
    /// \return the raw text; empty for an unknown notation, NaN, or more than a million degrees
    QString GetText(CoordFormat format) const;
    /// Reads a raw text of the notation into this position; never rejects it
    /// (see the class description).
    /// \param text   the raw text
    /// \param format the notation; an unknown one leaves the position as it is
    void SetText(const QString& text, CoordFormat format);
    /// \param format the notation
    /// \return the raw text merged into the display mask, "_" where it runs short
    QString GetString(CoordFormat format) const;
    /// Reads a formatted text (as shown in the edit) into this position.
    /// \param text   the formatted text
    /// \param format the notation
    void SetString(const QString& text, CoordFormat format);

private:
    double m_dLongitude = 0.0;
    double m_dLatitude = 0.0;
};

Q_DECLARE_METATYPE(Coord)

/// \param format the notation
/// \return display name of the notation, e.g. "Geo Decimal"; empty for an unknown one
KVBASE_EXPORT QString getCoordFormatName(CoordFormat format);
/// \param format the notation
/// \return the display name translated in the context "QCoreApplication"; empty for an unknown one
KVBASE_EXPORT QString getTranslatedCoordFormatName(CoordFormat format);

#endif // KVBASE_COORD_COORD_H
