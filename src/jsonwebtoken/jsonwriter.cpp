#include "jsonwebtoken/jsonwriter_p.h"

#include "jsonwebtoken/crypto_p.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace jsonWebToken {
namespace Json {

namespace {

// Compact JSON as QJsonDocument::toJson writes it, without building the
// document, which cost half the time of signing a small token. Strings are
// UTF-8, a lone surrogate is escaped as Qt escapes it.

void writeEscape(std::string& out, char16_t c)
{
    static const char hex[] = "0123456789abcdef";
    const char escape[] = {'\\', 'u', hex[c >> 12], hex[(c >> 8) & 15], hex[(c >> 4) & 15], hex[c & 15]};
    out.append(escape, 6);
}

} // namespace

void writeString(std::string& out, const QString& text)
{
    out += '"';
    const char16_t* p = reinterpret_cast<const char16_t*>(text.utf16());
    const char16_t* const end = p + text.size();
    while (p < end) {
        const char16_t* run = p;
        while (run < end && *run >= 0x20 && *run < 0x80 && *run != '"' && *run != '\\')
            ++run;
        while (p < run) {
            char ascii[128];
            const auto count = std::min<std::ptrdiff_t>(run - p, sizeof ascii);
            for (std::ptrdiff_t i = 0; i < count; ++i)
                ascii[i] = char(p[i]);
            out.append(ascii, size_t(count));
            p += count;
        }
        if (p == end)
            break;
        const char16_t c = *p;
        if (c >= 0x80) {
            const char16_t* wide = p;
            while (wide < end && *wide >= 0x80 && !QChar::isSurrogate(*wide))
                ++wide;
            if (wide == p && p + 1 < end && QChar::isHighSurrogate(c) && QChar::isLowSurrogate(p[1]))
                wide = p + 2;
            if (wide == p) {
                writeEscape(out, c);
                ++p;
            } else {
                const QByteArray utf8 = QStringView(p, wide - p).toUtf8();
                out.append(utf8.constData(), size_t(utf8.size()));
                p = wide;
            }
            continue;
        }
        const char* const named = c == '"'    ? "\\\""
                                  : c == '\\' ? "\\\\"
                                  : c == '\b' ? "\\b"
                                  : c == '\f' ? "\\f"
                                  : c == '\n' ? "\\n"
                                  : c == '\r' ? "\\r"
                                  : c == '\t' ? "\\t"
                                              : nullptr;
        if (named)
            out.append(named, 2);
        else
            writeEscape(out, c);
        ++p;
    }
    out += '"';
}

namespace {

void writeInteger(std::string& out, qint64 value)
{
    char digits[24];
    char* p = digits + sizeof digits;
    quint64 whole = value < 0 ? 0 - quint64(value) : quint64(value);
    do {
        *--p = char('0' + whole % 10);
        whole /= 10;
    } while (whole);
    if (value < 0)
        *--p = '-';
    out.append(p, size_t(digits + sizeof digits - p));
}

void writeNumber(std::string& out, const QJsonValue& value)
{
    // Whole numbers within a double's exact range, NumericDates among them, as
    // integers; 64-bit integers read from JSON exactly (Qt 5 holds them so but
    // writes them through a double, so a signed payload would not read back as
    // it was); anything else as Qt writes it.
    const double number = value.toDouble();
    if (number == std::floor(number) && std::fabs(number) < 9007199254740992.0) {
        writeInteger(out, static_cast<qint64>(number));
        return;
    }
    const QVariant exact = value.toVariant();
    if (exact.userType() == QMetaType::LongLong) {
        writeInteger(out, exact.toLongLong());
        return;
    }
    const QByteArray json = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    out.append(json.constData() + 1, size_t(json.size() - 2));
}

} // namespace

void writeObject(std::string& out, const QJsonObject& object)
{
    out += '{';
    for (auto it = object.constBegin(); it != object.constEnd(); ++it) {
        if (it != object.constBegin())
            out += ',';
        writeString(out, it.key());
        out += ':';
        writeValue(out, it.value());
    }
    out += '}';
}

void writeValue(std::string& out, const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::String:
        writeString(out, value.toString());
        break;
    case QJsonValue::Double:
        writeNumber(out, value);
        break;
    case QJsonValue::Bool:
        out += value.toBool() ? "true" : "false";
        break;
    case QJsonValue::Object:
        writeObject(out, value.toObject());
        break;
    case QJsonValue::Array: {
        const QJsonArray array = value.toArray();
        out += '[';
        for (int i = 0; i < array.size(); ++i) {
            if (i)
                out += ',';
            writeValue(out, array.at(i));
        }
        out += ']';
        break;
    }
    default:
        out += "null";
        break;
    }
}

namespace {

// Keeps its capacity from token to token.
std::string& threadBuffer()
{
    thread_local std::string json;
    json.clear();
    return json;
}

} // namespace

void appendObject(QByteArray& out, const QJsonObject& object)
{
    std::string& json = threadBuffer();
    writeObject(json, object);
    Crypto::appendBase64Url(out, json.data(), int(json.size()));
}

