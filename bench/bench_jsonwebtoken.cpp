// HS256 tokens with five claims, made and checked by KvBase and by libjwt
// (jansson + OpenSSL): "sign" builds the claims, signs and serialises;
// "verify" parses, checks the expiry and the signature. Token is the
// applications' own format, sign() and Verifier the standard one.
// RS256 and ES256 verification is set against OpenSSL's EVP_DigestVerify over
// the same signing input, which is all the cryptography a verify needs.
#include "jsonwebtoken/token.h"
#include "jsonwebtoken/verifier.h"

#include <benchmark/benchmark.h>
#include <jwt.h>
#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/ecdsa.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include <cstdlib>
#include <cstring>

using namespace jsonWebToken;

namespace {

const QByteArray key("a 32-byte key for the benchmarks");
const long issuedAt = 1700000000;
const long expires = issuedAt + 3600;

QByteArray kvbaseToken()
{
    Token token;
    token.setPayload(Payload()
                         .with<Claim::Issuer>(QStringLiteral("kvbase-bench"))
                         .with<Claim::Subject>(QStringLiteral("monitor-7"))
                         .with<Claim::JwtId>(QStringLiteral("0f4c2a9e"))
                         .with<Claim::IssuedAt>(QDateTime::fromSecsSinceEpoch(issuedAt, Qt::UTC))
                         .with<Claim::ExpirationTime>(QDateTime::fromSecsSinceEpoch(expires, Qt::UTC)));
    token.signWith(key, SignatureAlgorithm::HS256);
    return token.value();
}

char* libjwtToken()
{
    jwt_t* jwt = nullptr;
    jwt_new(&jwt);
    jwt_add_grant(jwt, "iss", "kvbase-bench");
    jwt_add_grant(jwt, "sub", "monitor-7");
    jwt_add_grant(jwt, "jti", "0f4c2a9e");
    jwt_add_grant_int(jwt, "iat", issuedAt);
    jwt_add_grant_int(jwt, "exp", expires);
    jwt_set_alg(jwt, JWT_ALG_HS256, reinterpret_cast<const unsigned char*>(key.constData()), key.size());
    char* text = jwt_encode_str(jwt);
    jwt_free(jwt);
    return text;
}

void KvBase_SignHS256(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(kvbaseToken());
}

void LibJwt_SignHS256(benchmark::State& state)
{
    for (auto _ : state) {
        char* text = libjwtToken();
        benchmark::DoNotOptimize(text);
        std::free(text);
    }
}

void KvBase_VerifyHS256(benchmark::State& state)
{
    const QByteArray text = kvbaseToken();
    const QDateTime now = QDateTime::fromSecsSinceEpoch(issuedAt + 60, Qt::UTC);
    for (auto _ : state) {
        const auto token = Token::fromValue(text);
        if (!token || token->verify(key, SignatureAlgorithm::HS256, now) != VerificationError::NoError) {
            state.SkipWithError("KvBase rejected its own token");
            break;
        }
    }
}

void LibJwt_VerifyHS256(benchmark::State& state)
{
    char* text = libjwtToken();
    const long now = issuedAt + 60;
    for (auto _ : state) {
        jwt_t* jwt = nullptr;
        const int error =
            jwt_decode(&jwt, text, reinterpret_cast<const unsigned char*>(key.constData()), key.size());
        const bool valid = error == 0 && now < jwt_get_grant_int(jwt, "exp");
        jwt_free(jwt);
        if (!valid) {
            state.SkipWithError("libjwt rejected its own token");
            break;
        }
    }
    std::free(text);
}

// Not timed: both libraries write sorted compact JSON, so each must accept
// the other's token; a benchmark of tokens that do not interoperate would
// compare different work.
void KvBase_VerifyLibJwtToken(benchmark::State& state)
{
    char* text = libjwtToken();
    const QByteArray bytes(text);
    std::free(text);
    const QDateTime now = QDateTime::fromSecsSinceEpoch(issuedAt + 60, Qt::UTC);
    for (auto _ : state) {
        const auto token = Token::fromValue(bytes);
        if (!token || token->verify(key, SignatureAlgorithm::HS256, now) != VerificationError::NoError) {
            state.SkipWithError("KvBase rejected the libjwt token");
            break;
        }
    }
}

QJsonObject fiveClaims()
{
    return QJsonObject{{QStringLiteral("iss"), QStringLiteral("kvbase-bench")},
                       {QStringLiteral("sub"), QStringLiteral("monitor-7")},
                       {QStringLiteral("jti"), QStringLiteral("0f4c2a9e")},
                       {QStringLiteral("iat"), double(issuedAt)},
                       {QStringLiteral("exp"), double(expires)}};
}

const jsonWebToken::Key& hmacKey()
{
    static const auto secret = jsonWebToken::Key::hmacSecret(key);
    return secret;
}

void KvBase_JwsSignHS256(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(jsonWebToken::sign(fiveClaims(), JwsAlgorithm::HS256, hmacKey()));
}

// The signing call alone, claims built beforehand, on both sides.
void KvBase_JwsSignPreparedHS256(benchmark::State& state)
{
    const QJsonObject claims = fiveClaims();
    for (auto _ : state)
        benchmark::DoNotOptimize(jsonWebToken::sign(claims, JwsAlgorithm::HS256, hmacKey()));
}

void LibJwt_SignPreparedHS256(benchmark::State& state)
{
    jwt_t* jwt = nullptr;
    jwt_new(&jwt);
    jwt_add_grant(jwt, "iss", "kvbase-bench");
    jwt_add_grant(jwt, "sub", "monitor-7");
    jwt_add_grant(jwt, "jti", "0f4c2a9e");
    jwt_add_grant_int(jwt, "iat", issuedAt);
    jwt_add_grant_int(jwt, "exp", expires);
    jwt_set_alg(jwt, JWT_ALG_HS256, reinterpret_cast<const unsigned char*>(key.constData()), key.size());
    for (auto _ : state) {
        char* text = jwt_encode_str(jwt);
        benchmark::DoNotOptimize(text);
        std::free(text);
    }
    jwt_free(jwt);
}

void KvBase_JwsVerifyHS256(benchmark::State& state)
{
    const QByteArray text = jsonWebToken::sign(fiveClaims(), JwsAlgorithm::HS256, hmacKey());
    const Verifier verifier = Verifier().allow(JwsAlgorithm::HS256, hmacKey());
    const QDateTime now = QDateTime::fromSecsSinceEpoch(issuedAt + 60, Qt::UTC);
    for (auto _ : state) {
        if (!verifier.verify(text, now).ok()) {
            state.SkipWithError("KvBase rejected its own token");
            break;
        }
    }
}

// A new key pair in PEM, for Key::fromPem and for OpenSSL alike.
QByteArray privatePem(EVP_PKEY* pkey)
{
    BIO* bio = BIO_new(BIO_s_mem());
    PEM_write_bio_PrivateKey(bio, pkey, nullptr, nullptr, 0, nullptr, nullptr);
    char* data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    const QByteArray pem(data, int(size));
    BIO_free(bio);
    return pem;
}

QByteArray derFromRaw(const QByteArray& raw)
{
    const int half = raw.size() / 2;
    const auto* bytes = reinterpret_cast<const unsigned char*>(raw.constData());
    ECDSA_SIG* signature = ECDSA_SIG_new();
    ECDSA_SIG_set0(signature, BN_bin2bn(bytes, half, nullptr), BN_bin2bn(bytes + half, half, nullptr));
    QByteArray der(i2d_ECDSA_SIG(signature, nullptr), '\0');
    auto* out = reinterpret_cast<unsigned char*>(der.data());
    i2d_ECDSA_SIG(signature, &out);
    ECDSA_SIG_free(signature);
    return der;
}

struct PublicKeyCase
{
    EVP_PKEY* pkey;
    QByteArray token;
    QByteArray signingInput;
    QByteArray signature; // as OpenSSL takes it (DER for ECDSA)
    Verifier verifier;
};

PublicKeyCase makeCase(JwsAlgorithm algorithm, EVP_PKEY* pkey)
{
    const auto key = jsonWebToken::Key::fromPem(privatePem(pkey)).value();
    PublicKeyCase c{
        pkey, jsonWebToken::sign(fiveClaims(), algorithm, key), {}, {}, Verifier().allow(algorithm, key)};
    const int dot = c.token.lastIndexOf('.');
    c.signingInput = c.token.left(dot);
    c.signature = QByteArray::fromBase64(c.token.mid(dot + 1), QByteArray::Base64UrlEncoding);
    if (algorithm == JwsAlgorithm::ES256)
        c.signature = derFromRaw(c.signature);
    return c;
}

const PublicKeyCase& rs256()
{
    static const PublicKeyCase c = makeCase(JwsAlgorithm::RS256, EVP_RSA_gen(2048));
    return c;
}

const PublicKeyCase& es256()
{
    static const PublicKeyCase c = makeCase(JwsAlgorithm::ES256, EVP_EC_gen("P-256"));
    return c;
}

void verifyWithKvBase(benchmark::State& state, const PublicKeyCase& c)
{
    const QDateTime now = QDateTime::fromSecsSinceEpoch(issuedAt + 60, Qt::UTC);
    for (auto _ : state) {
        if (!c.verifier.verify(c.token, now).ok()) {
            state.SkipWithError("KvBase rejected its own token");
            break;
        }
    }
}

void verifyWithOpenSsl(benchmark::State& state, const PublicKeyCase& c)
{
    const auto* input = reinterpret_cast<const unsigned char*>(c.signingInput.constData());
    const auto* signature = reinterpret_cast<const unsigned char*>(c.signature.constData());
    for (auto _ : state) {
        EVP_MD_CTX* context = EVP_MD_CTX_new();
        const bool valid = EVP_DigestVerifyInit(context, nullptr, EVP_sha256(), nullptr, c.pkey) == 1 &&
                           EVP_DigestVerify(context, signature, size_t(c.signature.size()), input,
                                            size_t(c.signingInput.size())) == 1;
        EVP_MD_CTX_free(context);
        if (!valid) {
            state.SkipWithError("OpenSSL rejected the token");
            break;
        }
    }
}

void KvBase_JwsVerifyRS256(benchmark::State& state)
{
    verifyWithKvBase(state, rs256());
}

void OpenSsl_DigestVerifyRS256(benchmark::State& state)
{
    verifyWithOpenSsl(state, rs256());
}

void KvBase_JwsVerifyES256(benchmark::State& state)
{
    verifyWithKvBase(state, es256());
}

void OpenSsl_DigestVerifyES256(benchmark::State& state)
{
    verifyWithOpenSsl(state, es256());
}

} // namespace

