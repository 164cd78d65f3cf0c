#ifndef KVBASE_JSONWEBTOKEN_KEY_H
#define KVBASE_JSONWEBTOKEN_KEY_H

#include "kvbase_export.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace jsonWebToken {

struct KeyData;
struct KeyAccess;

/// A key for signing or checking JSON Web Signatures: an HMAC secret, or an
/// RSA, EC (P-256, P-384, P-521) or EdDSA (Ed25519, Ed448) key, public or
/// private. A private key also verifies.
///
/// Which algorithm a key serves follows from its type: HMAC secrets HS256,
/// HS384 and HS512 (a secret shorter than the hash output is refused unless
/// the verifier allows short keys); RSA keys of at least 2048 bits RS* and PS*
/// (RFC 7518 section 3.3); EC keys the ES algorithm of their curve (P-256
/// ES256, P-384 ES384, P-521 ES512); Ed25519 and Ed448 keys EdDSA. A JWK with
/// an "alg" member serves that algorithm only.
///
/// Immutable and implicitly shared: copies are cheap, and one key may be used
/// from any number of threads at once.
class KVBASE_EXPORT Key
{
public:
    /// Copies share the key material; no copy is ever deep.
    /// \param other the key to share.
    Key(const Key& other);
    /// \copydoc Key(const Key&)
    Key(Key&& other) noexcept;
    /// Shares `other`'s key material.
    /// \param other the key to share.
    /// \return this key.
    Key& operator=(const Key& other);
    /// \copydoc operator=(const Key&)
    Key& operator=(Key&& other) noexcept;
    ~Key();

    /// An HMAC secret, taken byte for byte (no text decoding).
    /// \param secret the key bytes, any length; the length is checked where
    ///        the key is used (at least 32, 48 or 64 bytes for HS256, HS384,
    ///        HS512 unless the verifier allows short keys).
    /// \return the key; this never fails.
    static Key hmacSecret(const QByteArray& secret);

    /// Reads the first key of a PEM text: "PUBLIC KEY" (SubjectPublicKeyInfo),
    /// "PRIVATE KEY" (unencrypted PKCS #8), or the traditional "RSA PRIVATE KEY"
    /// and "EC PRIVATE KEY" forms. Blocks before it, such as "EC PARAMETERS",
    /// are skipped.
    /// \param pem the PEM text, ASCII.
    /// \param error if not null, set to what is wrong when the result is empty:
    ///        no PEM block, an encrypted key, another key type (DSA, X25519,
    ///        an unsupported curve) or unreadable contents.
    /// \return the key, or empty.
    static std::optional<Key> fromPem(const QByteArray& pem, QString* error = nullptr);

    /// Reads a JSON Web Key (RFC 7517, RFC 7518 section 6, RFC 8037): "kty"
    /// "oct" with "k"; "RSA" with "n", "e" and, for a private key, "d" with
    /// either all or none of "p", "q", "dp", "dq", "qi"; "EC" with "crv" P-256,
    /// P-384 or P-521, "x", "y" and optionally "d"; "OKP" with "crv" Ed25519 or
    /// Ed448, "x" and optionally "d". Every number and octet string is strict
    /// base64url; OKP members have the exact length of their curve, EC members
    /// at most that length (shorter ones, whose leading zero bytes a writer
    /// left out, are padded); a private part must match the public one. "kid" becomes id(); "alg", if
    /// present, must be a signature algorithm that fits the key and limits it to
    /// that algorithm; "use" other than "sig" and "key_ops" without "sign" or
    /// "verify" make the key unusable here.
    /// \param jwk the JSON object of one key.
    /// \param error if not null, set to what is wrong when the result is empty;
    ///        it names members, never their values.
    /// \return the key, or empty.
    static std::optional<Key> fromJwk(const QJsonObject& jwk, QString* error = nullptr);

    /// \return the "kid" of a key read from a JWK, else an empty string.
    QString id() const;
    /// \return true for HMAC secrets and private keys, false for public keys.
    bool canSign() const;

private:
    explicit Key(std::shared_ptr<const KeyData> data);
    friend struct KeyAccess;
    std::shared_ptr<const KeyData> d;
};

/// A JSON Web Key Set (RFC 7517 section 5): the keys an identity provider
/// publishes, usually at its "jwks_uri". Keys the library cannot use for
/// signatures (encryption keys, unknown types or curves, malformed members)
/// are skipped and counted, so one odd key does not lose the others.
///
/// Immutable and implicitly shared: cheap to copy, usable from any number of
/// threads at once.
class KVBASE_EXPORT KeySet
{
public:
    /// Copies share the keys.
    /// \param other the set to share.
    KeySet(const KeySet& other);
    /// \copydoc KeySet(const KeySet&)
    KeySet(KeySet&& other) noexcept;
    /// Shares `other`'s keys.
    /// \param other the set to share.
    /// \return this set.
    KeySet& operator=(const KeySet& other);
    /// \copydoc operator=(const KeySet&)
    KeySet& operator=(KeySet&& other) noexcept;
    ~KeySet();

    /// Reads a JWK Set: a JSON object whose "keys" member is an array of JWKs,
    /// each read as by Key::fromJwk.
    /// \param json the JWK Set document, UTF-8.
    /// \param error if not null, set to what is wrong when the result is empty.
    /// \return the set, or empty when the text is not such an object or when
    ///         not one of its keys is usable.
    static std::optional<KeySet> fromJwks(const QByteArray& json, QString* error = nullptr);

    /// \return the number of usable keys, at least one.
    int size() const;
    /// \return the number of entries of "keys" that were skipped.
    int skipped() const;
    /// \return why each skipped entry was skipped, in the order of the set,
    ///         e.g. "keys[7] (kid \"enc-1\"): \"use\" is not \"sig\"".
    QStringList skipReasons() const;
    /// \return the usable keys, in the order of the set.
    const std::vector<Key>& keys() const;

private:
    struct Data;
    explicit KeySet(std::shared_ptr<const Data> data);
    std::shared_ptr<const Data> d;
};

} // namespace jsonWebToken

#endif
