#ifndef KVBASE_JSONWEBTOKEN_JWS_H
#define KVBASE_JSONWEBTOKEN_JWS_H

#include "kvbase_export.h"

#include "jsonwebtoken/key.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace jsonWebToken {

/// JSON Web Signature algorithms (RFC 7518 section 3, RFC 8037 section 3.1).
/// Unlike SignatureAlgorithm of Token, every registered signature family is
/// here and the names are the registered ones, matched exactly.
enum class JwsAlgorithm
{
    HS256, ///< HMAC with SHA-256
    HS384, ///< HMAC with SHA-384
    HS512, ///< HMAC with SHA-512
    RS256, ///< RSASSA-PKCS1-v1_5 with SHA-256
    RS384, ///< RSASSA-PKCS1-v1_5 with SHA-384
    RS512, ///< RSASSA-PKCS1-v1_5 with SHA-512
    PS256, ///< RSASSA-PSS with SHA-256, MGF1 with SHA-256, 32-byte salt
    PS384, ///< RSASSA-PSS with SHA-384, MGF1 with SHA-384, 48-byte salt
    PS512, ///< RSASSA-PSS with SHA-512, MGF1 with SHA-512, 64-byte salt
    ES256, ///< ECDSA on P-256 with SHA-256, signature R and S, 32 bytes each
    ES384, ///< ECDSA on P-384 with SHA-384, signature R and S, 48 bytes each
    ES512, ///< ECDSA on P-521 with SHA-512, signature R and S, 66 bytes each
    EdDSA, ///< Ed25519 or Ed448, after the key
    None   ///< "none": an unsecured token with an empty signature
};

/// The registered name of an algorithm. Thread-safe.
/// \param algorithm the algorithm.
/// \return "HS256" … "ES512", "EdDSA", and "none" in lower case; an empty
///         string for a value outside the enum.
KVBASE_EXPORT QString jwsAlgorithmName(JwsAlgorithm algorithm);

/// The algorithm of a registered name, compared exactly and case-sensitively
/// ("hs256", "HS256 " and "None" are not names). Thread-safe.
/// \param name the "alg" text.
/// \return the algorithm, or empty for any other text.
KVBASE_EXPORT std::optional<JwsAlgorithm> jwsAlgorithmFromName(const QString& name);

/// Signs a JSON Web Token in the compact serialisation of RFC 7515:
/// BASE64URL(header) "." BASE64URL(payload) "." BASE64URL(signature).
///
/// The header is {"alg":\<name\>,"typ":"JWT"} with the members of `extraHeader`
/// added ("kid", "cty", or a "typ" that replaces "JWT"; an "alg" there is
/// ignored). Header and payload are written as compact JSON with members in
/// sorted order and non-ASCII text as UTF-8; the signature covers exactly
/// those bytes. Numbers are written as JSON numbers: NumericDate claims
/// ("exp", "nbf", "iat") should be whole seconds since 1970-01-01T00:00:00Z.
///
/// With JwsAlgorithm::None the key is not used and the token ends in ".".
///
/// \param payload the claims; integers beyond 2^53 that it holds exactly (read from
///        JSON) are written exactly, with Qt 5 as with Qt 6.
/// \param algorithm the signature algorithm.
/// \param key a key that can sign with `algorithm` (see Key): an HMAC secret at
///        least as long as the hash output, or a private key of the right type.
/// \param extraHeader further header members.
/// \param error if not null, set to what is wrong when the result is empty (the
///        key does not fit the algorithm, is public only, or is too short);
///        never contains key material.
/// \return the token, ASCII, or an empty QByteArray on failure.
///
/// Reentrant and thread-safe: keys may be shared between threads.
KVBASE_EXPORT QByteArray sign(const QJsonObject& payload, JwsAlgorithm algorithm, const Key& key,
                              const QJsonObject& extraHeader = {}, QString* error = nullptr);

} // namespace jsonWebToken

#endif
