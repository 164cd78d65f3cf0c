// HS256 tokens with five claims, made and checked by KvBase and by libjwt
// (jansson + OpenSSL): "sign" builds the claims, signs and serialises;
// "verify" parses, checks the expiry and the signature.
#include "jsonwebtoken/token.h"

#include <benchmark/benchmark.h>
#include <jwt.h>

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

} // namespace

BENCHMARK(KvBase_SignHS256);
BENCHMARK(LibJwt_SignHS256);
BENCHMARK(KvBase_VerifyHS256);
BENCHMARK(LibJwt_VerifyHS256);
BENCHMARK(KvBase_VerifyLibJwtToken);

BENCHMARK_MAIN();
