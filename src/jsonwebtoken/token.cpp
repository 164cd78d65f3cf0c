#include "jsonwebtoken/token.h"

#include "jsonwebtoken/crypto_p.h"

#include <exception>

namespace jsonWebToken {

namespace {

const QByteArray& separator()
{
    static const QByteArray dot(1, '.');
    return dot;
}

} // namespace

Token::Token() = default;
Token::Token(const Token& other) = default;
Token::Token(Token&& other) noexcept = default;
Token& Token::operator=(const Token& other) = default;
Token& Token::operator=(Token&& other) noexcept = default;
Token::~Token() = default;

bool Token::operator==(const Token& other) const
{
    return m_signature == other.m_signature && m_header == other.m_header && m_payload == other.m_payload;
}

bool Token::operator!=(const Token& other) const
{
    return !(*this == other);
}

Token& Token::setHeader(Header header)
{
    m_header = std::move(header);
    m_headerSegment = boost::none;
    return *this;
}

Token& Token::setPayload(Payload payload)
{
    m_payload = std::move(payload);
    m_payloadSegment = boost::none;
    return *this;
}

Token& Token::setSignature(QByteArray signature)
{
    m_signature = std::move(signature);
    m_signatureSegment = boost::none;
    return *this;
}

const QByteArray& Token::headerAsBase64() const
{
    if (!m_headerSegment)
        m_headerSegment = m_header.value();
    return *m_headerSegment;
}

const QByteArray& Token::payloadAsBase64() const
{
    if (!m_payloadSegment)
        m_payloadSegment = m_payload.value();
    return *m_payloadSegment;
}

const QByteArray& Token::signatureAsBase64() const
{
    if (!m_signatureSegment) {
        QByteArray segment;
        Crypto::appendBase64Url(segment, m_signature.constData(), m_signature.size());
        m_signatureSegment = std::move(segment);
    }
    return *m_signatureSegment;
}

QByteArray Token::calcSignature(const QByteArray& key, SignatureAlgorithm::Type algorithm) const
{
    Crypto::Hash hash;
    switch (algorithm) {
    case SignatureAlgorithm::None:
        return QByteArray();
    case SignatureAlgorithm::HS256:
        hash = Crypto::Hash::Sha256;
        break;
    case SignatureAlgorithm::HS384:
        hash = Crypto::Hash::Sha384;
        break;
    case SignatureAlgorithm::HS512:
        hash = Crypto::Hash::Sha512;
        break;
    default:
        throw std::exception();
    }
    return Crypto::hmac(hash, key, {headerAsBase64(), separator(), payloadAsBase64()});
}

Token& Token::signWith(const QByteArray& key, boost::optional<SignatureAlgorithm::Type> algorithm)
{
    if (algorithm) {
        m_header.with<HeaderParameter::Algorithm>(*algorithm);
        m_headerSegment = boost::none;
    }
    const SignatureAlgorithm::Type used = m_header.get<HeaderParameter::Algorithm>().value();
    return setSignature(calcSignature(key, used));
}

bool Token::verifySignature(const QByteArray& key, SignatureAlgorithm::Type algorithm) const
{
    if (m_header.get<HeaderParameter::Algorithm>().value() != algorithm)
        return false;
    const QByteArray mac = calcSignature(key, algorithm);
    // An empty MAC with an HMAC algorithm means OpenSSL failed, which must not
    // let an empty signature through.
    if (mac.isEmpty() && algorithm != SignatureAlgorithm::None)
        return false;
    return Crypto::equalInConstantTime(mac.constData(), mac.size(), m_signature.constData(),
                                       m_signature.size());
}

VerificationError::Type Token::verify(const QByteArray& key, SignatureAlgorithm::Type algorithm,
                                      boost::optional<const QDateTime&> now) const
{
    if (now) {
        const auto expires = m_payload.get<Claim::ExpirationTime>();
        if (expires && *now >= *expires)
            return VerificationError::TokenExpired;
        const auto notBefore = m_payload.get<Claim::NotBefore>();
        if (notBefore && *now < *notBefore)
            return VerificationError::TokenNotYetValid;
    }
    return verifySignature(key, algorithm) ? VerificationError::NoError : VerificationError::SignatureInvalid;
}

QByteArray Token::value() const
{
    const QByteArray& header = headerAsBase64();
    const QByteArray& payload = payloadAsBase64();
    const QByteArray& signature = signatureAsBase64();
    QByteArray text;
    text.reserve(header.size() + payload.size() + signature.size() + 2);
    text.append(header).append(separator()).append(payload).append(separator()).append(signature);
    return text;
}

boost::optional<Token> Token::fromValue(const QByteArray& text)
{
    // The parts are views into `text`, which outlives them: no copies, and a
    // text of millions of dots is rejected at its third.
    const int first = text.indexOf('.');
    const int second = first < 0 ? -1 : text.indexOf('.', first + 1);
    if (second < 0 || text.indexOf('.', second + 1) >= 0)
        return boost::none;
    const auto part = [&text](int from, int to) {
        return QByteArray::fromRawData(text.constData() + from, to - from);
    };
    auto header = Header::fromValue(part(0, first));
    if (!header)
        return boost::none;
    auto payload = Payload::fromValue(part(first + 1, second));
    if (!payload)
        return boost::none;
    Token token;
    token.setHeader(std::move(*header))
        .setPayload(std::move(*payload))
        .setSignature(QByteArray::fromBase64(part(second + 1, text.size()),
                                             QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
    return token;
}

} // namespace jsonWebToken
