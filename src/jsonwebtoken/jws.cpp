#include "jsonwebtoken/jws.h"

#include "jsonwebtoken/jsonwriter_p.h"
#include "jsonwebtoken/jws_p.h"

#include <algorithm>
#include <array>

namespace jsonWebToken {

namespace {

using Crypto::Hash;

// In the order of JwsAlgorithm. RFC 7518 section 3.4 fixes the width of R
// and S at the byte length of the curve order: 256, 384 and 521 bits.
constexpr std::array<AlgorithmInfo, 14> algorithms = {{
    {"HS256", Family::Hmac, Hash::Sha256, KeyType::Hmac, 0},
    {"HS384", Family::Hmac, Hash::Sha384, KeyType::Hmac, 0},
    {"HS512", Family::Hmac, Hash::Sha512, KeyType::Hmac, 0},
    {"RS256", Family::Rsa, Hash::Sha256, KeyType::Rsa, 0},
    {"RS384", Family::Rsa, Hash::Sha384, KeyType::Rsa, 0},
    {"RS512", Family::Rsa, Hash::Sha512, KeyType::Rsa, 0},
    {"PS256", Family::RsaPss, Hash::Sha256, KeyType::Rsa, 0},
    {"PS384", Family::RsaPss, Hash::Sha384, KeyType::Rsa, 0},
    {"PS512", Family::RsaPss, Hash::Sha512, KeyType::Rsa, 0},
    {"ES256", Family::Ecdsa, Hash::Sha256, KeyType::EcP256, 32},
    {"ES384", Family::Ecdsa, Hash::Sha384, KeyType::EcP384, 48},
    {"ES512", Family::Ecdsa, Hash::Sha512, KeyType::EcP521, 66},
    {"EdDSA", Family::EdDsa, Hash::Sha512, KeyType::Ed25519, 0},
    {"none", Family::None, Hash::Sha256, KeyType::Hmac, 0},
}};

QString keyTypeName(KeyType type)
{
    switch (type) {
    case KeyType::Hmac:
        return QStringLiteral("HMAC");
    case KeyType::Rsa:
        return QStringLiteral("RSA");
    case KeyType::EcP256:
        return QStringLiteral("P-256");
    case KeyType::EcP384:
        return QStringLiteral("P-384");
    case KeyType::EcP521:
        return QStringLiteral("P-521");
    case KeyType::Ed25519:
        return QStringLiteral("Ed25519");
    case KeyType::Ed448:
        return QStringLiteral("Ed448");
    }
    return QString();
}

bool typeFits(KeyType type, const AlgorithmInfo& info)
{
    switch (info.family) {
    case Family::Hmac:
        return type == KeyType::Hmac;
    case Family::Rsa:
    case Family::RsaPss:
        return type == KeyType::Rsa;
    case Family::Ecdsa:
        return type == info.curve;
    case Family::EdDsa:
        return type == KeyType::Ed25519 || type == KeyType::Ed448;
    case Family::None:
        break;
    }
    return false;
}

Crypto::Scheme scheme(Family family)
{
    switch (family) {
    case Family::RsaPss:
        return Crypto::Scheme::RsaPss;
    case Family::Ecdsa:
        return Crypto::Scheme::Ecdsa;
    case Family::EdDsa:
        return Crypto::Scheme::EdDsa;
    default:
        return Crypto::Scheme::RsaPkcs1;
    }
}

// The header of nearly every token: {"alg":…,"typ":"JWT"}, encoded once.
const QByteArray& plainHeader(JwsAlgorithm algorithm)
{
    static const auto headers = [] {
        std::array<QByteArray, algorithms.size()> encoded;
        for (size_t i = 0; i < algorithms.size(); ++i) {
            QJsonObject header;
            header.insert(QStringLiteral("alg"), QLatin1String(algorithms[i].name));
            header.insert(QStringLiteral("typ"), QStringLiteral("JWT"));
            Json::appendObject(encoded[i], header);
        }
        return encoded;
    }();
    return headers[static_cast<size_t>(algorithm)];
}

QByteArray failed(QString* error, const QString& why)
{
    if (error)
        *error = why;
    return QByteArray();
}

} // namespace

const AlgorithmInfo* algorithmInfo(JwsAlgorithm algorithm)
{
    const auto index = static_cast<size_t>(algorithm);
    return index < algorithms.size() ? &algorithms[index] : nullptr;
}

QString jwsAlgorithmName(JwsAlgorithm algorithm)
{
    const AlgorithmInfo* info = algorithmInfo(algorithm);
    return info ? QString::fromLatin1(info->name) : QString();
}

std::optional<JwsAlgorithm> jwsAlgorithmFromName(const QString& name)
{
    for (size_t i = 0; i < algorithms.size(); ++i) {
        if (name == QLatin1String(algorithms[i].name))
            return static_cast<JwsAlgorithm>(i);
    }
    return std::nullopt;
}

QString keyMismatch(const KeyData& key, JwsAlgorithm algorithm, bool signing, bool allowShortHmac)
{
    // Called for every candidate key of every token: the texts are made only
    // for a key that does not fit.
    const AlgorithmInfo* info = algorithmInfo(algorithm);
    const auto name = [algorithm] { return jwsAlgorithmName(algorithm); };
    const auto which = [&key] {
        return key.id.isEmpty() ? QString() : QStringLiteral(" \"%1\"").arg(key.id);
    };
    if (!info || info->family == Family::None)
        return QStringLiteral("%1 takes no key").arg(name());
    if (key.onlyFor && *key.onlyFor != algorithm)
        return QStringLiteral("the key%1 is for %2 only").arg(which(), jwsAlgorithmName(*key.onlyFor));
    if (!typeFits(key.type, *info))
        return QStringLiteral("the %1 key%2 cannot be used for %3")
            .arg(keyTypeName(key.type), which(), name());
    if (info->family == Family::Hmac && !allowShortHmac && key.secret->size() < Crypto::hashSize(info->hash))
        return QStringLiteral("the %1 key%2 of %3 bytes is shorter than the %4 bytes of its hash")
            .arg(name(), which())
            .arg(key.secret->size())
            .arg(Crypto::hashSize(info->hash));
    if (signing && key.type != KeyType::Hmac && !key.isPrivate)
        return QStringLiteral("the %1 key%2 is public and cannot sign").arg(keyTypeName(key.type), which());
    return QString();
}

QByteArray signBytes(const KeyData& key, const AlgorithmInfo& info, const char* input, int size)
{
    if (info.family == Family::Hmac) {
        unsigned char mac[Crypto::maxHashSize];
        if (!key.secret->mac(info.hash, input, size, mac))
            return QByteArray();
        return QByteArray(reinterpret_cast<const char*>(mac), Crypto::hashSize(info.hash));
    }
    return Crypto::sign(key.pkey.get(), scheme(info.family), info.hash, info.componentSize, input, size);
}

bool signatureMatches(const KeyData& key, const AlgorithmInfo& info, const char* input, int size,
                      const QByteArray& signature)
{
    if (info.family == Family::Hmac) {
        unsigned char mac[Crypto::maxHashSize];
        return key.secret->mac(info.hash, input, size, mac) &&
               Crypto::equalInConstantTime(reinterpret_cast<const char*>(mac), Crypto::hashSize(info.hash),
                                           signature.constData(), signature.size());
    }
    return Crypto::verify(key.pkey.get(), scheme(info.family), info.hash, info.componentSize, input, size,
                          signature);
}

QByteArray sign(const QJsonObject& payload, JwsAlgorithm algorithm, const Key& key,
                const QJsonObject& extraHeader, QString* error)
{
    const AlgorithmInfo* info = algorithmInfo(algorithm);
    if (!info)
        return failed(error, QStringLiteral("algorithm %1 is not a JwsAlgorithm").arg(int(algorithm)));
    const KeyData& data = KeyAccess::data(key);
    if (info->family != Family::None) {
        const QString why = keyMismatch(data, algorithm, true, false);
        if (!why.isEmpty())
            return failed(error, why);
    }

    QByteArray token;
    token.reserve(512);
    if (extraHeader.isEmpty()) {
        token.append(plainHeader(algorithm));
    } else {
        QJsonObject header = extraHeader;
        header.insert(QStringLiteral("alg"), QLatin1String(info->name));
        if (!header.contains(QLatin1String("typ")))
            header.insert(QStringLiteral("typ"), QStringLiteral("JWT"));
        Json::appendObject(token, header);
    }
    token.append('.');
    Json::appendObject(token, payload);
    const int signedSize = token.size();
    token.append('.');
    if (info->family == Family::None)
        return token;

    bool signedOk;
    if (info->family == Family::Hmac) {
        unsigned char mac[Crypto::maxHashSize];
        signedOk = data.secret->mac(info->hash, token.constData(), signedSize, mac);
        if (signedOk)
            Crypto::appendBase64Url(token, reinterpret_cast<const char*>(mac), Crypto::hashSize(info->hash));
    } else {
        const QByteArray signature = signBytes(data, *info, token.constData(), signedSize);
        signedOk = !signature.isEmpty();
        Crypto::appendBase64Url(token, signature.constData(), signature.size());
    }
    if (!signedOk)
        return failed(error,
                      QStringLiteral("OpenSSL could not sign with %1").arg(jwsAlgorithmName(algorithm)));
    return token;
}

} // namespace jsonWebToken
