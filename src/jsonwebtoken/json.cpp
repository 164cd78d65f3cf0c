#include "jsonwebtoken/json_p.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QVector>

#include <algorithm>
#include <cstring>
#include <optional>
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
    const auto sameName = [text](const Member& a, const Member& b) {
        const int length = a.keyEnd - a.keyBegin;
        return length == b.keyEnd - b.keyBegin &&
               std::memcmp(text + a.keyBegin, text + b.keyBegin, length) == 0;
    };
    for (std::size_t i = 0; i < object.members.size(); ++i) {
        if (!object.members[i].container)
            continue;
        for (std::size_t j = 0; j < object.members.size(); ++j) {
            if (j != i && sameName(object.members[i], object.members[j]))
                return true;
        }
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

// Positions just inside the opening quote of every key whose member the parser
// would drop, in objects where that would lose an array or object; none where
// nothing would be lost. Text that is no JSON gives positions that do not
// matter, because the parser refuses it whatever its keys are.
std::vector<int> shadowedKeys(const QByteArray& json)
{
    std::vector<Container> open;
    std::vector<int> dropped;
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
                return dropped;
            if (!open.empty() && open.back().object && open.back().expectKey) {
                Container& object = open.back();
                object.expectKey = false;
                const bool container = holdsContainer(json, end);
                object.anyContainer = object.anyContainer || container;
                object.anyEscape =
                    object.anyEscape || std::memchr(json.constData() + i + 1, '\\', end - i - 2) != nullptr;
                object.members.push_back({i, end, container});
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
    return dropped;
}

// A character no key of the text can contain, written as the escape that
// gives it; none when the text holds every candidate.
std::optional<QChar> absentCharacter(const QByteArray& json)
{
    const QByteArray lower = json.toLower();
    const auto absent = [&](ushort code) {
        const QByteArray escape = "\\u" + QByteArray::number(code, 16).rightJustified(4, '0');
        return !lower.contains(escape) && !json.contains(QString(QChar(code)).toUtf8());
    };
    // Control characters without a short escape ("\b", "\t", ...), then the private use area.
    for (ushort code = 1; code < 0x20; ++code) {
        if (code != 8 && code != 9 && code != 10 && code != 12 && code != 13 && absent(code))
            return QChar(code);
    }
    for (ushort code = 0xE000; code < 0xF900; ++code) {
        if (absent(code))
            return QChar(code);
    }
    return std::nullopt;
}

QJsonValue withoutRenamed(const QJsonValue& value, QChar mark)
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
    std::vector<int> shadowed = shadowedKeys(json);
    const std::optional<QChar> mark = shadowed.empty() ? std::nullopt : absentCharacter(json);
    if (!mark)
        return QJsonDocument::fromJson(json, error);

    const QByteArray escape = "\\u" + QByteArray::number(mark->unicode(), 16).rightJustified(4, '0');
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
        return QJsonDocument(withoutRenamed(document.object(), *mark).toObject());
    if (document.isArray())
        return QJsonDocument(withoutRenamed(document.array(), *mark).toArray());
    return document;
}

} // namespace Json
} // namespace jsonWebToken
