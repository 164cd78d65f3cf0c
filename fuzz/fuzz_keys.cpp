// libFuzzer target: any bytes as PEM text (Key::fromPem), as a JWK Set
// (KeySet::fromJwks) and as one JWK (Key::fromJwk, reached through a set of
// that one key: the harness would otherwise need Qt's JSON parser, which
// leaks on repeated names). Every key read is tried on a token; a key that can
// sign must verify what it signed.
#include "fuzzsupport.h"

#include "jsonwebtoken/verifier.h"

using namespace jsonWebToken;

namespace {

constexpr JwsAlgorithm kAlgorithms[] = {JwsAlgorithm::HS256, JwsAlgorithm::RS256, JwsAlgorithm::PS384,
                                        JwsAlgorithm::ES256, JwsAlgorithm::ES384, JwsAlgorithm::ES512,
                                        JwsAlgorithm::EdDSA};

void use(const Key& key)
{
    key.id();
    const QJsonObject claims{{"sub", "fuzz"}};
    for (const JwsAlgorithm algorithm : kAlgorithms) {
        const Verifier verifier = Verifier().allow(algorithm, key).allowShortHmacKeys();
        // RFC 7515 appendix A.1.
        verifier.verify(
            "eyJ0eXAiOiJKV1QiLA0KICJhbGciOiJIUzI1NiJ9.eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQog"
            "Imh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0cnVlfQ.dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk");
        if (!key.canSign())
            continue;
        QString error;
        const QByteArray token = sign(claims, algorithm, key, {}, &error);
        if (!token.isEmpty())
            FUZZ_CHECK(verifier.verify(token).ok());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QByteArray text = fuzz::bytes(data, size);
    QString error;
    if (const auto key = Key::fromPem(text, &error))
        use(*key);
    for (const QByteArray& set : {text, "{\"keys\":[" + text + "]}"}) {
        if (const auto keys = KeySet::fromJwks(set, &error)) {
            keys->skipReasons();
            FUZZ_CHECK(keys->size() == int(keys->keys().size()));
            for (const Key& key : keys->keys())
                use(key);
        }
    }
    return 0;
}
