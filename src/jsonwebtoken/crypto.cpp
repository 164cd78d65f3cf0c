#include "jsonwebtoken/crypto_p.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/crypto.h>
#include <openssl/ecdsa.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/params.h>
#include <openssl/rsa.h>

#include <array>
#include <atomic>
#include <cstring>

namespace jsonWebToken {
namespace Crypto {

namespace {

const char* digestName(Hash hash)
{
    switch (hash) {
    case Hash::Sha256:
        return "SHA256";
    case Hash::Sha384:
        return "SHA384";
    case Hash::Sha512:
        return "SHA512";
    }
    return "SHA256";
}

// Fetched once: looking an algorithm up by name on every call costs a lock
// and a hash-table probe inside OpenSSL.
const EVP_MD* digest(Hash hash)
{
    static const std::array<EVP_MD*, 3> digests = {EVP_MD_fetch(nullptr, "SHA256", nullptr),
                                                   EVP_MD_fetch(nullptr, "SHA384", nullptr),
                                                   EVP_MD_fetch(nullptr, "SHA512", nullptr)};
    return digests[static_cast<int>(hash)];
}

EVP_MAC* hmacMethod()
{
    static EVP_MAC* const method = EVP_MAC_fetch(nullptr, "HMAC", nullptr);
    return method;
}

EVP_MAC_CTX* newHmac(Hash hash, const QByteArray& key)
{
    EVP_MAC* method = hmacMethod();
    EVP_MAC_CTX* context = method ? EVP_MAC_CTX_new(method) : nullptr;
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_MAC_PARAM_DIGEST, const_cast<char*>(digestName(hash)), 0),
        OSSL_PARAM_construct_end()};
    // A null key would mean "keep the previous key"; the empty key is a real one.
    static const unsigned char noKey = 0;
    const unsigned char* bytes =
        key.isEmpty() ? &noKey : reinterpret_cast<const unsigned char*>(key.constData());
    if (!context || EVP_MAC_init(context, bytes, static_cast<size_t>(key.size()), parameters) != 1) {
        EVP_MAC_CTX_free(context);
        clearErrors();
        return nullptr;
    }
    return context;
}

// Each thread keeps the context it last used per hash. Starting the next MAC
// of the same key then only copies the prepared pads inside it, where a fresh
// copy of the key's context costs a dozen allocations. The contexts go with
// the thread, or when the thread turns to another key.
std::atomic<quint64> nextHmacKeyId{1};

// hmac() takes its key as bytes on every call (Token's callers hold no key
// object), so the slot it uses remembers those bytes under this owner.
constexpr quint64 bytesKeyOwner = ~quint64(0);

struct ThreadHmacContexts
{
    quint64 owner[3] = {};
    EVP_MAC_CTX* context[3] = {};
    QByteArray bytesKey[3];
    ~ThreadHmacContexts()
    {
        for (EVP_MAC_CTX* c : context)
            EVP_MAC_CTX_free(c);
        for (QByteArray& key : bytesKey)
            OPENSSL_cleanse(key.data(), static_cast<size_t>(key.size()));
    }
};
thread_local ThreadHmacContexts threadHmac;

bool finishHmac(EVP_MAC_CTX* context, unsigned char* out)
{
    size_t written = 0;
    return EVP_MAC_final(context, out, &written, maxHashSize) == 1;
}

const unsigned char* bytes(const char* data)
{
    return reinterpret_cast<const unsigned char*>(data);
}

// RFC 7518 section 3.4 sends R and S as two fixed-width big-endian numbers;
// OpenSSL reads and writes the DER SEQUENCE of two INTEGERs.
QByteArray derFromRaw(const QByteArray& raw, int componentSize)
{
    if (raw.size() != 2 * componentSize)
        return QByteArray();
    ECDSA_SIG* signature = ECDSA_SIG_new();
    BIGNUM* r = BN_bin2bn(bytes(raw.constData()), componentSize, nullptr);
    BIGNUM* s = BN_bin2bn(bytes(raw.constData()) + componentSize, componentSize, nullptr);
    if (!signature || !r || !s || ECDSA_SIG_set0(signature, r, s) != 1) {
        BN_free(r);
        BN_free(s);
        ECDSA_SIG_free(signature);
        return QByteArray();
    }
    QByteArray der;
    const int size = i2d_ECDSA_SIG(signature, nullptr);
    if (size > 0) {
        der.resize(size);
        auto* out = reinterpret_cast<unsigned char*>(der.data());
        i2d_ECDSA_SIG(signature, &out);
    }
    ECDSA_SIG_free(signature);
    return der;
}

QByteArray rawFromDer(const unsigned char* der, size_t size, int componentSize)
{
    ECDSA_SIG* signature = d2i_ECDSA_SIG(nullptr, &der, static_cast<long>(size));
    if (!signature)
        return QByteArray();
    const BIGNUM* r = nullptr;
    const BIGNUM* s = nullptr;
    ECDSA_SIG_get0(signature, &r, &s);
    QByteArray raw(2 * componentSize, '\0');
    auto* out = reinterpret_cast<unsigned char*>(raw.data());
    const bool fits = BN_bn2binpad(r, out, componentSize) == componentSize &&
                      BN_bn2binpad(s, out + componentSize, componentSize) == componentSize;
    ECDSA_SIG_free(signature);
    return fits ? raw : QByteArray();
}

struct MdContextDeleter
{
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};
using MdContext = std::unique_ptr<EVP_MD_CTX, MdContextDeleter>;

bool usePss(EVP_PKEY_CTX* context)
{
    return EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PSS_PADDING) == 1 &&
           EVP_PKEY_CTX_set_rsa_pss_saltlen(context, RSA_PSS_SALTLEN_DIGEST) == 1;
}

