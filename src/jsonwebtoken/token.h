#ifndef KVBASE_JSONWEBTOKEN_TOKEN_H
#define KVBASE_JSONWEBTOKEN_TOKEN_H

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
class KVBASE_EXPORT Token
{
public:
    Token();
    Token(const Token& other);
    Token(Token&& other) noexcept;
    Token& operator=(const Token& other);
    Token& operator=(Token&& other) noexcept;
    ~Token();

    /// Equal signatures, headers and payloads; the caches do not count.
    bool operator==(const Token& other) const;
    bool operator!=(const Token& other) const;

    const Header& header() const { return m_header; }
    const Payload& payload() const { return m_payload; }

    /// Replacing the header or payload keeps the signature: sign again.
    Token& setHeader(Header header);
    Token& setPayload(Payload payload);
    /// The raw MAC bytes, not encoded.
    Token& setSignature(QByteArray signature);
    const QByteArray& signature() const { return m_signature; }

    /// Stores `algorithm` (if given) as "alg", then signs with the header's
    /// algorithm. Throws boost::bad_optional_access when the header has no "alg".
    Token& signWith(const QByteArray& key, boost::optional<SignatureAlgorithm::Type> algorithm);
    /// True when the header's "alg" is `algorithm` and the signature is its MAC
    /// with `key` (compared in constant time); None verifies an empty signature.
    /// Throws boost::bad_optional_access when the header has no "alg".
    bool verifySignature(const QByteArray& key, SignatureAlgorithm::Type algorithm) const;
    /// With `now`: TokenExpired when now >= "exp", TokenNotYetValid when
    /// now < "nbf" (each only when present, no leeway); then SignatureInvalid
    /// or NoError from verifySignature. No other claim is looked at.
    VerificationError::Type verify(const QByteArray& key, SignatureAlgorithm::Type algorithm,
                                   boost::optional<const QDateTime&> now) const;

    /// The compact serialisation; it ends in "." when the signature is empty.
    QByteArray value() const;
    /// Empty unless `text` has exactly three "."-separated parts whose first two
    /// are valid header and payload segments. Never throws.
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
