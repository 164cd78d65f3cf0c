#ifndef KVBASE_JSONWEBTOKEN_VERIFIER_H
#define KVBASE_JSONWEBTOKEN_VERIFIER_H

#include "kvbase_export.h"

#include "jsonwebtoken/enums.h"
#include "jsonwebtoken/jws.h"
#include "jsonwebtoken/key.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QSharedDataPointer>
#include <QString>
#include <QStringList>

#include <chrono>

namespace jsonWebToken {

/// Checks JSON Web Tokens (RFC 7519) in the compact JWS serialisation made by
/// other systems, trusting nothing in the token that the caller did not allow.
///
/// verify() checks, in this order, and reports the first failure:
/// 1. three base64url segments, strict alphabet, no padding, no blanks
///    (Unknown);
/// 2. header and payload are JSON objects, no member name twice (Unknown);
/// 3. "alg" is present (HeaderParameterMissing) and exactly the name of an
///    algorithm allowed with a key that fits it (HeaderValueUnexpected); with
///    a "kid", a key set offers only its keys of that id. HMAC keys shorter than
///    the hash output do not fit unless allowShortHmacKeys() was called;
/// 4. no "crit" header: no extension is understood (HeaderValueUnexpected);
/// 5. the signature over the header and payload segments exactly as received
///    (RFC 7515 section 5.2), MACs compared in constant time
///    (SignatureInvalid);
/// 6. "exp": TokenExpired when now >= exp + leeway; "nbf": TokenNotYetValid
///    when now + leeway < nbf; "iat": TokenNotYetValid when now + leeway < iat;
///    each only when present, ClaimValueUnexpected when not a number;
/// 7. each required claim is present (ClaimMissing);
/// 8. "iss" is one of the accepted issuers (IssuerUnknown);
/// 9. "aud" is the expected audience or an array holding it, and "sub" the
///    expected subject (ClaimValueUnexpected);
/// 10. "typ", if present, is the expected type (HeaderValueUnexpected).
/// Checks 7 to 10 apply only when configured. A Result of NoError means all
/// passed. Nothing throws, whatever the input.
///
/// Times are NumericDates: seconds since 1970-01-01T00:00:00Z, fractions
/// allowed. RFC 7519 wants a token that carries "aud" rejected by a recipient
/// not named in it: set audience() whenever your tokens have one.
///
/// Thread rules: configure in one thread, then call verify() from any number
/// of threads at once; copies are cheap (implicitly shared).
///
/// Example, for access tokens from an OpenID Connect provider:
/// \code
/// const auto keys = KeySet::fromJwks(jwksDocument, &error);  // from the provider's jwks_uri
/// if (!keys)
///     return fail(error);
/// const Verifier verifier = Verifier()
///                               .allow(JwsAlgorithm::RS256, *keys)
///                               .allow(JwsAlgorithm::ES256, *keys)
///                               .issuer({QStringLiteral("https://login.example.com/")})
///                               .audience(QStringLiteral("monitoring-api"))
///                               .requireClaims({QStringLiteral("exp"), QStringLiteral("sub")})
///                               .leeway(std::chrono::seconds(60));
/// const Verifier::Result result = verifier.verify(bearerToken);
/// if (!result.ok())
///     return deny(VerificationError::toString(result.error), result.message);
/// const QString user = result.payload.value(QLatin1String("sub")).toString();
/// \endcode
class KVBASE_EXPORT Verifier
{
public:
    /// Outcome of verify().
    struct Result
    {
        /// NoError when the token passed every check, else the first failure.
        VerificationError::Type error = VerificationError::Unknown;
        /// What failed and where, in English, for logs; empty on success. Names
        /// members, algorithms and key ids, never key material.
        QString message;
        /// The decoded header, filled as soon as it parsed, even when a later
        /// check fails: then it is untrusted, for logs only.
        QJsonObject header;
        /// The decoded payload (the claims), filled as soon as it parsed, even
        /// when a later check fails: then it is untrusted, for logs only.
        QJsonObject payload;
        /// \return true when the token passed every check.
        bool ok() const { return error == VerificationError::NoError; }
    };