constexpr unsigned char invalid = 0xFF;

struct DecodeTable
{
    unsigned char value[256];
    constexpr DecodeTable() : value()
    {
        for (int i = 0; i < 256; ++i)
            value[i] = invalid;
        const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
        for (int i = 0; i < 64; ++i)
            value[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned char>(i);
    }
};
constexpr DecodeTable decodeTable;
constexpr char encodeAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

// Two characters for each 12 bits: half the lookups of one per 6 bits.
struct PairTable
{
    char pair[4096][2];
    constexpr PairTable() : pair()
    {
        for (int i = 0; i < 4096; ++i) {
            pair[i][0] = encodeAlphabet[i >> 6];
            pair[i][1] = encodeAlphabet[i & 63];
        }
    }
};
constexpr PairTable pairTable;

} // namespace

int hashSize(Hash hash)
{
    switch (hash) {
    case Hash::Sha256:
        return 32;
    case Hash::Sha384:
        return 48;
    case Hash::Sha512:
        return 64;
    }
    return 0;
}

void initialise()
{
    OPENSSL_init_crypto(0, nullptr);
}

void clearErrors()
{
    ERR_clear_error();
}

QByteArray hmac(Hash hash, const QByteArray& key, std::initializer_list<QByteArray> parts)
{
    const int index = static_cast<int>(hash);
    ThreadHmacContexts& cache = threadHmac;
    EVP_MAC_CTX*& context = cache.context[index];
    QByteArray& cachedKey = cache.bytesKey[index];
    // Setting the key costs two digests of its padded form and a dozen
    // allocations; a thread that uses the same key again only restarts from
    // the pads kept in its context.
    const bool sameKey =
        cache.owner[index] == bytesKeyOwner && context &&
        equalInConstantTime(cachedKey.constData(), cachedKey.size(), key.constData(), key.size());
    bool ok;
    if (sameKey) {
        ok = EVP_MAC_init(context, nullptr, 0, nullptr) == 1;
    } else {
        EVP_MAC_CTX_free(context);
        context = newHmac(hash, key);
        ok = context != nullptr;
        if (ok) {
            OPENSSL_cleanse(cachedKey.data(), static_cast<size_t>(cachedKey.size()));
            cachedKey = QByteArray(key.constData(), key.size()); // a deep copy, never shared
        }
    }
    for (const QByteArray& part : parts)
        ok = ok && EVP_MAC_update(context, bytes(part.constData()), static_cast<size_t>(part.size())) == 1;
    unsigned char out[maxHashSize];
    ok = ok && finishHmac(context, out);
    cache.owner[index] = ok ? bytesKeyOwner : 0;
    if (!ok) {
        clearErrors();
        return QByteArray();
    }
    return QByteArray(reinterpret_cast<const char*>(out), hashSize(hash));
}

