#include "jsonwebtoken/json_p.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QVector>

#include <algorithm>
#include <optional>
#include <vector>

namespace jsonWebToken {
namespace Json {

namespace {

// The parser keeps the last of several members of one name. The earlier ones
// that hold an array or object are renamed before parsing, to names that begin with a character the text
// cannot produce, and dropped after it: the parser then sees no duplicates,
// the renamed keys are still valid strings (so the text is exactly as valid
// as before), and the result is what the parser would have given.

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

// Positions just inside the opening quote of every key whose array or object
// a later key of the same object replaces (replaced numbers, strings and the
// like cost nothing). Text that is no JSON gives positions that do not
// matter, because the parser refuses it whatever its keys are.
std::vector<int> shadowedKeys(const QByteArray& json)
{
    struct Container
    {
        bool object;
        bool expectKey;
        // Keys of the members seen so far whose value is an array or object.
        QHash<QString, int> containerKeys;
    };
    std::vector<Container> open;
    std::vector<int> shadowed;
    for (int i = 0; i < json.size(); ++i) {
        switch (json.at(i)) {
        case '"': {
            const int end = stringEnd(json, i);
            if (end < 0)
                return shadowed;
            if (!open.empty() && open.back().object && open.back().expectKey) {
                Container& object = open.back();
                object.expectKey = false;
                const bool container = holdsContainer(json, end);
                if (container || !object.containerKeys.isEmpty()) {
                    if (const auto key = decodedKey(json.mid(i, end - i))) {
                        const auto earlier = object.containerKeys.find(*key);
                        if (earlier != object.containerKeys.end()) {
                            shadowed.push_back(*earlier + 1);
                            object.containerKeys.erase(earlier);
                        }
                        if (container)
                            object.containerKeys.insert(*key, i);
                    }
                }
            }
            i = end - 1;
            break;
        }
        case '{':
            open.push_back({true, true, {}});
            break;
        case '[':
            open.push_back({false, false, {}});
            break;
        case '}':
        case ']':
            if (!open.empty())
                open.pop_back();
            break;
        case ',':
            if (!open.empty() && open.back().object)
                open.back().expectKey = true;
            break;
        default:
            break;
        }
    }
    return shadowed;
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