    /// A verifier that allows no algorithm, so it accepts nothing yet.
    Verifier();
    /// Copies share the settings until one of them is changed.
    /// \param other the verifier to copy.
    Verifier(const Verifier& other);
    /// \copydoc Verifier(const Verifier&)
    Verifier(Verifier&& other) noexcept;
    /// Takes over `other`'s settings.
    /// \param other the verifier to copy.
    /// \return this verifier.
    Verifier& operator=(const Verifier& other);
    /// \copydoc operator=(const Verifier&)
    Verifier& operator=(Verifier&& other) noexcept;
    ~Verifier();

    /// Accepts `algorithm` with `key`, tried whatever "kid" the token names.
    /// May be called several times, for more algorithms or keys. A key that
    /// does not fit the algorithm is never tried (verify() then reports
    /// HeaderValueUnexpected naming the mismatch).
    /// \param algorithm the algorithm; JwsAlgorithm::None is only allowed by
    ///        allowNone() and is ignored here.
    /// \param key the key to check signatures with.
    /// \return this verifier.
    Verifier& allow(JwsAlgorithm algorithm, const Key& key);
    /// Accepts `algorithm` with the keys of `keys` that fit it.
    /// \param algorithm the algorithm; JwsAlgorithm::None is ignored.
    /// \param keys the set; when the token has a "kid", only keys of that id
    ///        are tried, otherwise every key.
    /// \return this verifier.
    Verifier& allow(JwsAlgorithm algorithm, const KeySet& keys);
    /// Lets HMAC keys shorter than the hash output (32, 48 or 64 bytes, RFC 7518
    /// section 3.2) verify; they are refused by default.
    /// \return this verifier.
    Verifier& allowShortHmacKeys();
    /// Accepts unsecured tokens ("alg" "none", empty signature). Refused unless
    /// this is called; only for tokens whose integrity is assured otherwise.
    /// \return this verifier.
    Verifier& allowNone();
    /// Sets the clock skew tolerated for "exp", "nbf" and "iat". Default zero.
    /// \param seconds the leeway in seconds; negative counts as zero.
    /// \return this verifier.
    Verifier& leeway(std::chrono::seconds seconds);
    /// Requires "iss" to be one of `accepted` (exact, case-sensitive).
    /// \param accepted the issuers; an empty list, the default, turns the
    ///        check off.
    /// \return this verifier.
    Verifier& issuer(const QStringList& accepted);
    /// Requires "aud" to be `expected` or an array holding it (exact).
    /// \param expected this recipient's name.
    /// \return this verifier.
    Verifier& audience(const QString& expected);
    /// Requires "sub" to be `expected` (exact).
    /// \param expected the subject.
    /// \return this verifier.
    Verifier& subject(const QString& expected);
    /// Requires claims to be present in the payload, whatever their values.
    /// \param names claim names, added to those of earlier calls.
    /// \return this verifier.
    Verifier& requireClaims(const QStringList& names);
    /// Requires "typ", when the header has one, to be `expected`, compared
    /// without regard to case and with "application/" implied where there is no
    /// "/" (RFC 7515 section 4.1.9): "JWT" matches "jwt" and "application/jwt".
    /// \param expected the media type.
    /// \return this verifier.
    Verifier& type(const QString& expected);

    /// Checks a token at the current UTC time.
    /// \param compactToken the token as received, ASCII, nothing around it.
    /// \return the outcome; never throws.
    Result verify(const QByteArray& compactToken) const;
    /// Checks a token at a given time.
    /// \param compactToken the token as received, ASCII, nothing around it.
    /// \param now the time to check "exp", "nbf" and "iat" against; an
    ///        invalid QDateTime gives Unknown at the time checks.
    /// \return the outcome; never throws.
    Result verify(const QByteArray& compactToken, const QDateTime& now) const;

private:
    struct Data;
    QSharedDataPointer<Data> d;
};

} // namespace jsonWebToken

#endif
