// libFuzzer target: any bytes as a compact JWS for a verifier that allows
// HMAC, ECDSA and "none", as a JWK, as a JWK Set and as PEM text. Beyond "no
// crash", a token that verifies must verify again the same way, and any
// payload the verifier parsed must survive sign() and verify() unchanged.
// Qt 5.15's QJsonDocument::fromJson leaks a few bytes on some invalid JSON,
// so run with -detect_leaks=0 (ASAN_OPTIONS=detect_leaks=0 for the exit check).
#include "jsonwebtoken/verifier.h"

#include <QJsonDocument>

#include <cstdint>
#include <cstdlib>

using namespace jsonWebToken;

namespace {

const Key& secret()
{
    static const Key key = Key::hmacSecret(QByteArray(32, 'f'));
    return key;
}

const Verifier& verifier()
{
    // RFC 7515 appendix A.3's public key.
    static const QJsonObject jwk{
        {QStringLiteral("kty"), QStringLiteral("EC")},
        {QStringLiteral("crv"), QStringLiteral("P-256")},
        {QStringLiteral("x"), QStringLiteral("f83OJ3D2xF1Bg8vub9tLe1gHMzV76e8Tus9uPHvRVEU")},
        {QStringLiteral("y"), QStringLiteral("x_FEzRu9m36HLN_tue659LNpXW6pCyStikYjKIWI5a0")}};
    static const Verifier verifier = Verifier()
                                         .allow(JwsAlgorithm::HS256, secret())
                                         .allow(JwsAlgorithm::ES256, Key::fromJwk(jwk).value())
                                         .allowNone()
                                         .leeway(std::chrono::seconds(30))
                                         .issuer({QStringLiteral("fuzz")})
                                         .type(QStringLiteral("JWT"));
    return verifier;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray text = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);

    const Verifier::Result result = verifier().verify(text, now);
    if (result.ok() && verifier().verify(text, now).error != VerificationError::NoError)
        std::abort();
    if (!result.payload.isEmpty()) {
        const QByteArray again = sign(result.payload, JwsAlgorithm::HS256, secret());
        const Verifier::Result check = Verifier().allow(JwsAlgorithm::HS256, secret()).verify(again, now);
        if (check.payload != result.payload)
            std::abort();
    }

    const QJsonObject object = QJsonDocument::fromJson(text).object();
    if (const auto key = Key::fromJwk(object))
        Verifier().allow(JwsAlgorithm::ES256, *key).allow(JwsAlgorithm::EdDSA, *key).verify(text, now);
    if (const auto keys = KeySet::fromJwks(text))
        Verifier().allow(JwsAlgorithm::RS256, *keys).verify(text, now);
    Key::fromPem(text);
    return 0;
}
