#include "jsonwebtoken/verifier.h"

#include "jsonwebtoken/json_p.h"
#include "jsonwebtoken/jws_p.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QVarLengthArray>

#include <algorithm>
#include <cmath>

namespace jsonWebToken {

struct Verifier::Data : QSharedData
{
    struct Allowed
    {
        JwsAlgorithm algorithm;
        std::vector<Key> keys;
        bool fromSet; // then a token's "kid" picks among them
    };
    std::vector<Allowed> allowed;
    bool shortHmacKeys = false;
    bool none = false;
    qint64 leeway = 0;
    QStringList issuers;
    QStringList requiredClaims;
    std::optional<QString> audience;
    std::optional<QString> subject;
    std::optional<QString> type;
};

namespace {

using Result = Verifier::Result;

Result& fail(Result& result, VerificationError::Type error, const QString& message)
{
    result.error = error;
    result.message = message;
    return result;
}

// Counts the members of the outermost object of JSON text that Qt parsed:
// the colons outside strings at depth one. -1 for a control character left
// unescaped in a string, which JSON forbids and Qt lets through.
int topLevelMembers(const QByteArray& json)
{
    int depth = 0;
    int count = 0;
    const char* p = json.constData();
    const char* const end = p + json.size();
    while (p < end) {
        const char c = *p++;
        if (c == '"') {
            for (; p < end && *p != '"'; ++p) {
                if (uchar(*p) < 0x20)
                    return -1;
                if (*p == '\\')
                    ++p;
            }
            ++p;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        } else if (c == ':') {
            count += depth == 1;
        }
    }
    return count;
}

// Only for the message: the first member name that occurs twice.
QString repeatedName(const QByteArray& json)
{
    QSet<QString> seen;
    int depth = 0;
    for (int i = 0; i < json.size(); ++i) {
        const char c = json.at(i);
        if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        } else if (c == '"') {
            const int start = i;
            for (++i; i < json.size() && json.at(i) != '"'; ++i) {
                if (json.at(i) == '\\')
                    ++i;
            }
            int next = i + 1;
            while (next < json.size() && QChar::isSpace(json.at(next)))
                ++next;
            if (depth != 1 || next >= json.size() || json.at(next) != ':')
                continue;
            const QByteArray quoted = json.mid(start, i + 1 - start);
            const QString name = QJsonDocument::fromJson('[' + quoted + ']').array().at(0).toString();
            if (seen.contains(name))
                return name;
            seen.insert(name);
        }
    }
    return QString();
}

bool parseObject(const QByteArray& json, const char* part, QJsonObject* out, Result& result)
{
    QJsonParseError error;
    const QJsonDocument document = Json::parse(json, &error);
    const QLatin1String what(part);
    if (error.error != QJsonParseError::NoError) {
        fail(result, VerificationError::Unknown,
             QStringLiteral("the %1 is not JSON: %2 at offset %3")
                 .arg(what, error.errorString())
                 .arg(error.offset));
        return false;
    }
    if (!document.isObject()) {
        fail(result, VerificationError::Unknown, QStringLiteral("the %1 is not a JSON object").arg(what));
        return false;
    }
    const QJsonObject object = document.object();
    // QJsonDocument keeps one of two equal names silently; a signer and a
    // reader that pick different ones would see different claims.
    const int members = topLevelMembers(json);
    if (members < 0) {
        fail(result, VerificationError::Unknown,
             QStringLiteral("the %1 has a control character that is not escaped").arg(what));
        return false;
    }
    if (members != object.size()) {
        fail(result, VerificationError::Unknown,
             QStringLiteral("the %1 has the member \"%2\" more than once").arg(what, repeatedName(json)));
        return false;
    }
    *out = object;
    return true;
}

QString shown(const QString& text)
{
    return text.size() > 64 ? text.left(61) + QStringLiteral("...") : text;
}

QString numberText(double value)
{
    return QString::number(value, 'f', value == std::floor(value) ? 0 : 3);
}

// RFC 7515 section 4.1.9: "typ" is a media type whose "application/" may be left out.
QString mediaType(const QString& type)
{
    const QString lower = type.toLower();
    return lower.contains(QLatin1Char('/')) ? lower : QStringLiteral("application/") + lower;
}

} // namespace

Verifier::Verifier() : d(new Data) {}
Verifier::Verifier(const Verifier& other) = default;
Verifier::Verifier(Verifier&& other) noexcept = default;
Verifier& Verifier::operator=(const Verifier& other) = default;
Verifier& Verifier::operator=(Verifier&& other) noexcept = default;
Verifier::~Verifier() = default;

Verifier& Verifier::allow(JwsAlgorithm algorithm, const Key& key)
{
    if (algorithm != JwsAlgorithm::None && algorithmInfo(algorithm))
        d->allowed.push_back({algorithm, {key}, false});
    return *this;
}

Verifier& Verifier::allow(JwsAlgorithm algorithm, const KeySet& keys)
{
    if (algorithm != JwsAlgorithm::None && algorithmInfo(algorithm))
        d->allowed.push_back({algorithm, keys.keys(), true});
    return *this;
}

