#ifndef KVBASE_COORD_COORD_H
#define KVBASE_COORD_COORD_H

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
class KVBASE_EXPORT Coord
{
public:
    Coord() = default;
    /// longitude, latitude in decimal degrees, east and north positive
    Coord(double longitude, double latitude) : m_dLongitude(longitude), m_dLatitude(latitude) {}

    bool operator==(const Coord& other) const
    {
        return m_dLongitude == other.m_dLongitude && m_dLatitude == other.m_dLatitude;
    }
    bool operator!=(const Coord& other) const { return !(*this == other); }
    /// Moves this position to the componentwise midpoint between it and other
    /// (no great-circle arithmetic; a position combined with itself stays put).
    Coord& operator|=(const Coord& other);

    double GetLongitude() const { return m_dLongitude; }
    double GetLatitude() const { return m_dLatitude; }
    void SetLongitude(double longitude) { m_dLongitude = longitude; }
    void SetLatitude(double latitude) { m_dLatitude = latitude; }

    /// True for −180 ≤ longitude ≤ 180 and −90 ≤ latitude ≤ 90; false for NaN.
    bool IsValid() const;

    /// printf format of the notation as Latin-1 bytes, valid for the whole process.
    const char* GetFmt(CoordFormat format) const;
    /// Display mask for MaskConverter: "#", "?", "E", "N", "X", "Y" are input
    /// positions, all other characters literals.
    QString GetMask(CoordFormat format) const;
    /// Input mask for QLineEdit::setInputMask.
    static QString getQtMask(CoordFormat format);
    /// Validation expression for the formatted text (QRegularExpression syntax).
    static QString getMaskRegExp(CoordFormat format);

    /// Raw text of this position: significant characters only, no separators.
    /// A position outside the valid range is written as it stands ("E190..."); the
    /// text is empty for an unknown notation, NaN, or more than a million degrees.
    QString GetText(CoordFormat format) const;
    /// Reads a raw text of the notation into this position.
    void SetText(const QString& text, CoordFormat format);
    /// The raw text merged into the display mask, "_" where it runs short.
    QString GetString(CoordFormat format) const;
    /// Reads a formatted text (as shown in the edit) into this position.
    void SetString(const QString& text, CoordFormat format);

private:
    double m_dLongitude = 0.0;
    double m_dLatitude = 0.0;
};

Q_DECLARE_METATYPE(Coord)

/// Display name of the notation, e.g. "Geo Decimal"; empty for an unknown one.
KVBASE_EXPORT QString getCoordFormatName(CoordFormat format);
/// The display name translated in the context "QCoreApplication".
KVBASE_EXPORT QString getTranslatedCoordFormatName(CoordFormat format);

#endif // KVBASE_COORD_COORD_H
