#ifndef KVBASE_JSONWEBTOKEN_CRYPTO_P_H
#define KVBASE_JSONWEBTOKEN_CRYPTO_P_H

// The one place that talks to OpenSSL's libcrypto: the HMAC behind both
// Token::signWith and the JWS functions, the public-key signatures, and the
// strict base64url the JWS segments travel in. Not part of the API.

#include <QByteArray>

#include <openssl/types.h>

#include <initializer_list>
#include <memory>
#include <mutex>

namespace jsonWebToken {
namespace Crypto {

enum class Hash
{
    Sha256,
    Sha384,
    Sha512
};

/// Output size in bytes.
int hashSize(Hash hash);

/// The largest hashSize().
constexpr int maxHashSize = 64;

/// HMAC over the concatenation of `parts`. Any key length works, the empty one
/// included, as HMAC pads or hashes the key itself.
QByteArray hmac(Hash hash, const QByteArray& key, std::initializer_list<QByteArray> parts);

/// An HMAC key whose inner and outer pads are computed once per hash and then
/// reused for each message. Thread-safe.
class HmacKey
{
public:
    explicit HmacKey(const QByteArray& secret);
    ~HmacKey();
    HmacKey(const HmacKey&) = delete;
    HmacKey& operator=(const HmacKey&) = delete;

    /// Key length in bytes.
    int size() const { return m_secret.size(); }
    /// Writes hashSize(hash) bytes to `out`; false only when OpenSSL fails.
    bool mac(Hash hash, const char* data, int size, unsigned char* out) const;

private:
    QByteArray m_secret;
    const quint64 m_id; // unique for the process, unlike the address
    mutable std::once_flag m_once[3];
    mutable EVP_MAC_CTX* m_prepared[3] = {};
};

/// Compares without an early exit, so the time taken says nothing about how
/// much of a forged MAC was right. Lengths are not secret.
bool equalInConstantTime(const char* a, int aSize, const char* b, int bSize);

enum class Scheme
{
    RsaPkcs1, ///< RSASSA-PKCS1-v1_5
    RsaPss,   ///< RSASSA-PSS, MGF1 with the same hash, salt as long as the hash
    Ecdsa,    ///< signature as R and S, each `componentSize` bytes, concatenated
    EdDsa     ///< pure EdDSA; the hash is not used
};

struct PkeyDeleter
{
    void operator()(EVP_PKEY* key) const;
};
using Pkey = std::unique_ptr<EVP_PKEY, PkeyDeleter>;

/// True when `signature`, in JWS form, signs `data` under `key`.
bool verify(EVP_PKEY* key, Scheme scheme, Hash hash, int componentSize, const char* data, int size,
            const QByteArray& signature);
/// The JWS form of the signature, or empty when OpenSSL refuses.
QByteArray sign(EVP_PKEY* key, Scheme scheme, Hash hash, int componentSize, const char* data, int size);

/// Loads libcrypto now, so that its exit handler runs after the destructors
/// of objects made from here on, static ones included.
void initialise();

/// Forgets OpenSSL's queued errors after an expected failure, so they do not
/// surface later in unrelated code of the same thread.
void clearErrors();

/// Strict base64url (RFC 7515 section 2): the URL-safe alphabet only, no
/// padding, no blanks, and no stray bits after the last byte, so every byte
/// string has exactly one encoding. On failure `*badOffset` is the offset of
/// the first character that cannot be part of such an encoding (`size` when
/// the text is cut short).
bool decodeBase64Url(const char* text, int size, QByteArray* out, int* badOffset);
inline bool decodeBase64Url(const QByteArray& text, QByteArray* out)
{
    int unused = 0;
    return decodeBase64Url(text.constData(), text.size(), out, &unused);
}
void appendBase64Url(QByteArray& out, const char* data, int size);

} // namespace Crypto
} // namespace jsonWebToken

#endif
