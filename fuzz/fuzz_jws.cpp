// libFuzzer target: any bytes as a compact JWS, checked by a verifier that
// holds its keys one by one (an HMAC secret, the public EC key of RFC 7515
// appendix A.3, "none") and by one that takes the same keys from a JWK Set.
// A token must verify the same way twice, and any payload a verifier parsed
// must survive sign() and verify() unchanged.
#include "fuzzsupport.h"

#include "jsonwebtoken/verifier.h"

using namespace jsonWebToken;

namespace {

const Key& secret()
{
    static const Key key = Key::hmacSecret(QByteArray(32, 'f'));
    return key;
}

// The EC key of RFC 7515 appendix A.3 and the secret above (32 bytes "f").
const QByteArray kJwks = R"({"keys":[
    {"kty":"EC","crv":"P-256","x":"f83OJ3D2xF1Bg8vub9tLe1gHMzV76e8Tus9uPHvRVEU",
     "y":"x_FEzRu9m36HLN_tue659LNpXW6pCyStikYjKIWI5a0"},
    {"kty":"oct","k":"ZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmZmY"}]})";

Verifier checks(Verifier verifier)
{
    return verifier.allowNone().leeway(std::chrono::seconds(30)).issuer({"fuzz"}).type("JWT");
}

const Verifier& withKeys()
{
    static const KeySet keys = KeySet::fromJwks(kJwks).value();
    static const Verifier verifier = checks(
        Verifier().allow(JwsAlgorithm::HS256, secret()).allow(JwsAlgorithm::ES256, keys.keys().front()));
    return verifier;
}

const Verifier& withKeySet()
{
    static const KeySet keys = KeySet::fromJwks(kJwks).value();
    static const Verifier verifier =
        checks(Verifier().allow(JwsAlgorithm::HS256, keys).allow(JwsAlgorithm::ES256, keys));
    return verifier;
}

void check(const Verifier& verifier, const QByteArray& token, const QDateTime& now)
{
    const Verifier::Result result = verifier.verify(token, now);
    FUZZ_CHECK(verifier.verify(token, now).error == result.error);
    if (!result.payload.isEmpty()) {
        const QByteArray again = sign(result.payload, JwsAlgorithm::HS256, secret());
        const Verifier::Result check = Verifier().allow(JwsAlgorithm::HS256, secret()).verify(again, now);
        FUZZ_CHECK(check.payload == result.payload);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QByteArray token = fuzz::bytes(data, size);
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
    check(withKeys(), token, now);
    check(withKeySet(), token, now);
    withKeys().verify(token);
    return 0;
}
