#include "coord/positiontext.h"

#include "coord/positiontext_p.h"

#include <QLocale>

#include <cmath>
#include <cstdint>

namespace PositionText {

namespace {

using namespace detail;

constexpr int kMaxLength = 256;
constexpr int kMaxTokens = 32;

// ---------------------------------------------------------------------------------------
// Scanner: numbers, letter groups, marks, signs and separators, with their positions.

enum class Kind : std::uint8_t
{
    Number,
    Word,
    Mark,      // 'd' degrees, 'm' minutes, 's' seconds, ':' colon
    Sign,      // '+' or '-' (also a dash between parts)
    Separator, // ',' or ';'
};

struct Token
{
    Kind kind;
    bool gap;       // blank before it
    char symbol;    // mark, sign or separator character
    bool point;     // number with a decimal point
    int intDigits;  // number: digits before the point
    int fracDigits; // number: digits after it
    int pos;        // 0-based index of the first character
    int len;        // characters
    double value;   // number
};

struct Compact;

struct Tokens
{
    Token t[kMaxTokens];
    int n = 0;
    // The letters-and-digits view, built on first use (see compactOf).
    mutable Compact* compact = nullptr;
    mutable bool compactTried = false;
};

// What a reader reports: nothing to say (the text has another shape), a position, or a
// problem at a character position.
struct Outcome
{
    enum State
    {
        NoShape,
        Failed,
        Ok
    } state = NoShape;
    double lat = 0.0;
    double lon = 0.0;
    Notation notation = Notation::Decimal;
    QString error;
};

Outcome failure(const QString& message, int pos = -1)
{
    Outcome o;
    o.state = Outcome::Failed;
    o.error = pos >= 0 ? QStringLiteral("%1 at %2").arg(message).arg(pos + 1) : message;
    return o;
}

Outcome success(double lat, double lon, Notation notation)
{
    Outcome o;
    o.state = Outcome::Ok;
    o.lat = lat;
    o.lon = lon;
    o.notation = notation;
    return o;
}

bool isAsciiLetter(ushort c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

char upper(QChar c)
{
    const ushort u = c.unicode();
    return char(u >= 'a' && u <= 'z' ? u - 32 : u);
}

double parseNumber(const QString& text, int pos, int len, std::int64_t mantissa, int fracDigits, bool exact)
{
    static const double powers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    // One correctly rounded division while mantissa and power are exact doubles;
    // otherwise the general conversion.
    if (exact && fracDigits <= 22)
        return double(mantissa) / powers[fracDigits];
    return QLocale::c().toDouble(QStringView(text).mid(pos, len));
}

// Splits the text into tokens; false with an error for characters that belong to no
// notation or for too many parts.
bool scan(const QString& text, Tokens& out, QString& error)
{
    const QChar* s = text.constData();
    const int n = int(text.size());
    bool gap = false;
    for (int i = 0; i < n;) {
        const ushort c = s[i].unicode();
        if (s[i].isSpace()) {
            gap = true;
            ++i;
            continue;
        }
        if (out.n == kMaxTokens) {
            error = QStringLiteral("too many parts at %1").arg(i + 1);
            return false;
        }
        Token& t = out.t[out.n];
        t = Token{Kind::Number, gap, 0, false, 0, 0, i, 1, 0.0};
        gap = false;
        if ((c >= '0' && c <= '9') ||
            (c == '.' && i + 1 < n && s[i + 1].unicode() >= '0' && s[i + 1].unicode() <= '9')) {
            std::int64_t mantissa = 0;
            int significant = 0;
            int j = i;
            for (; j < n && s[j].unicode() >= '0' && s[j].unicode() <= '9'; ++j, ++t.intDigits) {
                mantissa = significant < 18 ? mantissa * 10 + (s[j].unicode() - '0') : mantissa;
                significant += (significant > 0 || s[j].unicode() != '0') ? 1 : 0;
            }
            if (j < n && s[j].unicode() == '.') {
                t.point = true;
                for (++j; j < n && s[j].unicode() >= '0' && s[j].unicode() <= '9'; ++j, ++t.fracDigits) {
                    mantissa = significant < 18 ? mantissa * 10 + (s[j].unicode() - '0') : mantissa;
                    significant += (significant > 0 || s[j].unicode() != '0') ? 1 : 0;
                }
            }
            t.len = j - i;
            t.value = parseNumber(text, i, t.len, mantissa, t.fracDigits,
                                  significant <= 15 && mantissa < (std::int64_t(1) << 53));
            i = j;
        } else if (isAsciiLetter(c)) {
            t.kind = Kind::Word;
            int j = i;
            while (j < n && isAsciiLetter(s[j].unicode()))
                ++j;
            t.len = j - i;
            i = j;
        } else {
            ++i;
            switch (c) {
            case 0x00B0: // degree sign
            case 0x00BA: // masculine ordinal, typed for it
            case 0x02DA: // ring above
                t.kind = Kind::Mark;
                t.symbol = 'd';
                break;
            case '\'':
            case 0x2032: // prime
            case 0x2019: // right single quotation mark
            case 0x00B4: // acute accent
                t.kind = Kind::Mark;
                t.symbol = 'm';
                if (c == '\'' && i < n && s[i].unicode() == '\'') { // '' for seconds
                    t.symbol = 's';
                    t.len = 2;
                    ++i;
                }
                break;
            case '"':
            case 0x2033: // double prime
            case 0x201D: // right double quotation mark
                t.kind = Kind::Mark;
                t.symbol = 's';
                break;
            case ':':
                t.kind = Kind::Mark;
                t.symbol = ':';
                break;
            case '+':
                t.kind = Kind::Sign;
                t.symbol = '+';
                break;
            case '-':
            case 0x2212: // minus sign
            case 0x2013: // en dash
                t.kind = Kind::Sign;
                t.symbol = '-';
                break;
            case ',':
            case ';':
                t.kind = Kind::Separator;
                t.symbol = char(c);
                break;
            default:
                error = QStringLiteral("unexpected character '%1' at %2").arg(s[i - 1]).arg(i);
                return false;
            }
        }
        ++out.n;
    }
    return true;
}

QString wordText(const QString& text, const Token& t)
{
    return text.mid(t.pos, t.len);
}

bool wordIs(const QString& text, const Token& t, const char* word)
{
    if (t.kind != Kind::Word)
        return false;
    int i = 0;
    for (; word[i]; ++i)
        if (i >= t.len || upper(text[t.pos + i]) != word[i])
            return false;
    return i == t.len;
}

bool isPlainInteger(const Token& t)
{
    return t.kind == Kind::Number && !t.point;
}

// ---------------------------------------------------------------------------------------
// Letters and digits without separators, for the references written as one word.

struct Compact
{
    char c[kMaxLength];
    int pos[kMaxLength];
    bool breakBefore[kMaxLength];
    int n = 0;
    bool dashes = false;
};

// Letters (upper-cased) and digits of the text with a mark where blanks or dashes
// stood; false when anything else (points, marks, signs) occurs.
bool makeCompact(const QString& text, const Tokens& tokens, Compact& out)
{
    bool pendingBreak = false;
    for (int k = 0; k < tokens.n; ++k) {
        const Token& t = tokens.t[k];
        if (t.kind == Kind::Sign && t.symbol == '-' && out.n > 0) {
            pendingBreak = out.dashes = true;
            continue;
        }
        if (!(t.kind == Kind::Word || isPlainInteger(t)))
            return false;
        for (int i = 0; i < t.len; ++i) {
            out.c[out.n] = upper(text[t.pos + i]);
            out.pos[out.n] = t.pos + i;
            out.breakBefore[out.n] = i == 0 && out.n > 0 && (t.gap || pendingBreak);
            ++out.n;
        }
        pendingBreak = false;
    }
    return out.n > 0 && !pendingBreak;
}

// The compact view of the tokens, built once for all the readers that want it (the
// caller provides its storage); nullptr when the text has no such view or, unless
// allowDash, has dashes.
const Compact* compactOf(const QString& text, const Tokens& tokens, bool allowDash, Compact& storage)
{
    if (!tokens.compactTried) {
        tokens.compactTried = true;
        tokens.compact = makeCompact(text, tokens, storage) ? &storage : nullptr;
    }
    return tokens.compact && (allowDash || !tokens.compact->dashes) ? tokens.compact : nullptr;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
    return c >= 'A' && c <= 'Z';
}

// The digits of a reference from index `from` to the end: one group of even length or
// two groups of equal length, at most maxPerAxis per axis. digits receives the count per
// axis, easting and northing the values.
bool referenceDigits(const Compact& c, int from, int maxPerAxis, int& digits, double& easting,
                     double& northing, QString& problem, int& problemPos)
{
    const int total = c.n - from;
    for (int i = from; i < c.n; ++i) {
        if (!isDigit(c.c[i])) {
            problem = QStringLiteral("unexpected '%1' among the digits").arg(QLatin1Char(c.c[i]));
            problemPos = c.pos[i];
            return false;
        }
        if (i > from && c.breakBefore[i] && i - from != total / 2) {
            problem = QStringLiteral("the digit groups differ in length");
            problemPos = c.pos[i];
            return false;
        }
    }
    if (total % 2 != 0) {
        problem =
            QStringLiteral("an odd number of digits (%1): easting and northing need as many each").arg(total);
        problemPos = c.pos[from];
        return false;
    }
    if (total / 2 > maxPerAxis) {
        problem = QStringLiteral("%1 digits per axis, at most %2").arg(total / 2).arg(maxPerAxis);
        problemPos = c.pos[from];
        return false;
    }
    digits = total / 2;
    std::int64_t e = 0, n = 0;
    for (int i = 0; i < digits; ++i) {
        e = e * 10 + (c.c[from + i] - '0');
        n = n * 10 + (c.c[from + digits + i] - '0');
    }
    easting = double(e);
    northing = double(n);
    return true;
}

// Metres of `digits` digits of a 100 km square, at the centre of the cell they name.
double squareOffset(double value, int digits)
{
    static const double units[] = {100000.0, 10000.0, 1000.0, 100.0, 10.0, 1.0};
    return value * units[digits] + units[digits] / 2.0;
}

// ---------------------------------------------------------------------------------------
// UTM and UPS.

struct UtmDesignator
{
    bool ok = false;
    bool ups = false;
    int zone = 0;
    bool north = true;
    char band = 0; // 0 for a hemisphere
};

// One letter or word after a zone (or alone, for UPS).
UtmDesignator designator(const QString& text, const Token& w, bool ups)
{
    UtmDesignator d;
    d.ups = ups;
    if (wordIs(text, w, "NORTH") || wordIs(text, w, "N")) {
        d.ok = true;
        d.north = true;
        return d;
    }
    if (wordIs(text, w, "SOUTH")) {
        d.ok = true;
        d.north = false;
        return d;
    }
    if (w.len != 1)
        return d;
    const QChar q = text[w.pos];
    const char c = upper(q);
    // Lower-case s is GeoConvert's southern hemisphere; upper-case S is band S in UTM.
    if (c == 'S' && (ups || q.unicode() == 's')) {
        d.ok = true;
        d.north = false;
        return d;
    }
    if (ups) {
        if (c == 'A' || c == 'B' || c == 'Y' || c == 'Z') {
            d.ok = true;
            d.band = c;
            d.north = c == 'Y' || c == 'Z';
        }
        return d;
    }
    if (Geodesy::bandRange(QLatin1Char(c))) {
        d.ok = true;
        d.band = c;
        d.north = isNorthern(c);
    }
    return d;
}

bool isUpsLetter(const QString& text, const Token& w)
{
    if (wordIs(text, w, "NORTH") || wordIs(text, w, "SOUTH"))
        return true;
    if (w.kind != Kind::Word || w.len != 1)
        return false;
    const char c = upper(text[w.pos]);
    return c == 'A' || c == 'B' || c == 'Y' || c == 'Z' || c == 'N' || c == 'S';
}

Outcome parseUtm(const QString& text, const Tokens& tokens, bool given)
{
    // Without separators: [zone] letter easting northing, or easting northing [zone] letter.
    const Token* parts[4];
    int count = 0;
    for (int k = 0; k < tokens.n; ++k) {
        const Token& t = tokens.t[k];
        if (t.kind == Kind::Separator && k > 0 && k + 1 < tokens.n)
            continue;
        if (count == 4 || !(t.kind == Kind::Number || t.kind == Kind::Word))
            return given ? failure(QStringLiteral("UTM: unexpected '%1'").arg(text.mid(t.pos, t.len)), t.pos)
                         : Outcome();
        parts[count++] = &t;
    }
    const auto designatorShaped = [&](const Token* t) {
        return t->kind == Kind::Word &&
               (t->len == 1 || wordIs(text, *t, "NORTH") || wordIs(text, *t, "SOUTH"));
    };
    const Token *zoneToken = nullptr, *letter = nullptr, *e = nullptr, *n = nullptr;
    if (count == 4 && isPlainInteger(*parts[0]) && designatorShaped(parts[1]) &&
        parts[2]->kind == Kind::Number && parts[3]->kind == Kind::Number) {
        zoneToken = parts[0], letter = parts[1], e = parts[2], n = parts[3];
    } else if (count == 4 && parts[0]->kind == Kind::Number && parts[1]->kind == Kind::Number &&
               isPlainInteger(*parts[2]) && designatorShaped(parts[3])) {
        e = parts[0], n = parts[1], zoneToken = parts[2], letter = parts[3];
    } else if (count == 3 && parts[0]->kind == Kind::Word && parts[1]->kind == Kind::Number &&
               parts[2]->kind == Kind::Number && isUpsLetter(text, *parts[0]) &&
               (given || (parts[1]->intDigits >= 6 && parts[2]->intDigits >= 6))) {
        letter = parts[0], e = parts[1], n = parts[2];
    } else if (count == 3 && parts[0]->kind == Kind::Number && parts[1]->kind == Kind::Number &&
               parts[2]->kind == Kind::Word && isUpsLetter(text, *parts[2]) &&
               (given || (parts[0]->intDigits >= 6 && parts[1]->intDigits >= 6))) {
        e = parts[0], n = parts[1], letter = parts[2];
    } else {
        return given ? failure(QStringLiteral("UTM: expected a zone with its band or hemisphere, an easting "
                                              "and a northing, as in 34V 333230 6580391"))
                     : Outcome();
    }
    if (zoneToken && (zoneToken->intDigits > 2 || zoneToken->value < 1 || zoneToken->value > 60))
        return failure(QStringLiteral("UTM: zone %1 is not between 1 and 60").arg(wordText(text, *zoneToken)),
                       zoneToken->pos);
    const UtmDesignator d = designator(text, *letter, zoneToken == nullptr);
    if (!d.ok)
        return failure(zoneToken ? QStringLiteral("UTM: '%1' is neither a latitude band (C to X without I "
                                                  "and O) nor a hemisphere (n, s)")
                                       .arg(wordText(text, *letter))
                                 : QStringLiteral("UTM: '%1' is not a polar area (A, B, Y, Z, n, s)")
                                       .arg(wordText(text, *letter)),
                       letter->pos);
    const int zone = zoneToken ? int(zoneToken->value) : 0;
    const double unit = std::pow(10.0, -std::max(e->fracDigits, n->fracDigits));
    if (zone > 0) {
        if (!(e->value >= 100000.0 && e->value <= 900000.0))
            return failure(
                QStringLiteral("UTM: easting %1 m is outside 100 km to 900 km").arg(wordText(text, *e)),
                e->pos);
        const bool inRange =
            d.north ? n->value <= 9600000.0 : (n->value >= 1000000.0 && n->value <= 10000000.0);
        if (!inRange)
            return failure(QStringLiteral("UTM: northing %1 m is outside the %2 hemisphere's range")
                               .arg(wordText(text, *n), QLatin1String(d.north ? "northern" : "southern")),
                           n->pos);
    } else {
        const double low = d.north ? 1200000.0 : 800000.0, high = d.north ? 2800000.0 : 3200000.0;
        for (const Token* v : {e, n})
            if (!(v->value >= low && v->value <= high))
                return failure(QStringLiteral("UPS: %1 m is outside %2 km to %3 km")
                                   .arg(wordText(text, *v))
                                   .arg(low / 1000.0)
                                   .arg(high / 1000.0),
                               v->pos);
        if (d.band &&
            ((d.band == 'A' || d.band == 'Y') ? e->value >= 2000000.0 + unit : e->value < 2000000.0 - unit))
            return failure(QStringLiteral("UPS: area %1 contradicts the easting %2")
                               .arg(QLatin1Char(d.band))
                               .arg(wordText(text, *e)),
                           letter->pos);
    }
    const Geodesy::GeoPoint p = utmToGeographic(zone, d.north, {e->value, n->value});
    if (!std::isfinite(p.lat) || !std::isfinite(p.lon))
        return failure(QStringLiteral("UTM: no position for these values"), e->pos);
    if (d.band && zone > 0) {
        const Geodesy::BandRange band = *Geodesy::bandRange(QLatin1Char(d.band));
        // A rounded northing may put a point on the band's edge a unit beyond it.
        const double tolerance = unit / 100000.0 + 1e-9;
        if (p.lat < band.south - tolerance || p.lat > band.north + tolerance)
            return failure(QStringLiteral("UTM: band %1 (%2 to %3 degrees) contradicts the northing %4 "
                                          "(latitude %5)")
                               .arg(QLatin1Char(d.band))
                               .arg(band.south)
                               .arg(band.north)
                               .arg(wordText(text, *n))
                               .arg(p.lat, 0, 'f', 4),
                           letter->pos);
    }
    return success(p.lat, p.lon, Notation::UTM);
}

// ---------------------------------------------------------------------------------------
// MGRS.

int indexIn(const char* letters, char c)
{
    for (int i = 0; letters[i]; ++i)
        if (letters[i] == c)
            return i;
    return -1;
}

// Northing range (false northing included in the south) that a latitude band covers
// within a zone: its near edge on the meridian, its far edge at the zone's side, where
// the parallels curve away from the equator. Built once for the standard zones and for
// those of Norway and Svalbard that reach 6 degrees from their meridian.
struct BandSpan
{
    double low;
    double high;
};

BandSpan bandSpan(int zone, char band)
{
    struct Table
    {
        BandSpan span[2][Geodesy::kBandCount];
        Table()
        {
            for (int wide = 0; wide < 2; ++wide) {
                for (int b = 0; b < Geodesy::kBandCount; ++b) {
                    const Geodesy::BandRange r = *Geodesy::bandRange(QLatin1Char(Geodesy::kLetters[2 + b]));
                    const bool northern = r.south >= 0.0;
                    const double side = wide ? 6.0 : 3.0;
                    // Zone 31: meridian 3 degrees east.
                    const double nearEdge =
                        utmInZone(31, northern, northern ? r.south : r.north, 3.0).northing;
                    const double farEdge =
                        utmInZone(31, northern, northern ? r.north : r.south, 3.0 + side).northing;
                    span[wide][b] = northern ? BandSpan{nearEdge, farEdge} : BandSpan{farEdge, nearEdge};
                }
            }
        }
    };
    static const Table table;
    const bool wide = (band == 'V' && zone == 32) || band == 'X';
    return table.span[wide ? 1 : 0][*Geodesy::bandIndex(QLatin1Char(band))];
}

Outcome parseMgrs(const QString& text, const Tokens& tokens, bool given, Compact& compactStorage)
{
    static const QString expected =
        QStringLiteral("MGRS: expected a grid zone, two square letters and digits, as in 34VCL3323080391");
    const Compact* view = compactOf(text, tokens, true, compactStorage);
    if (!view)
        return given ? failure(expected) : Outcome();
    const Compact& c = *view;
    int i = 0;
    int zone = 0;
    for (; i < c.n && isDigit(c.c[i]); ++i)
        zone = i < 2 ? zone * 10 + (c.c[i] - '0') : zone; // more than two digits is no zone
    int letters = 0;
    while (i + letters < c.n && isLetter(c.c[i + letters]))
        ++letters;
    const int b = i; // band letter
    if (i > 2 || letters != 3 || (i == 0 && indexIn("ABYZ", c.c[0]) < 0))
        return given ? failure(expected) : Outcome();
    if (i > 0 && c.breakBefore[1] && i == 2)
        return failure(QStringLiteral("MGRS: a blank inside the zone number"), c.pos[1]);
    if (c.breakBefore[b + 2])
        return failure(QStringLiteral("MGRS: the square letters %1%2 belong together")
                           .arg(QLatin1Char(c.c[b + 1]))
                           .arg(QLatin1Char(c.c[b + 2])),
                       c.pos[b + 2]);
    int digits = 0;
    double de = 0.0, dn = 0.0;
    QString problem;
    int problemPos = 0;
    if (!referenceDigits(c, b + 3, 5, digits, de, dn, problem, problemPos))
        return failure(QStringLiteral("MGRS: ") + problem, problemPos);
    const char band = c.c[b], column = c.c[b + 1], row = c.c[b + 2];
    const double offsetE = squareOffset(de, digits), offsetN = squareOffset(dn, digits);

    if (zone == 0 && i == 0) {
        // Polar areas: A and B in the south, Y and Z in the north, each half of its cap.
        const bool north = isNorthern(band);
        const std::optional<int> col = Geodesy::mgrsPolarEastingIndex(band, QLatin1Char(column));
        if (!col)
            return failure(QStringLiteral("MGRS: column letter %1 is not used in polar area %2")
                               .arg(QLatin1Char(column))
                               .arg(QLatin1Char(band)),
                           c.pos[b + 1]);
        const std::optional<int> rowIndex = Geodesy::mgrsPolarNorthingIndex(north, QLatin1Char(row));
        if (!rowIndex)
            return failure(QStringLiteral("MGRS: row letter %1 is not used in polar area %2")
                               .arg(QLatin1Char(row))
                               .arg(QLatin1Char(band)),
                           c.pos[b + 2]);
        const Geodesy::GeoPoint p =
            utmToGeographic(0, north, {*col * 100000.0 + offsetE, *rowIndex * 100000.0 + offsetN});
        return success(p.lat, p.lon, Notation::MGRS);
    }

    if (zone < 1 || zone > 60)
        return failure(QStringLiteral("MGRS: zone %1 is not between 1 and 60").arg(zone), c.pos[0]);
    if (!Geodesy::bandIndex(QLatin1Char(band)))
        return failure(
            QStringLiteral("MGRS: %1 is not a latitude band (C to X without I and O)").arg(QLatin1Char(band)),
            c.pos[b]);
    if (band == 'X' && (zone == 32 || zone == 34 || zone == 36))
        return failure(
            QStringLiteral("MGRS: zone %1X does not exist (Svalbard has 31X, 33X, 35X and 37X)").arg(zone),
            c.pos[0]);
    const std::optional<int> digit = Geodesy::mgrsEastingDigit(zone, QLatin1Char(column));
    if (!digit)
        return failure(QStringLiteral("MGRS: column letter %1 is not used in zone %2 (%3 to %4)")
                           .arg(QLatin1Char(column))
                           .arg(zone)
                           .arg(QLatin1Char(*Geodesy::mgrsColumnLetter(zone, 1)))
                           .arg(QLatin1Char(*Geodesy::mgrsColumnLetter(zone, 8))),
                       c.pos[b + 1]);
    const std::optional<int> rowInCycle = Geodesy::mgrsNorthingIndex(zone, QLatin1Char(row), false);
    if (!rowInCycle)
        return failure(QStringLiteral("MGRS: row letter %1 does not exist (A to V without I and O)")
                           .arg(QLatin1Char(row)),
                       c.pos[b + 2]);
    const BandSpan span = bandSpan(zone, band);
    double northing = -1.0;
    for (int cycle = 0; cycle < 5; ++cycle) {
        const double bottom = (*rowInCycle + 20.0 * cycle) * 100000.0;
        if (bottom < span.high && bottom + 100000.0 > span.low) {
            northing = bottom + offsetN;
            break;
        }
    }
    if (northing < 0.0)
        return failure(QStringLiteral("MGRS: square %1%2 does not exist in zone %3%4")
                           .arg(QLatin1Char(column))
                           .arg(QLatin1Char(row))
                           .arg(zone)
                           .arg(QLatin1Char(band)),
                       c.pos[b + 1]);
    const Geodesy::GeoPoint p =
        utmToGeographic(zone, isNorthern(band), {*digit * 100000.0 + offsetE, northing});
    return success(p.lat, p.lon, Notation::MGRS);
}

// ---------------------------------------------------------------------------------------
// British and Irish grid references.

Outcome parseNational(const QString& text, const Tokens& tokens, NationalGrid grid, bool given,
                      Compact& compactStorage)
{
    const bool british = grid == NationalGrid::British;
    const QString gridName = british ? QStringLiteral("British grid") : QStringLiteral("Irish grid");
    const QString expected =
        british ? QStringLiteral("British grid: expected two letters and digits, as in TQ 30028 80380")
                : QStringLiteral("Irish grid: expected a letter and digits, as in O 15900 34671");
    const Compact* view = compactOf(text, tokens, false, compactStorage);
    if (!view)
        return given ? failure(expected) : Outcome();
    const Compact& c = *view;
    const int letters = british ? 2 : 1;
    if (c.n < letters + 1 || !isLetter(c.c[0]) || (british && !isLetter(c.c[1])) || !isDigit(c.c[letters]))
        return given ? failure(expected) : Outcome();
    if (british && c.breakBefore[1])
        return failure(QStringLiteral("British grid: the square letters belong together"), c.pos[1]);
    int digits = 0;
    double de = 0.0, dn = 0.0;
    QString problem;
    int problemPos = 0;
    if (!referenceDigits(c, letters, 5, digits, de, dn, problem, problemPos))
        return failure(gridName + QStringLiteral(": ") + problem, problemPos);
    double squareE = 0.0, squareN = 0.0;
    if (british) {
        const std::optional<Geodesy::SquareIndex> first =
            Geodesy::britishFirstLetterSquare(QLatin1Char(c.c[0]));
        if (!first)
            return failure(QStringLiteral("British grid: there is no 500 km square %1 (H, J, N, O, S, T)")
                               .arg(QLatin1Char(c.c[0])),
                           c.pos[0]);
        squareE = first->east * 500000.0;
        squareN = first->north * 500000.0;
    }
    const std::optional<Geodesy::SquareIndex> square =
        Geodesy::squareLetterIndex(QLatin1Char(c.c[letters - 1]));
    if (!square)
        return failure(gridName +
                           QStringLiteral(": there is no square %1").arg(QLatin1Char(c.c[letters - 1])),
                       c.pos[letters - 1]);
    const Geodesy::GridPoint point{squareE + square->east * 100000.0 + squareOffset(de, digits),
                                   squareN + square->north * 100000.0 + squareOffset(dn, digits)};
    const std::optional<Geodesy::GeoPoint> p = nationalGridToWgs84(grid, point);
    if (!p)
        return failure(gridName + QStringLiteral(": no position for this reference"), c.pos[0]);
    const double lat = p->lat, lon = p->lon;
    return success(lat, lon, british ? Notation::BritishGrid : Notation::IrishGrid);
}

// ---------------------------------------------------------------------------------------
// Maidenhead locators.

Outcome parseMaidenhead(const QString& text, const Tokens& tokens, bool given, Compact& compactStorage)
{
    static const QString expected =
        QStringLiteral("Maidenhead: expected pairs of letters and digits, as in JO99AH");
    const Compact* view = compactOf(text, tokens, false, compactStorage);
    if (!view || view->n % 2 != 0 || view->n > 10)
        return given ? failure(expected) : Outcome();
    const Compact& c = *view;
    for (int i = 0; i < c.n; ++i) {
        const bool digitPair = (i / 2) % 2 == 1;
        if ((digitPair ? !isDigit(c.c[i]) : !isLetter(c.c[i])) || (i > 0 && c.breakBefore[i]))
            return given ? failure(expected) : Outcome();
    }
    static const int radix[5] = {18, 10, 24, 10, 24};
    double lon = -180.0, lat = -90.0, width = 360.0, height = 180.0;
    for (int level = 0; level * 2 < c.n; ++level) {
        const char base = radix[level] == 10 ? '0' : 'A';
        width /= radix[level];
        height /= radix[level];
        for (int k = 0; k < 2; ++k) {
            const int v = c.c[level * 2 + k] - base;
            if (v >= radix[level])
                return failure(QStringLiteral("Maidenhead: letter %1 is beyond %2")
                                   .arg(QLatin1Char(c.c[level * 2 + k]))
                                   .arg(QLatin1Char(char(base + radix[level] - 1))),
                               c.pos[level * 2 + k]);
            (k == 0 ? lon : lat) += v * (k == 0 ? width : height);
        }
    }
    return success(lat + height / 2.0, lon + width / 2.0, Notation::Maidenhead);
}

// ---------------------------------------------------------------------------------------
// RT90 and SWEREF 99 TM grid values.

Outcome parseSwedish(const QString& text, const Tokens& tokens, bool rt90, bool given)
{
    const QString gridName = rt90 ? QStringLiteral("RT90") : QStringLiteral("SWEREF 99 TM");
    const char northLetter = rt90 ? 'X' : 'N', eastLetter = rt90 ? 'Y' : 'E';
    const QString expected =
        rt90 ? QStringLiteral("RT90: expected X and Y values in metres, as in X6580909 Y1628833")
             : QStringLiteral("SWEREF 99 TM: expected N and E values in metres, as in N6580743 E674572");
    const Token* value[2] = {nullptr, nullptr};
    char letter[2] = {0, 0};
    int count = 0;
    for (int k = 0; k < tokens.n; ++k) {
        const Token& t = tokens.t[k];
        if (t.kind == Kind::Separator && count == 1 && k + 1 < tokens.n)
            continue;
        if (t.kind == Kind::Word && t.len == 1 && count < 2 && !letter[count] && k + 1 < tokens.n &&
            tokens.t[k + 1].kind == Kind::Number) {
            letter[count] = upper(text[t.pos]);
            continue;
        }
        if (t.kind != Kind::Number || count == 2)
            return given ? failure(expected) : Outcome();
        value[count++] = &t;
    }
    if (count != 2)
        return given ? failure(expected) : Outcome();
    const bool lettered = letter[0] && letter[1];
    if (!lettered && !(given && !letter[0] && !letter[1]))
        return given ? failure(expected) : Outcome();
    const bool inOrder = letter[0] == northLetter && letter[1] == eastLetter;
    if (lettered && !inOrder && !(letter[0] == eastLetter && letter[1] == northLetter))
        return given ? failure(expected) : Outcome();
    // SWEREF's letters are also hemisphere letters: below 1000 they are degrees.
    if (!given && !rt90 && (value[0]->value < 1000.0 || value[1]->value < 1000.0))
        return Outcome();
    const Token* x = (!lettered || inOrder) ? value[0] : value[1];
    const Token* y = x == value[0] ? value[1] : value[0];
    const std::optional<Geodesy::GeoPoint> p =
        Geodesy::tmInverse(rt90 ? rt90Grid() : swerefGrid(), {y->value, x->value});
    const double lat = p ? p->lat : 0.0, lon = p ? p->lon : 0.0;
    const double m = kSwedishReadMargin;
    if (!p || lat < kSwedishMinLat - m || lat > kSwedishMaxLat + m || lon < kSwedishMinLon - m ||
        lon > kSwedishMaxLon + m)
        return failure(gridName + QStringLiteral(": %1 %2 lies outside the area read (50 to 75 degrees "
                                                 "north, 0 to 35 degrees east)")
                                      .arg(wordText(text, *x), wordText(text, *y)),
                       value[0]->pos);
    return success(lat, lon, rt90 ? Notation::RT90 : Notation::SWEREF99TM);
}

// ---------------------------------------------------------------------------------------
// Decimal degrees and degrees, minutes, seconds.

// The tokens with letter groups split into single letters, since "45sN" is a seconds
// mark and a hemisphere.
struct Atom
{
    Kind kind;
    bool gap;
    char symbol; // mark, sign, separator; for letters the upper-case letter
    int pos;
    const Token* number;
};

struct GeoValue
{
    double degrees = 0.0;
    char hemisphere = 0;
    int pos = 0;
    int hemispherePos = 0;
    bool marked = false;
};

class GeoReader
{
public:
    GeoReader(const QString& text, const Tokens& tokens) : m_text(text)
    {
        for (int k = 0; k < tokens.n; ++k) {
            const Token& t = tokens.t[k];
            // Long letter groups (only a named notation lets them in) can fill the atoms.
            if (m_n + (t.kind == Kind::Word ? t.len : 1) > kMaxAtoms) {
                m_overflowPos = t.pos;
                return;
            }
            if (t.kind != Kind::Word) {
                m_atoms[m_n++] = Atom{t.kind, t.gap, t.symbol, t.pos, &t};
                continue;
            }
            for (int i = 0; i < t.len; ++i)
                m_atoms[m_n++] =
                    Atom{Kind::Word, i == 0 && t.gap, upper(text[t.pos + i]), t.pos + i, nullptr};
        }
    }

    // Fails (without a message) when the text has letters that no degree text has or
    // numbers too large for degrees: then it is not this notation's text at all. A letter
    // group is a hemisphere, a mark (d, m, s) or a mark followed by a hemisphere ("sN").
    static bool shapeFits(const QString& text, const Tokens& tokens)
    {
        for (int k = 0; k < tokens.n; ++k) {
            const Token& t = tokens.t[k];
            if (t.kind == Kind::Number && t.value >= 1000.0)
                return false;
            if (t.kind != Kind::Word)
                continue;
            const char first = upper(text[t.pos]);
            if (t.len > 2 || (t.len == 1 && indexIn("NSEWDM", first) < 0) ||
                (t.len == 2 && (indexIn("DMS", first) < 0 || indexIn("NSEW", upper(text[t.pos + 1])) < 0)))
                return false;
        }
        return true;
    }

    Outcome read()
    {
        if (m_overflowPos >= 0)
            return failure(QStringLiteral("too many parts"), m_overflowPos);
        GeoValue v[2];
        int k = 0;
        for (int i = 0; i < 2; ++i) {
            if (i == 1 && k < m_n && m_atoms[k].kind == Kind::Separator)
                ++k;
            if (k >= m_n)
                return failure(i == 0 ? QStringLiteral("empty text")
                                      : QStringLiteral("a second value (longitude) is missing"),
                               i == 0 ? -1 : int(m_text.size()) - 1);
            if (!readValue(k, v[i]))
                return m_failure;
        }
        if (k < m_n)
            return failure(QStringLiteral("unexpected '%1' after the two values")
                               .arg(m_atoms[k].number ? m_text.mid(m_atoms[k].pos, m_atoms[k].number->len)
                                                      : QString(m_text[m_atoms[k].pos])),
                           m_atoms[k].pos);
        const bool lat0 = v[0].hemisphere == 'N' || v[0].hemisphere == 'S';
        const bool lat1 = v[1].hemisphere == 'N' || v[1].hemisphere == 'S';
        if (v[0].hemisphere && v[1].hemisphere && lat0 == lat1)
            return failure(lat0 ? QStringLiteral("two latitudes (N or S) and no longitude")
                                : QStringLiteral("two longitudes (E or W) and no latitude"),
                           v[1].hemispherePos);
        const int latIndex = (v[0].hemisphere ? !lat0 : (v[1].hemisphere ? lat1 : false)) ? 1 : 0;
        const GeoValue& la = v[latIndex];
        const GeoValue& lo = v[1 - latIndex];
        if (!(std::fabs(la.degrees) <= 90.0))
            return failure(QStringLiteral("latitude %1 is beyond 90 degrees").arg(la.degrees, 0, 'g', 12),
                           la.pos);
        if (!(std::fabs(lo.degrees) <= 180.0))
            return failure(QStringLiteral("longitude %1 is beyond 180 degrees").arg(lo.degrees, 0, 'g', 12),
                           lo.pos);
        return success(la.degrees, lo.degrees, (la.marked || lo.marked) ? Notation::DMS : Notation::Decimal);
    }

private:
    static constexpr int kMaxAtoms = 2 * kMaxTokens;

    bool fail(const QString& message, int pos)
    {
        m_failure = failure(message, pos);
        return false;
    }

    bool isHemisphere(int k) const
    {
        return k < m_n && m_atoms[k].kind == Kind::Word && indexIn("NSEW", m_atoms[k].symbol) >= 0;
    }

    // The mark that follows a number in slot 0 (degrees), 1 (minutes) or 2 (seconds):
    // 'd', 'm', 's', ':' or 0 for none. Letters count as marks only where they fit.
    char markAt(int k, int slot, bool letterMinutes) const
    {
        if (k >= m_n)
            return 0;
        const Atom& a = m_atoms[k];
        if (a.kind == Kind::Mark)
            return a.symbol;
        if (a.kind != Kind::Word || a.gap)
            return 0;
        if (a.symbol == 'D' && slot == 0)
            return 'd';
        if (a.symbol == 'M' && slot == 1)
            return 'm';
        if (a.symbol == 'S' && slot == 2 && letterMinutes)
            return 's';
        return 0;
    }

    bool readValue(int& k, GeoValue& v)
    {
        v.pos = m_atoms[k].pos;
        double sign = 1.0;
        bool signed_ = false;
        if (m_atoms[k].kind == Kind::Sign) {
            sign = m_atoms[k].symbol == '-' ? -1.0 : 1.0;
            signed_ = true;
            ++k;
        }
        if (isHemisphere(k)) {
            v.hemisphere = m_atoms[k].symbol;
            v.hemispherePos = m_atoms[k].pos;
            ++k;
        }
        if (k < m_n && m_atoms[k].kind == Kind::Sign) {
            if (signed_ || v.hemisphere)
                return fail(QStringLiteral("a sign after a sign or hemisphere letter"), m_atoms[k].pos);
            sign = m_atoms[k].symbol == '-' ? -1.0 : 1.0;
            signed_ = true;
            ++k;
        }
        double parts[3] = {0.0, 0.0, 0.0};
        int slot = 0;
        bool letterMinutes = false;
        const Token* last = nullptr;
        while (true) {
            if (k >= m_n || m_atoms[k].kind != Kind::Number)
                return fail(QStringLiteral("a number is missing"),
                            k < m_n ? m_atoms[k].pos : int(m_text.size()) - 1);
            const Token* number = m_atoms[k].number;
            if (last && last->point)
                return fail(QStringLiteral("only the last part of a value may have decimals"), last->pos);
            last = number;
            ++k;
            const char mark = markAt(k, slot, letterMinutes);
            int thisSlot = slot;
            if (mark == 'd' || mark == 'm' || mark == 's') {
                thisSlot = mark == 'd' ? 0 : (mark == 'm' ? 1 : 2);
                if (thisSlot != slot)
                    return fail(QStringLiteral("the mark after %1 is out of order")
                                    .arg(m_text.mid(number->pos, number->len)),
                                m_atoms[k].pos);
                if (mark == 'm' && m_atoms[k].kind == Kind::Word)
                    letterMinutes = true;
            }
            if (thisSlot > 0 && number->value >= 60.0)
                return fail(QStringLiteral("%1 %2 are not below 60")
                                .arg(QLatin1String(thisSlot == 1 ? "minutes" : "seconds"))
                                .arg(m_text.mid(number->pos, number->len)),
                            number->pos);
            parts[thisSlot] = number->value;
            if (mark)
                v.marked = true;
            if (thisSlot > 0)
                v.marked = true;
            if (mark)
                ++k;
            // A colon always asks for the next part; a unit mark allows it unless the next
            // number starts a value of its own (a degree mark or colon follows it).
            const bool next = k < m_n && m_atoms[k].kind == Kind::Number && thisSlot < 2;
            if (mark == ':') {
                if (!next)
                    return fail(QStringLiteral("a number is missing after ':'"), m_atoms[k - 1].pos);
            } else if (!mark || !next || markAt(k + 1, 0, false) == 'd' || markAt(k + 1, 0, false) == ':') {
                break;
            }
            slot = thisSlot + 1;
        }
        if (!v.hemisphere && isHemisphere(k)) {
            v.hemisphere = m_atoms[k].symbol;
            v.hemispherePos = m_atoms[k].pos;
            if (signed_)
                return fail(QStringLiteral("a sign and the hemisphere letter %1 together")
                                .arg(QLatin1Char(v.hemisphere)),
                            m_atoms[k].pos);
            ++k;
        }
        const double magnitude = (parts[0] * 3600.0 + parts[1] * 60.0 + parts[2]) / 3600.0;
        const double hemisphereSign = (v.hemisphere == 'S' || v.hemisphere == 'W') ? -1.0 : 1.0;
        v.degrees = sign * hemisphereSign * magnitude;
        return true;
    }

    const QString& m_text;
    Atom m_atoms[kMaxAtoms];
    int m_n = 0;
    int m_overflowPos = -1;
    Outcome m_failure;
};

Outcome parseGeographic(const QString& text, const Tokens& tokens, bool given)
{
    if (!given && !GeoReader::shapeFits(text, tokens))
        return Outcome();
    GeoReader reader(text, tokens);
    return reader.read();
}

// ---------------------------------------------------------------------------------------
// Dispatch.

Outcome parseAs(const QString& text, const Tokens& tokens, Notation notation, bool given, Compact& compact)
{
    switch (notation) {
    case Notation::Decimal:
    case Notation::DMS:
        return parseGeographic(text, tokens, given);
    case Notation::UTM:
        return parseUtm(text, tokens, given);
    case Notation::MGRS:
        return parseMgrs(text, tokens, given, compact);
    case Notation::RT90:
        return parseSwedish(text, tokens, true, given);
    case Notation::SWEREF99TM:
        return parseSwedish(text, tokens, false, given);
    case Notation::Maidenhead:
        return parseMaidenhead(text, tokens, given, compact);
    case Notation::BritishGrid:
        return parseNational(text, tokens, NationalGrid::British, given, compact);
    case Notation::IrishGrid:
        return parseNational(text, tokens, NationalGrid::Irish, given, compact);
    }
    return Outcome();
}

std::optional<Position> finish(const Outcome& o, QString* error)
{
    if (o.state != Outcome::Ok) {
        if (error)
            *error = o.error;
        return std::nullopt;
    }
    if (error)
        error->clear();
    return Position{o.lat, o.lon, o.notation};
}

// Names the first part that no notation has a place for.
Outcome unreadable(const QString& text, const Tokens& tokens)
{
    for (int k = 0; k < tokens.n; ++k) {
        const Token& t = tokens.t[k];
        if (t.kind == Kind::Word)
            return failure(QStringLiteral("not a position in any notation: '%1'").arg(text.mid(t.pos, t.len)),
                           t.pos);
        if (t.kind == Kind::Number && t.value >= 1000.0)
            return failure(QStringLiteral("not a position in any notation: %1 is too large for degrees "
                                          "(grid values need their letters or the notation)")
                               .arg(text.mid(t.pos, t.len)),
                           t.pos);
    }
    return failure(QStringLiteral("not a position in any notation"), tokens.t[0].pos);
}

bool prepare(const QString& text, Tokens& tokens, QString* error)
{
    QString problem;
    if (text.size() > kMaxLength)
        problem = QStringLiteral("text longer than %1 characters").arg(kMaxLength);
    else if (!scan(text, tokens, problem))
        ;
    else if (tokens.n == 0)
        problem = QStringLiteral("empty text");
    else
        return true;
    if (error)
        *error = problem;
    return false;
}

} // namespace

std::optional<Position> parse(const QString& text, QString* error)
{
    Tokens tokens;
    if (!prepare(text, tokens, error))
        return std::nullopt;
    // DMS shares the reader of Decimal, so it is tried once.
    static const Notation order[] = {Notation::UTM,         Notation::MGRS,       Notation::Decimal,
                                     Notation::RT90,        Notation::SWEREF99TM, Notation::Maidenhead,
                                     Notation::BritishGrid, Notation::IrishGrid};
    Compact compact;
    Outcome found;
    Notation readAs[kNotationCount];
    int successes = 0, failures = 0;
    QString problems;
    // Texts that start with a number are UTM, MGRS or degrees: every other notation
    // starts with its letters.
    const bool numberFirst = tokens.t[0].kind == Kind::Number;
    for (const Notation n : order) {
        if (numberFirst && n != Notation::UTM && n != Notation::MGRS && n != Notation::Decimal)
            continue;
        Outcome o = parseAs(text, tokens, n, false, compact);
        if (o.state == Outcome::NoShape)
            continue;
        if (o.state == Outcome::Ok) {
            readAs[successes] = o.notation;
            if (successes++ == 0)
                found = o;
            continue;
        }
        problems += (failures++ ? QStringLiteral("; ") : QString()) + o.error;
    }
    if (successes > 1) {
        QStringList names;
        for (int i = 0; i < successes; ++i)
            names << name(readAs[i]);
        found = failure(QStringLiteral("ambiguous: the text reads as %1; give the notation")
                            .arg(names.join(QLatin1String(" or "))));
    } else if (successes == 0) {
        found = failures ? failure(problems) : unreadable(text, tokens);
    }
    return finish(found, error);
}

std::optional<Position> parse(const QString& text, Notation notation, QString* error)
{
    const int index = int(notation);
    if (index < 0 || index >= kNotationCount) {
        if (error)
            *error = QStringLiteral("unknown notation %1").arg(index);
        return std::nullopt;
    }
    Tokens tokens;
    if (!prepare(text, tokens, error))
        return std::nullopt;
    Compact compact;
    Outcome o = parseAs(text, tokens, notation, true, compact);
    if (o.state == Outcome::Ok && notation == Notation::Decimal && o.notation == Notation::DMS)
        o = failure(QStringLiteral("Decimal: the text has minutes, seconds or their marks; read it as DMS"));
    if (o.state == Outcome::Ok)
        o.notation = notation;
    return finish(o, error);
}

} // namespace PositionText
