#ifndef KVBASE_JSONWEBTOKEN_ENUMS_H
#define KVBASE_JSONWEBTOKEN_ENUMS_H

/// \file jsonwebtoken/enums.h
/// \brief The vocabulary of JSON Web Tokens: algorithms, header parameters,
/// claims and verification results.

#include "kvbase_export.h"

#include <QObject>
#include <QString>
#include <QVector>

/// JSON Web Tokens (RFC 7519) signed with HMAC: Token with its Header and
/// Payload, the enumeration structs of their vocabulary, and ContentSerializer.
namespace jsonWebToken {

// Every Type here has int as its underlying type, so any int (such as one read
// from storage) is a valid value, which toString answers with an empty text.

/// MAC algorithms of a token's "alg" header parameter; only HMAC is supported.
/// toString gives the registered JSON text, an empty string outside the enum.
/// fromString takes the first word of a text as a case-insensitive prefix
/// (see EnumHelpers::fromString); an unknown text gives None with *ok false.
/// All functions are thread-safe.
struct KVBASE_EXPORT SignatureAlgorithm
{
    Q_GADGET
public:
    /// The algorithms.
    enum Type : int
    {
        None = 0, ///< no MAC: the signature is empty
        HS256 = 1,
        HS384 = 2,
        HS512 = 3
    };
    Q_ENUM(Type)

    /// \param value an algorithm
    /// \return "None", "HS256", "HS384" or "HS512"; empty outside the enum
    static QString toString(Type value);
    /// \param text the text to read
    /// \param ok   receives whether an algorithm matched; may be null
    /// \return the algorithm; None when nothing matched
    static Type fromString(const QString& text, bool* ok);
    /// \return None, HS256, HS384, HS512
    static const QVector<Type>& values();
};

/// Registered header parameters; the value indexes Header::get<N> and with<N>.
/// Audience and AudienceList are two typed views of the one member "aud".
/// ContentType has an empty JSON name and is left out of values() on purpose,
/// so text lookups never yield it. Thread-safe.
struct KVBASE_EXPORT HeaderParameter
{
    Q_GADGET
public:
    /// The parameters, with their JSON names and value types.
    enum Type : int
    {
        Algorithm = 0,    ///< "alg", SignatureAlgorithm::Type
        Audience = 1,     ///< "aud", QString
        AudienceList = 2, ///< "aud", QStringList
        ContentType = 3,  ///< empty name, QString
        Issuer = 4,       ///< "iss", QString
        Subject = 5,      ///< "sub", QString
        TokenType = 6     ///< "typ", QString
    };
    Q_ENUM(Type)

    /// \param value a parameter
    /// \return the JSON member name; empty for ContentType and outside the enum
    static QString toString(Type value);
    /// \param text the text to read
    /// \param ok   receives whether a parameter matched; may be null
    /// \return the parameter; Algorithm when nothing matched
    static Type fromString(const QString& text, bool* ok);
    /// \return every value but ContentType, in ascending order
    static const QVector<Type>& values();
};

/// Registered claims of a payload; the value indexes Payload::get<N> and with<N>.
/// Times are NumericDates: whole seconds since 1970-01-01T00:00:00Z. Thread-safe.
struct KVBASE_EXPORT Claim
{
    Q_GADGET
public:
    /// The claims, with their JSON names and value types.
    enum Type : int
    {
        Audience = 0,       ///< "aud", QString
        AudienceList = 1,   ///< "aud", QStringList
        ExpirationTime = 2, ///< "exp", QDateTime
        IssuedAt = 3,       ///< "iat", QDateTime
        Issuer = 4,         ///< "iss", QString
        JwtId = 5,          ///< "jti", QString
        NotBefore = 6,      ///< "nbf", QDateTime
        Subject = 7         ///< "sub", QString
    };
    Q_ENUM(Type)

    /// \param value a claim
    /// \return the JSON member name; empty outside the enum
    static QString toString(Type value);
    /// \param text the text to read
    /// \param ok   receives whether a claim matched; may be null
    /// \return the claim; Audience when nothing matched
    static Type fromString(const QString& text, bool* ok);
    /// \return every claim, in ascending order
    static const QVector<Type>& values();
};

/// Outcome of a token check. Token::verify produces only NoError,
/// SignatureInvalid, TokenExpired and TokenNotYetValid; the other codes are for
/// the application's own checks (issuer, audience, required claims,
/// revocation). The texts are the key names and are not translated. Thread-safe.
struct KVBASE_EXPORT VerificationError
{
    Q_GADGET
public:
    /// The outcomes.
    enum Type : int
    {
        Unknown = 0,
        NoError = 1,
        ClaimMissing = 2,
        ClaimValueUnexpected = 3,
        HeaderParameterMissing = 4,
        HeaderValueUnexpected = 5,
        IssuerUnknown = 6,
        SignatureInvalid = 7,
        TokenExpired = 8,
        TokenNotYetValid = 9,
        TokenRevoked = 10
    };
    Q_ENUM(Type)

    /// \param value an outcome
    /// \return the key name, e.g. "TokenExpired"; empty outside the enum
    static QString toString(Type value);
    /// \param value an outcome
    /// \return the same text as toString()
    static QString toDisplayString(Type value);
    /// \param text the text to read
    /// \param ok   receives whether an outcome matched; may be null
    /// \return the outcome; Unknown when nothing matched
    static Type fromString(const QString& text, bool* ok);
    /// \return every outcome, in ascending order
    static const QVector<Type>& values();
};

} // namespace jsonWebToken

#endif
