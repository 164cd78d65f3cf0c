#include "jsonwebtoken/json_p.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QVector>

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace jsonWebToken {
namespace Json {

namespace {

// Of several members of one name the parser keeps one (usually, but not
// always, the last: which one follows from how it sorts the names) and loses
// the arrays and objects of the others. Where that can happen, the survivor
// of each name is found first by parsing the object's names alone, with
// numbers as values; the others are then renamed, to names that begin with a
// character the text cannot produce, and dropped after parsing. The parser
// sees no repeated names, the renamed keys are still valid strings (so the
// text is exactly as valid as before), and the result is what it would have
// given.

// Past the closing quote of the string that opens at `begin`; -1 if it does not end.
int stringEnd(const QByteArray& json, int begin)
{
    for (int i = begin + 1; i < json.size(); ++i) {
        if (json.at(i) == '\\')
            ++i;
        else if (json.at(i) == '"')
            return i + 1;
    }
    return -1;
}

// A key as the parser decodes it; none for one it would refuse.
std::optional<QString> decodedKey(const QByteArray& token)
{
    if (!token.contains('\\'))
        return QString::fromUtf8(token.constData() + 1, token.size() - 2);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson('[' + token + ']', &error);
    if (error.error != QJsonParseError::NoError)
        return std::nullopt;
    return document.array().at(0).toString();
}

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Whether the member whose key ends at `keyEnd` has an array or object as value.
bool holdsContainer(const QByteArray& json, int keyEnd)
{
    int i = keyEnd;
    while (i < json.size() && isSpace(json.at(i)))
        ++i;
    if (i >= json.size() || json.at(i) != ':')
        return false;
    ++i;
    while (i < json.size() && isSpace(json.at(i)))
        ++i;
    return i < json.size() && (json.at(i) == '[' || json.at(i) == '{');
}

struct Member
{
    int keyBegin; // the opening quote
    int keyEnd;   // past the closing quote
    bool container;
};

struct Container
{
    explicit Container(bool isObject) : object(isObject), expectKey(isObject) {}

    bool object;
    bool expectKey;
    bool anyContainer = false;
    bool anyEscape = false;
    std::vector<Member> members;
};

// Whether a name of `object` occurs more than once with an array or object as
// one of its values. The usual object (no escapes in its names) is answered
// by comparing the names' bytes, without decoding them.
bool losesContainer(const QByteArray& json, const Container& object)
{
    if (!object.anyContainer || object.members.size() < 2)
        return false;
    if (object.anyEscape)
        return true; // rare: droppedMembers decodes the names and finds out
    const char* text = json.constData();
    const auto name = [text](const Member& m) {
        return std::string_view(text + m.keyBegin, std::size_t(m.keyEnd - m.keyBegin));
    };
    const std::vector<Member>& members = object.members;
    if (members.size() <= 16) { // the usual header or payload: no allocation
        for (std::size_t i = 0; i < members.size(); ++i) {
            for (std::size_t j = 0; members[i].container && j < members.size(); ++j) {
                if (j != i && name(members[i]) == name(members[j]))
                    return true;
            }
        }
        return false;
    }
    // Names with an array or object, then whether another member has one of them.
    std::unordered_set<std::string_view> withContainer;
    for (const Member& m : object.members) {
        if (m.container)
            withContainer.insert(name(m));
    }
    std::unordered_set<std::string_view> seen;
    for (const Member& m : object.members) {
        const std::string_view n = name(m);
        if (!seen.insert(n).second && withContainer.count(n))
            return true;
    }
    return false;
}

// The members of `object` that the parser drops: for each repeated name all
// but the one that it keeps, as found by parsing the names alone. All of them
// are renamed, so that the parser sees no repeated name at all: which of
// several it keeps depends on the other names too.
void droppedMembers(const QByteArray& json, const Container& object, std::vector<int>& dropped)
{
    std::vector<std::optional<QString>> keys;
    QHash<QString, int> count;
    QByteArray names = "{";
    for (std::size_t i = 0; i < object.members.size(); ++i) {
        const Member& m = object.members[i];
        keys.push_back(decodedKey(json.mid(m.keyBegin, m.keyEnd - m.keyBegin)));
        if (keys.back())
            ++count[*keys.back()];
        if (i > 0)
            names += ',';
        names += json.mid(m.keyBegin, m.keyEnd - m.keyBegin) + ':' + QByteArray::number(qulonglong(i));
    }
    names += '}';
    QJsonParseError error;
    const QJsonObject kept = QJsonDocument::fromJson(names, &error).object();
    if (error.error != QJsonParseError::NoError)
        return; // a name the parser refuses: it refuses the whole text anyway
    for (std::size_t i = 0; i < object.members.size(); ++i) {
        const std::optional<QString>& key = keys[i];
        if (key && count.value(*key) > 1 && kept.value(*key).toInt(-1) != int(i))
            dropped.push_back(object.members[i].keyBegin + 1);
    }
}

struct Scan
{
    std::vector<int> dropped;
    std::vector<std::pair<int, int>> keys; // every key's quotes: begin, past the end
};

// In `dropped`, the positions just inside the opening quote of every key whose
// member the parser would drop, in objects where that would lose an array or
// object; none where nothing would be lost. Text that is no JSON gives
// positions that do not matter, because the parser refuses it whatever its
// keys are. In `keys`, with `withKeys`, every key of the text.
Scan shadowedKeys(const QByteArray& json, bool withKeys = false)
{
    std::vector<Container> open;
    Scan scan;
    std::vector<int>& dropped = scan.dropped;
    const auto close = [&] {
        if (open.back().object && losesContainer(json, open.back()))
            droppedMembers(json, open.back(), dropped);
        open.pop_back();
    };
    for (int i = 0; i < json.size(); ++i) {
        switch (json.at(i)) {
        case '"': {
            const int end = stringEnd(json, i);
            if (end < 0)
                return scan;
            if (!open.empty() && open.back().object && open.back().expectKey) {
                Container& object = open.back();
                object.expectKey = false;
                const bool container = holdsContainer(json, end);
                object.anyContainer = object.anyContainer || container;
                object.anyEscape =
                    object.anyEscape || std::memchr(json.constData() + i + 1, '\\', end - i - 2) != nullptr;
                object.members.push_back({i, end, container});
                if (withKeys)
                    scan.keys.emplace_back(i, end);
            }
            i = end - 1;
            break;
        }
        case '{':
            open.emplace_back(true);
            break;
        case '[':
            open.emplace_back(false);
            break;
        case '}':
        case ']':
            if (!open.empty())
                close();
            break;
        case ',':
            if (!open.empty() && open.back().object)
                open.back().expectKey = true;
            break;
        default:
            break;
        }
    }
    return scan;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// The characters a mark is made of: control characters without a short escape
// ("\\b", "\\t", ...), then the private use area.
const std::vector<ushort>& candidates()
{
    static const std::vector<ushort> list = [] {
        std::vector<ushort> codes;
        for (ushort code = 1; code < 0x20; ++code) {
            if (code != 8 && code != 9 && code != 10 && code != 12 && code != 13)
                codes.push_back(code);
        }
        for (ushort code = 0xE000; code < 0xF900; ++code)
            codes.push_back(code);
        return codes;
    }();
    return list;
}

// A character no key of the text can contain, written as the escape that
// gives it; none when the text holds every candidate. One pass marks every
// candidate the text might hold (as a raw byte, a "\u" escape or UTF-8), so
// a text full of candidates costs no more than any other.
std::optional<QChar> absentCharacter(const QByteArray& json)
{
    std::vector<bool> present(0x10000);
    const int size = json.size();
    const auto byte = [&json](int i) { return static_cast<unsigned char>(json.at(i)); };
    for (int i = 0; i < size; ++i) {
        const unsigned char c = byte(i);
        if (c < 0x20) {
            present[c] = true;
        } else if (c == '\\' && i + 5 < size && (json.at(i + 1) == 'u' || json.at(i + 1) == 'U')) {
            int code = 0;
            int k = 2;
            for (; k < 6 && hexDigit(json.at(i + k)) >= 0; ++k)
                code = code * 16 + hexDigit(json.at(i + k));
            if (k == 6)
                present[std::size_t(code)] = true;
        } else if ((c & 0xF0) == 0xE0 && i + 2 < size) {
            present[std::size_t((c & 0x0F) << 12 | (byte(i + 1) & 0x3F) << 6 | (byte(i + 2) & 0x3F))] = true;
        }
    }
    for (const ushort code : candidates()) {
        if (!present[code])
            return QChar(code);
    }
    return std::nullopt;
}

// A prefix that no key of the text begins with, for the renamed keys: one
// character absent from the whole text where there is one; else, for a text
// that holds every candidate, built from the keys themselves, one character
// at a time, each not the next one of any key that begins with the prefix so far.
QString markFor(const QByteArray& json)
{
    if (const std::optional<QChar> absent = absentCharacter(json))
        return QString(*absent);
    std::vector<QString> keys;
    for (const auto& [begin, end] : shadowedKeys(json, true).keys) {
        if (std::optional<QString> key = decodedKey(json.mid(begin, end - begin)))
            keys.push_back(std::move(*key));
    }
    QString mark;
    for (;;) {
        std::vector<bool> used(0x10000);
        for (const QString& key : keys) {
            if (key.size() > mark.size())
                used[key.at(mark.size()).unicode()] = true;
        }
        for (const ushort code : candidates()) {
            if (!used[code])
                return mark + QChar(code);
        }
        mark += QChar(candidates().front());
        keys.erase(std::remove_if(keys.begin(), keys.end(),
                                  [&mark](const QString& key) { return !key.startsWith(mark); }),
                   keys.end());
    }
}

// The escapes that give `mark` in a JSON string.
QByteArray escaped(const QString& mark)
{
    QByteArray escape;
    for (const QChar c : mark)
        escape += "\\u" + QByteArray::number(c.unicode(), 16).rightJustified(4, '0');
    return escape;
}

QJsonValue withoutRenamed(const QJsonValue& value, const QString& mark)
{
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        QJsonObject kept;
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (!it.key().startsWith(mark))
                kept.insert(it.key(), withoutRenamed(it.value(), mark));
        }
        return kept;
    }
    if (value.isArray()) {
        QJsonArray kept;
        for (const QJsonValue& element : value.toArray())
            kept.append(withoutRenamed(element, mark));
        return kept;
    }
    return value;
}

} // namespace

QJsonDocument parse(const QByteArray& json, QJsonParseError* error)
{
    Scan scan = shadowedKeys(json);
    if (scan.dropped.empty())
        return QJsonDocument::fromJson(json, error);
    std::vector<int>& shadowed = scan.dropped;
    const QString mark = markFor(json);
    const QByteArray escape = escaped(mark);
    std::sort(shadowed.begin(), shadowed.end());
    QByteArray renamed;
    renamed.reserve(json.size() + int(shadowed.size()) * (escape.size() + 8));
    // Where each inserted prefix begins in the renamed text, and its length.
    std::vector<std::pair<int, int>> inserted;
    int copied = 0;
    for (std::size_t serial = 0; serial < shadowed.size(); ++serial) {
        renamed.append(json.constData() + copied, shadowed[serial] - copied);
        copied = shadowed[serial];
        const QByteArray prefix = escape + QByteArray::number(qulonglong(serial)) + ':';
        inserted.emplace_back(renamed.size(), prefix.size());
        renamed.append(prefix);
    }
    renamed.append(json.constData() + copied, json.size() - copied);

    const QJsonDocument document = QJsonDocument::fromJson(renamed, error);
    if (error && error->error != QJsonParseError::NoError) {
        // The offset of the error in the text as given.
        int shift = 0;
        for (const auto& [begin, length] : inserted) {
            if (error->offset > begin)
                shift += qMin(length, error->offset - begin);
        }
        error->offset -= shift;
    }
    if (document.isObject())
        return QJsonDocument(withoutRenamed(document.object(), mark).toObject());
    if (document.isArray())
        return QJsonDocument(withoutRenamed(document.array(), mark).toArray());
    return document;
}

} // namespace Json
} // namespace jsonWebToken
