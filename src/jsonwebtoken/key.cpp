#include "jsonwebtoken/key.h"

#include "jsonwebtoken/json_p.h"
#include "jsonwebtoken/jws_p.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>
#include <openssl/pem.h>

#include <cstring>
#include <vector>

namespace jsonWebToken {

struct KeySet::Data
{
    std::vector<Key> keys;
    QStringList skipReasons;
};

namespace {

// RFC 7518 section 3.3: "A key of size 2048 bits or larger MUST be used".
constexpr int minimumRsaBits = 2048;

template <typename T>
std::optional<T> failure(QString* error, const QString& why)
{
    if (error)
        *error = why;
    return std::nullopt;
}

QString quoted(const char* name)
{
    return QLatin1Char('"') + QLatin1String(name) + QLatin1Char('"');
}

// Sets the type from what OpenSSL read; empty when the key is one we use.
// Whether a private key verifies its own signature. The readers accept parts
// that do not belong together (a changed modulus in a PEM block, another key's
// "d" in an RSA JWK), and such a key would sign what nobody can verify.
bool signsVerifiably(EVP_PKEY* pkey, KeyType type)
{
    static const unsigned char message[] = "KvBase checks a private key";
    // EdDSA signs the message itself, the others a SHA-256 digest.
    const char* digest = type == KeyType::Ed25519 || type == KeyType::Ed448 ? nullptr : "SHA256";
    std::vector<unsigned char> signature;
    size_t length = 0;
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    bool ok = context &&
              EVP_DigestSignInit_ex(context, nullptr, digest, nullptr, nullptr, pkey, nullptr) == 1 &&
              EVP_DigestSign(context, nullptr, &length, message, sizeof message) == 1;
    if (ok) {
        signature.resize(length);
        ok = EVP_DigestSign(context, signature.data(), &length, message, sizeof message) == 1;
    }
    EVP_MD_CTX_free(context);
    context = ok ? EVP_MD_CTX_new() : nullptr;
    ok = context && EVP_DigestVerifyInit_ex(context, nullptr, digest, nullptr, nullptr, pkey, nullptr) == 1 &&
         EVP_DigestVerify(context, signature.data(), length, message, sizeof message) == 1;
    EVP_MD_CTX_free(context);
    Crypto::clearErrors();
    return ok;
}

QString classifyType(EVP_PKEY* pkey, KeyData* data)
{
    if (EVP_PKEY_is_a(pkey, "RSA")) {
        data->type = KeyType::Rsa;
        const int bits = EVP_PKEY_get_bits(pkey);
        if (bits < minimumRsaBits)
            return QStringLiteral("the RSA key has %1 bits; JWS needs at least %2")
                .arg(bits)
                .arg(minimumRsaBits);
        return QString();
    }
    if (EVP_PKEY_is_a(pkey, "EC")) {
        char group[80] = {};
        size_t length = 0;
        if (EVP_PKEY_get_utf8_string_param(pkey, OSSL_PKEY_PARAM_GROUP_NAME, group, sizeof group, &length) !=
            1)
            return QStringLiteral("the EC key has no named curve");
        const QLatin1String name(group);
        if (name == QLatin1String("prime256v1"))
            data->type = KeyType::EcP256;
        else if (name == QLatin1String("secp384r1"))
            data->type = KeyType::EcP384;
        else if (name == QLatin1String("secp521r1"))
            data->type = KeyType::EcP521;
        else
            return QStringLiteral("the EC curve %1 is not P-256, P-384 or P-521").arg(name);
        return QString();
    }
    if (EVP_PKEY_is_a(pkey, "ED25519")) {
        data->type = KeyType::Ed25519;
        return QString();
    }
    if (EVP_PKEY_is_a(pkey, "ED448")) {
        data->type = KeyType::Ed448;
        return QString();
    }
    const char* type = EVP_PKEY_get0_type_name(pkey);
    return QStringLiteral("%1 keys have no JWS algorithm")
        .arg(type ? QString::fromLatin1(type) : QStringLiteral("such"));
}

QString classify(EVP_PKEY* pkey, KeyData* data)
{
    QString why = classifyType(pkey, data);
    if (why.isEmpty() && data->isPrivate && !signsVerifiably(pkey, data->type))
        why = QStringLiteral("the parts of the private key do not belong together");
    return why;
}

int refusePassphrase(char*, int, int, void*)
{
    return -1;
}

// Builds an OpenSSL key from named parts (RFC 7518 section 6 members).
class KeyBuilder
{
public:
    KeyBuilder() : m_builder(OSSL_PARAM_BLD_new()) {}
    ~KeyBuilder()
    {
        OSSL_PARAM_BLD_free(m_builder);
        for (BIGNUM* number : m_numbers)
            BN_clear_free(number);
    }
    KeyBuilder(const KeyBuilder&) = delete;
    KeyBuilder& operator=(const KeyBuilder&) = delete;