Verifier& Verifier::allowShortHmacKeys()
{
    d->shortHmacKeys = true;
    return *this;
}

Verifier& Verifier::allowNone()
{
    d->none = true;
    return *this;
}

Verifier& Verifier::leeway(std::chrono::seconds seconds)
{
    d->leeway = std::max<qint64>(0, seconds.count());
    return *this;
}

Verifier& Verifier::issuer(const QStringList& accepted)
{
    d->issuers = accepted;
    return *this;
}

Verifier& Verifier::audience(const QString& expected)
{
    d->audience = expected;
    return *this;
}

Verifier& Verifier::subject(const QString& expected)
{
    d->subject = expected;
    return *this;
}

Verifier& Verifier::requireClaims(const QStringList& names)
{
    d->requiredClaims << names;
    return *this;
}

Verifier& Verifier::type(const QString& expected)
{
    d->type = expected;
    return *this;
}

Verifier::Result Verifier::verify(const QByteArray& compactToken) const
{
    return verify(compactToken, QDateTime::currentDateTimeUtc());
}

Verifier::Result Verifier::verify(const QByteArray& compactToken, const QDateTime& now) const
{
    Result result;

    // 1. Three strict base64url segments.
    const int firstDot = compactToken.indexOf('.');
    const int secondDot = firstDot < 0 ? -1 : compactToken.indexOf('.', firstDot + 1);
    if (secondDot < 0 || compactToken.indexOf('.', secondDot + 1) >= 0)
        return fail(result, VerificationError::Unknown,
                    QStringLiteral("a compact JWS has three segments separated by \".\"; this text has %1")
                        .arg(compactToken.count('.') + 1));
    // Decoded into buffers of the thread, which keep their capacity: the JSON
    // parser copies what it keeps, and the signature is done with here.
    thread_local QByteArray buffers[3];
    QByteArray& headerJson = buffers[0];
    QByteArray& payloadJson = buffers[1];
    QByteArray& signature = buffers[2];
    struct Trim // an odd huge token should not pin its memory to the thread
    {
        QByteArray* buffers;
        ~Trim()
        {
            for (int i = 0; i < 3; ++i) {
                if (buffers[i].capacity() > 65536)
                    buffers[i] = QByteArray();
            }
        }
    } trim{buffers};
    const struct
    {
        int from, to;
        QByteArray* out;
        const char* name;
    } segments[] = {{0, firstDot, &headerJson, "header"},
                    {firstDot + 1, secondDot, &payloadJson, "payload"},
                    {secondDot + 1, int(compactToken.size()), &signature, "signature"}};
    for (const auto& segment : segments) {
        int bad = 0;
        if (!Crypto::decodeBase64Url(compactToken.constData() + segment.from, segment.to - segment.from,
                                     segment.out, &bad)) {
            const int offset = segment.from + bad;
            const char c = compactToken.at(offset);
            const bool inAlphabet = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                                    (c >= '0' && c <= '9') || c == '-' || c == '_';
            const QString what =
                !inAlphabet ? QStringLiteral("character 0x%1 at offset %2")
                                  .arg(uchar(c), 2, 16, QLatin1Char('0'))
                                  .arg(offset)
                : (segment.to - segment.from) % 4 == 1
                    ? QStringLiteral("it ends in the middle of a byte")
                    : QStringLiteral("its last character, at offset %1, has bits beyond the last byte")
                          .arg(offset);
            return fail(result, VerificationError::Unknown,
                        QStringLiteral("the %1 segment is not unpadded base64url: %2")
                            .arg(QLatin1String(segment.name), what));
        }
    }

    // 2. JSON objects, each name once.
    if (!parseObject(headerJson, "header", &result.header, result) ||
        !parseObject(payloadJson, "payload", &result.payload, result))
        return result;

    // 3. An allowed algorithm, and keys that fit it.
    const QJsonValue algValue = result.header.value(QLatin1String("alg"));
    if (algValue.isUndefined())
        return fail(result, VerificationError::HeaderParameterMissing,
                    QStringLiteral("the header has no \"alg\""));
    const std::optional<JwsAlgorithm> algorithm = jwsAlgorithmFromName(algValue.toString());
    if (!algValue.isString() || !algorithm)
        return fail(result, VerificationError::HeaderValueUnexpected,
                    QStringLiteral("\"alg\" is not a JWS algorithm name"));
    const AlgorithmInfo& info = *algorithmInfo(*algorithm);
    const QString name = QLatin1String(info.name);
    QVarLengthArray<const KeyData*, 4> candidates;
    if (*algorithm == JwsAlgorithm::None) {
        if (!d->none)
            return fail(result, VerificationError::HeaderValueUnexpected,
                        QStringLiteral("unsecured tokens (\"alg\" \"none\") are not allowed"));
    } else {
        const QJsonValue kid = result.header.value(QLatin1String("kid"));
        if (!kid.isUndefined() && !kid.isString())
            return fail(result, VerificationError::HeaderValueUnexpected,
                        QStringLiteral("\"kid\" is not a string"));
        bool listed = false;
        QString mismatch;
        for (const Data::Allowed& allowed : d->allowed) {
            if (allowed.algorithm != *algorithm)
                continue;
            listed = true;
            for (const Key& key : allowed.keys) {
                const KeyData& data = KeyAccess::data(key);
                if (allowed.fromSet && kid.isString() && data.id != kid.toString())
                    continue;
                const QString why = keyMismatch(data, *algorithm, false, d->shortHmacKeys);
                if (why.isEmpty())
                    candidates.append(&data);
                else if (mismatch.isEmpty())
                    mismatch = why;
            }
        }
        if (!listed)
            return fail(result, VerificationError::HeaderValueUnexpected,
                        QStringLiteral("%1 is not an allowed algorithm").arg(name));
        if (candidates.isEmpty())
            return fail(result, VerificationError::HeaderValueUnexpected,
                        !mismatch.isEmpty() ? mismatch
                        : kid.isString()
                            ? QStringLiteral("no %1 key has \"kid\" \"%2\"").arg(name, shown(kid.toString()))
                            : QStringLiteral("no key is allowed for %1").arg(name));
    }

    // 4. Extensions that must be understood: none are.
    if (result.header.contains(QLatin1String("crit")))
        return fail(result, VerificationError::HeaderValueUnexpected,
                    QStringLiteral("the header demands extensions (\"crit\") this verifier does not know"));

    // 5. The signature over the bytes as received.
    if (*algorithm == JwsAlgorithm::None) {
        if (!signature.isEmpty())
            return fail(result, VerificationError::SignatureInvalid,
                        QStringLiteral("an unsecured token carries a signature"));
    } else {
        bool valid = false;
        for (int i = 0; !valid && i < candidates.size(); ++i)
            valid = signatureMatches(*candidates[i], info, compactToken.constData(), secondDot, signature);
        if (!valid)
            return fail(result, VerificationError::SignatureInvalid,
                        QStringLiteral("the %1 signature does not match (%2 key(s) tried)")
                            .arg(name)
                            .arg(candidates.size()));
    }

    // 6. Times, with leeway.
    if (!now.isValid())
        return fail(result, VerificationError::Unknown,
                    QStringLiteral("the time to check against is invalid"));
    const double nowSeconds = double(now.toMSecsSinceEpoch()) / 1000.0;
    const double leeway = double(d->leeway);
    static const char* const times[] = {"exp", "nbf", "iat"};
    for (const char* claim : times) {
        const QJsonValue value = result.payload.value(QLatin1String(claim));
        if (value.isUndefined())
            continue;
        const double seconds = value.toDouble();
        if (!value.isDouble() || !std::isfinite(seconds))
            return fail(result, VerificationError::ClaimValueUnexpected,
                        QStringLiteral("\"%1\" is not a number").arg(QLatin1String(claim)));
        const bool expiry = claim == times[0];
        if (expiry ? nowSeconds >= seconds + leeway : nowSeconds + leeway < seconds)
            return fail(result,
                        expiry ? VerificationError::TokenExpired : VerificationError::TokenNotYetValid,
                        QStringLiteral("\"%1\" is %2, the time is %3 with a leeway of %4 s")
                            .arg(QLatin1String(claim), numberText(seconds), numberText(nowSeconds))
                            .arg(d->leeway));
    }

    // 7. to 10. What the caller asked for.
    for (const QString& claim : d->requiredClaims) {
        if (!result.payload.contains(claim))
            return fail(result, VerificationError::ClaimMissing,
                        QStringLiteral("the payload has no \"%1\"").arg(claim));
    }
    if (!d->issuers.isEmpty()) {
        const QJsonValue issuer = result.payload.value(QLatin1String("iss"));
        if (!issuer.isString() || !d->issuers.contains(issuer.toString()))
            return fail(
                result, VerificationError::IssuerUnknown,
                issuer.isString()
                    ? QStringLiteral("the issuer \"%1\" is not accepted").arg(shown(issuer.toString()))
                    : QStringLiteral("the payload names no issuer"));
    }
    if (d->audience) {
        const QJsonValue audience = result.payload.value(QLatin1String("aud"));
        const QJsonValue expected(*d->audience);
        if (audience != expected && !audience.toArray().contains(expected))
            return fail(result, VerificationError::ClaimValueUnexpected,
                        QStringLiteral("\"aud\" does not name \"%1\"").arg(*d->audience));
    }
    if (d->subject && result.payload.value(QLatin1String("sub")) != QJsonValue(*d->subject))
        return fail(result, VerificationError::ClaimValueUnexpected,
                    QStringLiteral("\"sub\" is not \"%1\"").arg(*d->subject));
    if (d->type) {
        const QJsonValue type = result.header.value(QLatin1String("typ"));
        if (!type.isUndefined() && (!type.isString() || mediaType(type.toString()) != mediaType(*d->type)))
            return fail(result, VerificationError::HeaderValueUnexpected,
                        QStringLiteral("\"typ\" is not \"%1\"").arg(*d->type));
    }
    result.error = VerificationError::NoError;
    return result;
}

} // namespace jsonWebToken