HmacKey::HmacKey(const QByteArray& secret) : m_secret(secret), m_id(nextHmacKeyId++)
{
    initialise();
}

HmacKey::~HmacKey()
{
    for (EVP_MAC_CTX* context : m_prepared)
        EVP_MAC_CTX_free(context);
}

bool HmacKey::mac(Hash hash, const char* data, int size, unsigned char* out) const
{
    const int index = static_cast<int>(hash);
    std::call_once(m_once[index], [&] { m_prepared[index] = newHmac(hash, m_secret); });
    if (!m_prepared[index])
        return false;
    ThreadHmacContexts& cache = threadHmac;
    EVP_MAC_CTX*& context = cache.context[index];
    bool ok;
    if (cache.owner[index] == m_id) {
        // A null key restarts from the pads of the key already set.
        ok = EVP_MAC_init(context, nullptr, 0, nullptr) == 1;
    } else {
        EVP_MAC_CTX_free(context);
        context = EVP_MAC_CTX_dup(m_prepared[index]);
        ok = context != nullptr;
    }
    ok = ok && EVP_MAC_update(context, bytes(data), static_cast<size_t>(size)) == 1 &&
         finishHmac(context, out);
    cache.owner[index] = ok ? m_id : 0;
    if (!ok)
        clearErrors();
    return ok;
}

bool equalInConstantTime(const char* a, int aSize, const char* b, int bSize)
{
    return aSize == bSize && CRYPTO_memcmp(a, b, static_cast<size_t>(aSize)) == 0;
}

void PkeyDeleter::operator()(EVP_PKEY* key) const
{
    EVP_PKEY_free(key);
}

bool verify(EVP_PKEY* key, Scheme scheme, Hash hash, int componentSize, const char* data, int size,
            const QByteArray& signature)
{
    const QByteArray der = scheme == Scheme::Ecdsa ? derFromRaw(signature, componentSize) : signature;
    if (der.isEmpty())
        return false;
    MdContext context(EVP_MD_CTX_new());
    EVP_PKEY_CTX* keyContext = nullptr;
    const EVP_MD* md = scheme == Scheme::EdDsa ? nullptr : digest(hash);
    // A null digest would mean OpenSSL's default for the key, not the one named.
    const bool ok = context && (md || scheme == Scheme::EdDsa) &&
                    EVP_DigestVerifyInit(context.get(), &keyContext, md, nullptr, key) == 1 &&
                    (scheme != Scheme::RsaPss || usePss(keyContext)) &&
                    EVP_DigestVerify(context.get(), bytes(der.constData()), static_cast<size_t>(der.size()),
                                     bytes(data), static_cast<size_t>(size)) == 1;
    if (!ok)
        clearErrors();
    return ok;
}