    void number(const char* name, const QByteArray& bigEndian)
    {
        BIGNUM* number = BN_bin2bn(reinterpret_cast<const unsigned char*>(bigEndian.constData()),
                                   bigEndian.size(), nullptr);
        m_numbers.push_back(number);
        m_ok = m_ok && number && OSSL_PARAM_BLD_push_BN(m_builder, name, number) == 1;
    }
    // `bytes` must live until build().
    void octets(const char* name, const QByteArray& bytes)
    {
        m_ok = m_ok && OSSL_PARAM_BLD_push_octet_string(m_builder, name, bytes.constData(),
                                                        static_cast<size_t>(bytes.size())) == 1;
    }
    void text(const char* name, const char* value)
    {
        m_ok = m_ok && OSSL_PARAM_BLD_push_utf8_string(m_builder, name, value, 0) == 1;
    }
    Crypto::Pkey build(const char* type, int selection)
    {
        if (!m_ok || !m_builder)
            return Crypto::Pkey();
        OSSL_PARAM* parameters = OSSL_PARAM_BLD_to_param(m_builder);
        EVP_PKEY_CTX* context = EVP_PKEY_CTX_new_from_name(nullptr, type, nullptr);
        EVP_PKEY* pkey = nullptr;
        if (parameters && context && EVP_PKEY_fromdata_init(context) == 1)
            EVP_PKEY_fromdata(context, &pkey, selection, parameters);
        EVP_PKEY_CTX_free(context);
        OSSL_PARAM_free(parameters);
        return Crypto::Pkey(pkey);
    }

private:
    OSSL_PARAM_BLD* m_builder;
    std::vector<BIGNUM*> m_numbers;
    bool m_ok = true;
};

// Wipes decoded private members; declared after them, so it runs first.
struct Secrets
{
    std::vector<QByteArray*> held;
    ~Secrets()
    {
        for (QByteArray* bytes : held)
            OPENSSL_cleanse(bytes->data(), static_cast<size_t>(bytes->size()));
    }
};

enum class Length
{
    NotEmpty,
    Any,
    Exact,
    // Left-padded to the size: some writers drop the leading zero bytes of EC
    // coordinates, which changes nothing about the number.
    AtMost
};

// A base64url member of a JWK.
QString member(const QJsonObject& jwk, const char* name, QByteArray* out, Length length = Length::NotEmpty,
               int size = 0)
{
    const QJsonValue value = jwk.value(QLatin1String(name));
    if (value.isUndefined())
        return quoted(name) + QStringLiteral(" is missing");
    if (!value.isString())
        return quoted(name) + QStringLiteral(" is not a string");
    const QString text = value.toString();
    QByteArray ascii(text.size(), '\0');
    for (int i = 0; i < text.size(); ++i)
        ascii[i] = text.at(i).unicode() < 0x80 ? char(text.at(i).unicode()) : '\x80';
    if (!Crypto::decodeBase64Url(ascii, out))
        return quoted(name) + QStringLiteral(" is not base64url");
    if (length == Length::Exact && out->size() != size)
        return quoted(name) + QStringLiteral(" has %1 bytes instead of %2").arg(out->size()).arg(size);
    if (length == Length::AtMost && out->size() > size)
        return quoted(name) +
               QStringLiteral(" has %1 bytes, more than the %2 of its curve").arg(out->size()).arg(size);
    if (length == Length::AtMost)
        out->prepend(QByteArray(size - out->size(), '\0'));
    if (length == Length::NotEmpty && out->isEmpty())
        return quoted(name) + QStringLiteral(" is empty");
    return QString();
}

QString rsaFromJwk(const QJsonObject& jwk, KeyData* data)
{
    static const char* const crtNames[] = {"p", "q", "dp", "dq", "qi"};
    static const char* const crtParameters[] = {OSSL_PKEY_PARAM_RSA_FACTOR1, OSSL_PKEY_PARAM_RSA_FACTOR2,
                                                OSSL_PKEY_PARAM_RSA_EXPONENT1, OSSL_PKEY_PARAM_RSA_EXPONENT2,
                                                OSSL_PKEY_PARAM_RSA_COEFFICIENT1};
    QByteArray n, e, d, crt[5];
    Secrets secrets{{&d, &crt[0], &crt[1], &crt[2], &crt[3], &crt[4]}};
    QString why = member(jwk, "n", &n);
    if (why.isEmpty())
        why = member(jwk, "e", &e);
    if (!why.isEmpty())
        return why;
    if (jwk.contains(QLatin1String("oth")))
        return QStringLiteral("keys of more than two primes (\"oth\") are not supported");
    data->isPrivate = jwk.contains(QLatin1String("d"));
    bool withCrt = false;
    for (const char* name : crtNames)
        withCrt = withCrt || jwk.contains(QLatin1String(name));
    if (withCrt && !data->isPrivate)
        return QStringLiteral("\"p\", \"q\", \"dp\", \"dq\" or \"qi\" without \"d\"");
    KeyBuilder builder;
    builder.number(OSSL_PKEY_PARAM_RSA_N, n);
    builder.number(OSSL_PKEY_PARAM_RSA_E, e);
    if (data->isPrivate) {
        if (!(why = member(jwk, "d", &d)).isEmpty())
            return why;
        builder.number(OSSL_PKEY_PARAM_RSA_D, d);
        for (int i = 0; withCrt && i < 5; ++i) {
            if (!(why = member(jwk, crtNames[i], &crt[i])).isEmpty())
                return why;
            builder.number(crtParameters[i], crt[i]);
        }
    }
    data->pkey = builder.build("RSA", data->isPrivate ? EVP_PKEY_KEYPAIR : EVP_PKEY_PUBLIC_KEY);
    return data->pkey ? QString() : QStringLiteral("OpenSSL refuses the RSA numbers");
}

QString ecFromJwk(const QJsonObject& jwk, KeyData* data)
{
    struct Curve
    {
        const char* name;
        const char* group;
        KeyType type;
        int size;
    };
    static const Curve curves[] = {{"P-256", "prime256v1", KeyType::EcP256, 32},
                                   {"P-384", "secp384r1", KeyType::EcP384, 48},
                                   {"P-521", "secp521r1", KeyType::EcP521, 66}};
    const QString crv = jwk.value(QLatin1String("crv")).toString();
    const Curve* curve = nullptr;
    for (const Curve& candidate : curves) {
        if (crv == QLatin1String(candidate.name))
            curve = &candidate;
    }
    if (!curve)
        return QStringLiteral("\"crv\" is not P-256, P-384 or P-521");
    data->type = curve->type;
    QByteArray x, y, d;
    Secrets secrets{{&d}};
    QString why = member(jwk, "x", &x, Length::AtMost, curve->size);
    if (why.isEmpty())
        why = member(jwk, "y", &y, Length::AtMost, curve->size);
    if (!why.isEmpty())
        return why;
    const QByteArray point = QByteArray(1, '\x04') + x + y; // uncompressed, SEC 1 section 2.3.3
    KeyBuilder builder;
    builder.text(OSSL_PKEY_PARAM_GROUP_NAME, curve->group);
    builder.octets(OSSL_PKEY_PARAM_PUB_KEY, point);
    data->isPrivate = jwk.contains(QLatin1String("d"));
    if (data->isPrivate) {
        if (!(why = member(jwk, "d", &d, Length::AtMost, curve->size)).isEmpty())
            return why;
        builder.number(OSSL_PKEY_PARAM_PRIV_KEY, d);
    }
    data->pkey = builder.build("EC", data->isPrivate ? EVP_PKEY_KEYPAIR : EVP_PKEY_PUBLIC_KEY);
    if (!data->pkey)
        return QStringLiteral("\"x\" and \"y\" are not a point of %1").arg(crv);
    // A point off the curve is the classic invalid-curve attack on ECDH and a
    // sure failure for ECDSA; a "d" of another key signs what nobody can check.
    EVP_PKEY_CTX* check = EVP_PKEY_CTX_new_from_pkey(nullptr, data->pkey.get(), nullptr);
    const bool onCurve = check && EVP_PKEY_public_check(check) == 1;
    const bool paired = onCurve && (!data->isPrivate || EVP_PKEY_pairwise_check(check) == 1);
    EVP_PKEY_CTX_free(check);
    if (!onCurve)
        return QStringLiteral("\"x\" and \"y\" are not a point of %1").arg(crv);
    if (!paired)
        return QStringLiteral("\"d\" does not belong to \"x\" and \"y\"");
    return QString();
}

QString okpFromJwk(const QJsonObject& jwk, KeyData* data)
{
    const QString crv = jwk.value(QLatin1String("crv")).toString();
    const char* type = nullptr;
    int size = 0;
    if (crv == QLatin1String("Ed25519")) {
        type = "ED25519";
        size = 32;
        data->type = KeyType::Ed25519;
    } else if (crv == QLatin1String("Ed448")) {
        type = "ED448";
        size = 57;
        data->type = KeyType::Ed448;
    } else {
        return QStringLiteral("\"crv\" is not Ed25519 or Ed448");
    }
    QByteArray x, d;
    Secrets secrets{{&d}};
    QString why = member(jwk, "x", &x, Length::Exact, size);
    if (!why.isEmpty())
        return why;
    const auto raw = [](const QByteArray& bytes) {
        return reinterpret_cast<const unsigned char*>(bytes.constData());
    };
    data->isPrivate = jwk.contains(QLatin1String("d"));
    if (!data->isPrivate) {
        data->pkey.reset(
            EVP_PKEY_new_raw_public_key_ex(nullptr, type, nullptr, raw(x), static_cast<size_t>(size)));
        return data->pkey ? QString() : QStringLiteral("OpenSSL refuses \"x\"");
    }
    if (!(why = member(jwk, "d", &d, Length::Exact, size)).isEmpty())
        return why;
    data->pkey.reset(
        EVP_PKEY_new_raw_private_key_ex(nullptr, type, nullptr, raw(d), static_cast<size_t>(size)));
    unsigned char derived[57];
    size_t derivedSize = sizeof derived;
    if (!data->pkey || EVP_PKEY_get_raw_public_key(data->pkey.get(), derived, &derivedSize) != 1)
        return QStringLiteral("OpenSSL refuses \"d\"");
    if (derivedSize != static_cast<size_t>(size) || std::memcmp(derived, x.constData(), derivedSize) != 0)
        return QStringLiteral("\"d\" does not belong to \"x\"");
    return QString();
}

// "use" and "key_ops" (RFC 7517 sections 4.2 and 4.3) may keep a key from signatures.
QString usageProblem(const QJsonObject& jwk)
{
    const QJsonValue use = jwk.value(QLatin1String("use"));
    if (!use.isUndefined() && use.toString() != QLatin1String("sig"))
        return QStringLiteral("\"use\" is not \"sig\"");
    const QJsonValue operations = jwk.value(QLatin1String("key_ops"));
    if (operations.isUndefined())
        return QString();
    const QJsonArray list = operations.toArray();
    if (list.contains(QJsonValue(QStringLiteral("verify"))) ||
        list.contains(QJsonValue(QStringLiteral("sign"))))
        return QString();
    return QStringLiteral("\"key_ops\" has neither \"sign\" nor \"verify\"");
}

} // namespace

Key::Key(std::shared_ptr<const KeyData> data) : d(std::move(data)) {}
Key::Key(const Key& other) = default;
Key::Key(Key&& other) noexcept = default;
Key& Key::operator=(const Key& other) = default;
Key& Key::operator=(Key&& other) noexcept = default;
Key::~Key() = default;

Key Key::hmacSecret(const QByteArray& secret)
{
    auto data = std::make_shared<KeyData>();
    data->type = KeyType::Hmac;
    data->secret = std::make_unique<Crypto::HmacKey>(secret);
    return Key(std::move(data));
}

std::optional<Key> Key::fromPem(const QByteArray& pem, QString* error)
{
    Crypto::initialise();
    static const char* const labels[] = {"PUBLIC KEY", "PRIVATE KEY", "RSA PRIVATE KEY", "EC PRIVATE KEY",
                                         "ENCRYPTED PRIVATE KEY"};
    const QByteArray begin("-----BEGIN ");
    int at = 0;
    QByteArray label;
    while (label.isEmpty() && (at = pem.indexOf(begin, at)) >= 0) {
        const int end = pem.indexOf("-----", at + begin.size());
        if (end < 0)
            break;
        const QByteArray found = pem.mid(at + begin.size(), end - at - begin.size());
        for (const char* candidate : labels) {
            if (found == candidate)
                label = found;
        }
        if (label.isEmpty())
            at = end;
    }
    if (label.isEmpty())
        return failure<Key>(error, QStringLiteral("no PEM block of a public or private key"));
    if (label == "ENCRYPTED PRIVATE KEY")
        return failure<Key>(error, QStringLiteral("the private key is encrypted; decrypt it first"));

    BIO* bio = BIO_new_mem_buf(pem.constData() + at, pem.size() - at);
    const bool isPublic = label == "PUBLIC KEY";
    EVP_PKEY* pkey = !bio       ? nullptr
                     : isPublic ? PEM_read_bio_PUBKEY(bio, nullptr, refusePassphrase, nullptr)
                                : PEM_read_bio_PrivateKey(bio, nullptr, refusePassphrase, nullptr);
    BIO_free(bio);
    if (!pkey) {
        const char* reason = ERR_reason_error_string(ERR_peek_last_error());
        Crypto::clearErrors();
        return failure<Key>(
            error, QStringLiteral("the \"%1\" block cannot be read%2")
                       .arg(QString::fromLatin1(label),
                            reason ? QStringLiteral(": ") + QString::fromLatin1(reason) : QString()));
    }
    auto data = std::make_shared<KeyData>();
    data->pkey.reset(pkey);
    data->isPrivate = !isPublic;
    const QString why = classify(pkey, data.get());
    if (!why.isEmpty())
        return failure<Key>(error, why);
    return Key(std::move(data));
}

std::optional<Key> Key::fromJwk(const QJsonObject& jwk, QString* error)
{
    Crypto::initialise();
    const QJsonValue kty = jwk.value(QLatin1String("kty"));
    if (!kty.isString())
        return failure<Key>(error, kty.isUndefined() ? QStringLiteral("\"kty\" is missing")
                                                     : QStringLiteral("\"kty\" is not a string"));
    QString why = usageProblem(jwk);
    const QJsonValue kid = jwk.value(QLatin1String("kid"));
    if (why.isEmpty() && !kid.isUndefined() && !kid.isString())
        why = QStringLiteral("\"kid\" is not a string");
    if (!why.isEmpty())
        return failure<Key>(error, why);

    auto data = std::make_shared<KeyData>();
    data->id = kid.toString();
    const QString type = kty.toString();
    if (type == QLatin1String("oct")) {
        QByteArray k;
        why = member(jwk, "k", &k, Length::Any);
        data->type = KeyType::Hmac;
        data->secret = std::make_unique<Crypto::HmacKey>(k);
    } else if (type == QLatin1String("RSA")) {
        why = rsaFromJwk(jwk, data.get());
        if (why.isEmpty())
            why = classify(data->pkey.get(), data.get());
    } else if (type == QLatin1String("EC")) {
        why = ecFromJwk(jwk, data.get());
    } else if (type == QLatin1String("OKP")) {
        why = okpFromJwk(jwk, data.get());
    } else {
        why = QStringLiteral("\"kty\" \"%1\" is not oct, RSA, EC or OKP").arg(type.left(20));
    }
    if (!why.isEmpty()) {
        Crypto::clearErrors();
        return failure<Key>(error, why);
    }

    const QJsonValue alg = jwk.value(QLatin1String("alg"));
    if (!alg.isUndefined()) {
        const auto algorithm = jwsAlgorithmFromName(alg.toString());
        if (!algorithm || *algorithm == JwsAlgorithm::None)
            return failure<Key>(error, QStringLiteral("\"alg\" is not a JWS signature algorithm"));
        why = keyMismatch(*data, *algorithm, false, true);
        if (!why.isEmpty())
            return failure<Key>(error, QStringLiteral("\"alg\" does not fit: ") + why);
        data->onlyFor = algorithm;
    }
    return Key(std::move(data));
}

QString Key::id() const
{
    return d->id;
}

bool Key::canSign() const
{
    return d->type == KeyType::Hmac || d->isPrivate;
}

KeySet::KeySet(std::shared_ptr<const Data> data) : d(std::move(data)) {}
KeySet::KeySet(const KeySet& other) = default;
KeySet::KeySet(KeySet&& other) noexcept = default;
KeySet& KeySet::operator=(const KeySet& other) = default;
KeySet& KeySet::operator=(KeySet&& other) noexcept = default;
KeySet::~KeySet() = default;

std::optional<KeySet> KeySet::fromJwks(const QByteArray& json, QString* error)
{
    QJsonParseError parseError;
    const QJsonDocument document = Json::parse(json, &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return failure<KeySet>(
            error,
            QStringLiteral("not JSON: %1 at offset %2").arg(parseError.errorString()).arg(parseError.offset));
    const QJsonValue keys = document.object().value(QLatin1String("keys"));
    if (!keys.isArray())
        return failure<KeySet>(error, QStringLiteral("not a JSON object with a \"keys\" array"));
    auto data = std::make_shared<Data>();
    const QJsonArray list = keys.toArray();
    for (int i = 0; i < list.size(); ++i) {
        const QJsonObject jwk = list.at(i).toObject();
        const QJsonValue kid = jwk.value(QLatin1String("kid"));
        const QString where = kid.isString()
                                  ? QStringLiteral("keys[%1] (kid \"%2\")").arg(i).arg(kid.toString())
                                  : QStringLiteral("keys[%1]").arg(i);
        QString why;
        if (auto key = list.at(i).isObject() ? Key::fromJwk(jwk, &why) : std::nullopt)
            data->keys.push_back(std::move(*key));
        else
            data->skipReasons << where + QStringLiteral(": ") +
                                     (why.isEmpty() ? QStringLiteral("not a JSON object") : why);
    }
    if (data->keys.empty())
        return failure<KeySet>(error, list.isEmpty() ? QStringLiteral("the \"keys\" array is empty")
                                                     : QStringLiteral("no usable key: ") +
                                                           data->skipReasons.join(QLatin1String("; ")));
    return KeySet(std::move(data));
}

int KeySet::size() const
{
    return static_cast<int>(d->keys.size());
}

int KeySet::skipped() const
{
    return d->skipReasons.size();
}

QStringList KeySet::skipReasons() const
{
    return d->skipReasons;
}

const std::vector<Key>& KeySet::keys() const
{
    return d->keys;
}

} // namespace jsonWebToken
