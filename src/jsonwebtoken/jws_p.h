#ifndef KVBASE_JSONWEBTOKEN_JWS_P_H
#define KVBASE_JSONWEBTOKEN_JWS_P_H

// What sign() and Verifier share: the algorithm table, the inside of a Key,
// and the one function that decides whether a key fits an algorithm. Not part
// of the API.

#include "jsonwebtoken/crypto_p.h"
#include "jsonwebtoken/jws.h"
#include "jsonwebtoken/key.h"

#include <QString>

#include <memory>
#include <optional>

namespace jsonWebToken {

enum class KeyType
{
    Hmac,
    Rsa,
    EcP256,
    EcP384,
    EcP521,
    Ed25519,
    Ed448
};

struct KeyData
{
    KeyType type = KeyType::Hmac;
    std::unique_ptr<Crypto::HmacKey> secret; ///< HMAC keys
    Crypto::Pkey pkey;                       ///< every other type
    bool isPrivate = false;
    int rsaBits = 0;
    QString id;
    std::optional<JwsAlgorithm> onlyFor; ///< a JWK's "alg"
};

struct KeyAccess
{
    static const KeyData& data(const Key& key) { return *key.d; }
    static Key make(std::shared_ptr<const KeyData> data) { return Key(std::move(data)); }
};

enum class Family
{
    Hmac,
    Rsa,
    RsaPss,
    Ecdsa,
    EdDsa,
    None
};

struct AlgorithmInfo
{
    const char* name;
    Family family;
    Crypto::Hash hash;
    /// The key type ES algorithms need.
    KeyType curve;
    /// ES: bytes of R and of S.
    int componentSize;
};

/// Null outside the enum.
const AlgorithmInfo* algorithmInfo(JwsAlgorithm algorithm);

/// Why `key` cannot sign (or, with `signing` false, verify) with `algorithm`,
/// e.g. "the HS256 key of 6 bytes is shorter than 32"; empty when it can.
QString keyMismatch(const KeyData& key, JwsAlgorithm algorithm, bool signing, bool allowShortHmac);

/// The raw signature of `input`; empty when OpenSSL fails. The key must fit.
QByteArray signBytes(const KeyData& key, const AlgorithmInfo& info, const char* input, int size);
/// True when `signature` (raw) signs `input`. The key must fit.
bool signatureMatches(const KeyData& key, const AlgorithmInfo& info, const char* input, int size,
                      const QByteArray& signature);

} // namespace jsonWebToken

#endif