QByteArray sign(EVP_PKEY* key, Scheme scheme, Hash hash, int componentSize, const char* data, int size)
{
    MdContext context(EVP_MD_CTX_new());
    EVP_PKEY_CTX* keyContext = nullptr;
    const EVP_MD* md = scheme == Scheme::EdDsa ? nullptr : digest(hash);
    size_t length = 0;
    bool ok = context && (md || scheme == Scheme::EdDsa) &&
              EVP_DigestSignInit(context.get(), &keyContext, md, nullptr, key) == 1 &&
              (scheme != Scheme::RsaPss || usePss(keyContext)) &&
              EVP_DigestSign(context.get(), nullptr, &length, bytes(data), static_cast<size_t>(size)) == 1;
    QByteArray signature;
    if (ok) {
        signature.resize(static_cast<int>(length));
        auto* out = reinterpret_cast<unsigned char*>(signature.data());
        ok = EVP_DigestSign(context.get(), out, &length, bytes(data), static_cast<size_t>(size)) == 1;
        signature.resize(static_cast<int>(length));
    }
    if (ok && scheme == Scheme::Ecdsa)
        signature = rawFromDer(bytes(signature.constData()), length, componentSize);
    if (!ok || signature.isEmpty()) {
        clearErrors();
        return QByteArray();
    }
    return signature;
}

bool decodeBase64Url(const char* text, int size, QByteArray* out, int* badOffset)
{
    const int tail = size % 4;
    out->resize(size / 4 * 3 + (tail > 1 ? tail - 1 : 0));
    auto* o = reinterpret_cast<unsigned char*>(out->data());
    const auto* in = reinterpret_cast<const unsigned char*>(text);
    int i = 0;
    for (; i + 4 <= size; i += 4) {
        const unsigned a = decodeTable.value[in[i]], b = decodeTable.value[in[i + 1]],
                       c = decodeTable.value[in[i + 2]], d = decodeTable.value[in[i + 3]];
        // Valid values have six bits; only the invalid marker sets the seventh.
        if ((a | b | c | d) & 0x40) {
            int k = i;
            while (decodeTable.value[in[k]] != invalid)
                ++k;
            *badOffset = k;
            return false;
        }
        const unsigned bits = a << 18 | b << 12 | c << 6 | d;
        *o++ = static_cast<unsigned char>(bits >> 16);
        *o++ = static_cast<unsigned char>(bits >> 8);
        *o++ = static_cast<unsigned char>(bits);
    }
    if (tail == 1) {
        *badOffset = i; // a lone character carries only six bits
        return false;
    }
    if (tail) {
        unsigned bits = 0;
        for (int k = 0; k < tail; ++k) {
            const unsigned value = decodeTable.value[in[i + k]];
            if (value == invalid) {
                *badOffset = i + k;
                return false;
            }
            bits = bits << 6 | value;
        }
        // Two characters carry 12 bits for one byte, three carry 18 for two:
        // the bits left over must be zero.
        const unsigned spare = tail == 2 ? 4 : 2;
        if (bits & ((1u << spare) - 1)) {
            *badOffset = size - 1;
            return false;
        }
        bits >>= spare;
        if (tail == 3)
            *o++ = static_cast<unsigned char>(bits >> 8);
        *o++ = static_cast<unsigned char>(bits);
    }
    return true;
}

void appendBase64Url(QByteArray& out, const char* data, int size)
{
    const int start = out.size();
    out.resize(start + (size / 3) * 4 + (size % 3 ? size % 3 + 1 : 0));
    char* o = out.data() + start;
    const auto* in = reinterpret_cast<const unsigned char*>(data);
    int i = 0;
    for (; i + 3 <= size; i += 3) {
        const unsigned bits = unsigned(in[i]) << 16 | unsigned(in[i + 1]) << 8 | in[i + 2];
        std::memcpy(o, pairTable.pair[bits >> 12], 2);
        std::memcpy(o + 2, pairTable.pair[bits & 4095], 2);
        o += 4;
    }
    if (size - i == 1) {
        const unsigned bits = unsigned(in[i]) << 16;
        *o++ = encodeAlphabet[bits >> 18];
        *o++ = encodeAlphabet[(bits >> 12) & 63];
    } else if (size - i == 2) {
        const unsigned bits = unsigned(in[i]) << 16 | unsigned(in[i + 1]) << 8;
        *o++ = encodeAlphabet[bits >> 18];
        *o++ = encodeAlphabet[(bits >> 12) & 63];
        *o++ = encodeAlphabet[(bits >> 6) & 63];
    }
}

} // namespace Crypto
} // namespace jsonWebToken