namespace {

// Integers below this magnitude are written alike by Qt 5, which holds JSON
// numbers as doubles, and Qt 6, which keeps 64-bit integers.
constexpr qint64 exactIntegers = qint64(1) << 53;

bool isAscii(const QString& text)
{
    const char16_t* p = reinterpret_cast<const char16_t*>(text.utf16());
    return std::all_of(p, p + text.size(), [](char16_t c) { return c < 0x80; });
}

// The types Token's members hold in practice: its own claims and what the
// reading below gives. Anything else goes through Qt's own conversion.
bool writeVariant(std::string& out, const QVariant& value)
{
    switch (value.userType()) {
    case QMetaType::QString:
        writeString(out, *static_cast<const QString*>(value.constData()));
        return true;
    case QMetaType::QStringList: {
        const auto& list = *static_cast<const QStringList*>(value.constData());
        out += '[';
        for (int i = 0; i < list.size(); ++i) {
            if (i)
                out += ',';
            writeString(out, list.at(i));
        }
        out += ']';
        return true;
    }
    case QMetaType::Int:
    case QMetaType::LongLong: {
        const qint64 number = value.toLongLong();
        if (number <= -exactIntegers || number >= exactIntegers)
            return false;
        writeInteger(out, number);
        return true;
    }
    case QMetaType::Double: {
        const double number = value.toDouble();
        if (!std::isfinite(number))
            return false;
        writeNumber(out, QJsonValue(number));
        return true;
    }
    case QMetaType::Bool:
        out += value.toBool() ? "true" : "false";
        return true;
    default:
        return false;
    }
}

bool isPlainCharacter(char c)
{
    return c >= 0x20 && c <= 0x7e && c != '"' && c != '\\';
}

// A string without escapes: returns the end of its text, or null.
const char* scanString(const char* p, const char* end)
{
    if (p == end || *p != '"')
        return nullptr;
    for (++p; p < end && isPlainCharacter(*p); ++p) {
    }
    return p < end && *p == '"' ? p : nullptr;
}

} // namespace

bool appendVariantMap(QByteArray& out, const QMap<QString, QVariant>& members)
{
    std::string& json = threadBuffer();
    json += '{';
    // QMap and QJsonObject order ASCII names alike.
    for (auto it = members.cbegin(); it != members.cend(); ++it) {
        if (!isAscii(it.key()))
            return false;
        if (it != members.cbegin())
            json += ',';
        writeString(json, it.key());
        json += ':';
        if (!writeVariant(json, it.value()))
            return false;
    }
    json += '}';
    Crypto::appendBase64Url(out, json.data(), int(json.size()));
    return true;
}

boost::optional<QMap<QString, QVariant>> readCanonicalObject(const char* json, int size)
{
    const char* p = json;
    const char* const end = json + size;
    if (size < 2 || *p != '{' || p[1] == '}')
        return boost::none;
    ++p;
    QMap<QString, QVariant> members;
    const char* previousName = nullptr;
    size_t previousSize = 0;
    for (;;) {
        const char* nameEnd = scanString(p, end);
        if (!nameEnd)
            return boost::none;
        const char* name = p + 1;
        const auto nameSize = size_t(nameEnd - name);
        // Strictly ascending: the order the writer uses, and no name twice.
        if (previousName) {
            const int order = std::memcmp(previousName, name, std::min(previousSize, nameSize));
            if (order > 0 || (order == 0 && previousSize >= nameSize))
                return boost::none;
        }
        previousName = name;
        previousSize = nameSize;
        p = nameEnd + 1;
        if (p == end || *p != ':')
            return boost::none;
        ++p;
        if (p == end)
            return boost::none;
        QVariant value;
        if (*p == '"') {
            const char* textEnd = scanString(p, end);
            if (!textEnd)
                return boost::none;
            value = QString::fromLatin1(p + 1, int(textEnd - p - 1));
            p = textEnd + 1;
        } else if (end - p >= 4 && std::memcmp(p, "true", 4) == 0) {
            value = true;
            p += 4;
        } else if (end - p >= 5 && std::memcmp(p, "false", 5) == 0) {
            value = false;
            p += 5;
        } else {
            // -?(0|[1-9][0-9]{0,14}) but not -0: below 2^53, written back alike.
            const bool negative = *p == '-';
            const char* digits = negative ? p + 1 : p;
            const char* q = digits;
            qint64 number = 0;
            while (q < end && *q >= '0' && *q <= '9' && q - digits < 16)
                number = number * 10 + (*q++ - '0');
            const auto count = q - digits;
            if (count == 0 || count > 15 || (*digits == '0' && (count > 1 || negative)))
                return boost::none;
            value = negative ? -number : number;
            p = q;
        }
        members.insert(QString::fromLatin1(name, int(nameSize)), value);
        if (p == end)
            return boost::none;
        if (*p == '}') {
            if (p + 1 != end)
                return boost::none;
            return boost::optional<QMap<QString, QVariant>>(std::move(members));
        }
        if (*p != ',')
            return boost::none;
        ++p;
    }
}

} // namespace Json
} // namespace jsonWebToken