// Names after bench_table.py's convention, BM_<operation>/KvBase beside its peer.
BENCHMARK(KvBase_SignHS256)->Name("BM_HS256_sign_Token_five_claims/KvBase");
BENCHMARK(LibJwt_SignHS256)->Name("BM_HS256_sign_Token_five_claims/libjwt");
BENCHMARK(KvBase_VerifyHS256)->Name("BM_HS256_parse_verify_Token/KvBase");
BENCHMARK(LibJwt_VerifyHS256)->Name("BM_HS256_parse_verify_Token/libjwt");
BENCHMARK(KvBase_VerifyLibJwtToken)->Name("BM_HS256_parse_verify_libjwt_token/KvBase");
BENCHMARK(KvBase_JwsSignHS256)->Name("BM_HS256_sign_five_claims/KvBase");
BENCHMARK(LibJwt_SignHS256)->Name("BM_HS256_sign_five_claims/libjwt");
BENCHMARK(KvBase_JwsSignPreparedHS256)->Name("BM_HS256_sign_prepared_claims/KvBase");
BENCHMARK(LibJwt_SignPreparedHS256)->Name("BM_HS256_sign_prepared_claims/libjwt");
BENCHMARK(KvBase_JwsVerifyHS256)->Name("BM_HS256_Verifier_verify/KvBase");
BENCHMARK(LibJwt_VerifyHS256)->Name("BM_HS256_Verifier_verify/libjwt");
BENCHMARK(KvBase_JwsVerifyRS256)->Name("BM_RS256_verify/KvBase");
BENCHMARK(OpenSsl_DigestVerifyRS256)->Name("BM_RS256_verify/OpenSSL");
BENCHMARK(KvBase_JwsVerifyES256)->Name("BM_ES256_verify/KvBase");
BENCHMARK(OpenSsl_DigestVerifyES256)->Name("BM_ES256_verify/OpenSSL");

BENCHMARK_MAIN();
