#ifndef KVBASE_JSONWEBTOKEN_TOKEN_H
#define KVBASE_JSONWEBTOKEN_TOKEN_H

/// \file jsonwebtoken/token.h
/// \brief Signed JSON Web Tokens in compact form.

#include "kvbase_export.h"

#include "jsonwebtoken/enums.h"
#include "jsonwebtoken/header.h"
#include "jsonwebtoken/payload.h"

#include <QByteArray>
#include <QDateTime>

#include <boost/optional.hpp>

namespace jsonWebToken {

/// A JSON Web Token in compact form (header.payload.signature, RFC 7519) with
/// an HMAC signature. The MAC is computed over the segments this object encodes
/// from its header and payload, not over text it was parsed from, so a token
/// whose sender spaced or ordered its JSON differently does not verify.
/// A value class. The encoded segments are cached lazily even by const
/// functions, so one object must not be used from two threads at once.
///
/// \code
/// Token token;
/// token.setPayload(Payload().with<Claim::Issuer>(QStringLiteral("dispatch")))
///     .signWith(key, SignatureAlgorithm::HS256);
/// const QByteArray text = token.value();                    // "eyJhbGciOi..."
/// const boost::optional<Token> received = Token::fromValue(text);
/// if (received && received->verify(key, SignatureAlgorithm::HS256, QDateTime::currentDateTimeUtc()) ==
///                     VerificationError::NoError)
///     accept(*received);
/// \endcode
class KVBASE_EXPORT Token
{
public:
    /// A default Header ("alg" None), no claims, empty signature.
    Token();
    /// \param other the token to copy
    Token(const Token& other);
    /// \param other the token to take; left valid but unspecified
    Token(Token&& other) noexcept;
    /// \param other the token to copy
    /// \return this token
    Token& operator=(const Token& other);
    /// \param other the token to take; left valid but unspecified
    /// \return this token
    Token& operator=(Token&& other) noexcept;
    ~Token();

    /// Equal signatures, headers and payloads; the caches do not count.
    /// \param other the token to compare with
    /// \return true when equal
    bool operator==(const Token& other) const;
    /// \param other the token to compare with
    /// \return the negation of operator==()
    bool operator!=(const Token& other) const;

    /// \return the header
    const Header& header() const { return m_header; }
    /// \return the payload
    const Payload& payload() const { return m_payload; }

    /// Replacing the header or payload keeps the signature: sign again.
    /// \param header the new header
    /// \return this token
    Token& setHeader(Header header);
    /// Replacing the payload keeps the signature: sign again.
    /// \param payload the new payload
    /// \return this token
    Token& setPayload(Payload payload);
    /// \param signature the raw MAC bytes, not encoded
    /// \return this token
    Token& setSignature(QByteArray signature);
    /// \return the raw MAC bytes, not encoded
    const QByteArray& signature() const { return m_signature; }

    /// Stores `algorithm` (if given) as "alg", then signs with the header's
    /// algorithm.
    /// \param key       the HMAC key, any length
    /// \param algorithm the algorithm to store, or none to keep the header's
    /// \return this token
    /// \throw boost::bad_optional_access when the header has no "alg"
    Token& signWith(const QByteArray& key, boost::optional<SignatureAlgorithm::Type> algorithm);
    /// Checks the signature only.
    /// \param key       the HMAC key
    /// \param algorithm the algorithm the caller expects
    /// \return true when the header's "alg" is `algorithm` and the signature is
    ///         its MAC with `key` (compared in constant time); None verifies an
    ///         empty signature
    /// \throw boost::bad_optional_access when the header has no "alg"
    bool verifySignature(const QByteArray& key, SignatureAlgorithm::Type algorithm) const;
    /// With `now`: TokenExpired when now >= "exp", TokenNotYetValid when
    /// now < "nbf" (each only when present, no leeway); then SignatureInvalid
    /// or NoError from verifySignature(). No other claim is looked at.
    /// \param key       the HMAC key
    /// \param algorithm the algorithm the caller expects
    /// \param now       the time to check "exp" and "nbf" against; none skips both
    /// \return NoError, TokenExpired, TokenNotYetValid or SignatureInvalid
    /// \throw boost::bad_optional_access when the header has no "alg"
    VerificationError::Type verify(const QByteArray& key, SignatureAlgorithm::Type algorithm,
                                   boost::optional<const QDateTime&> now) const;

    /// \return the compact serialisation; it ends in "." when the signature is empty
    QByteArray value() const;
    /// Reads a compact serialisation. Never throws.
    /// \param text header.payload.signature
    /// \return the token; empty unless `text` has exactly three "."-separated
    ///         parts whose first two are valid header and payload segments
    static boost::optional<Token> fromValue(const QByteArray& text);

private:
    const QByteArray& headerAsBase64() const;
    const QByteArray& payloadAsBase64() const;
    const QByteArray& signatureAsBase64() const;
    /// Throws std::exception for an algorithm outside the enum.
    QByteArray calcSignature(const QByteArray& key, SignatureAlgorithm::Type algorithm) const;

    Header m_header;
    mutable boost::optional<QByteArray> m_headerSegment;
    Payload m_payload;
    mutable boost::optional<QByteArray> m_payloadSegment;
    QByteArray m_signature;
    mutable boost::optional<QByteArray> m_signatureSegment;
};

} // namespace jsonWebToken

#endif
