// libFuzzer target: any bytes as a compact token, as a header or payload
// segment, and as serialised content. Beyond "no crash", it checks that a
// parsed token re-serialises to text that parses to a token which serialises
// to that same text (where the segments avoid "-" and "_", which the reader
// skips by design), and that a token never verifies with a key it was not
// signed with. (The token read back need not equal the first: a number beyond
// 2^53 written with a fraction, "1.7e18" say, is held as the integer nearest
// the double but written in the double's shortest form.)
#include "fuzzsupport.h"

#include "jsonwebtoken/contentserializer.h"
#include "jsonwebtoken/token.h"

#include <boost/optional/bad_optional_access.hpp>

using namespace jsonWebToken;

namespace {

void readEverything(const Payload& payload)
{
    for (const auto claim : Claim::values())
        payload.get(claim);
}

void readEverything(const Header& header)
{
    for (int parameter = HeaderParameter::Algorithm; parameter <= HeaderParameter::TokenType; ++parameter)
        header.get(HeaderParameter::Type(parameter));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QByteArray text = QByteArray::fromRawData(reinterpret_cast<const char*>(data), int(size));

    if (const auto header = Header::fromValue(text))
        readEverything(*header);
    if (const auto payload = Payload::fromValue(text))
        readEverything(*payload);

    const auto token = Token::fromValue(text);
    if (!token)
        return 0;
    readEverything(token->header());
    readEverything(token->payload());
    const QByteArray again = token->value();
    const QByteArray signedPart = again.left(again.lastIndexOf('.'));
    const bool readsBack = !signedPart.contains('-') && !signedPart.contains('_');
    if (readsBack) {
        const auto reread = Token::fromValue(again);
        FUZZ_CHECK(reread);
        FUZZ_CHECK(reread->value() == again);
    }
    try {
        const QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
        token->verify(QByteArrayLiteral("fuzz"), SignatureAlgorithm::HS256, now);
        if (token->verifySignature(QByteArrayLiteral("fuzz"), SignatureAlgorithm::HS512))
            std::abort();
        Token copy = *token;
        copy.signWith(QByteArrayLiteral("key"), boost::none);
        const auto algorithm = copy.header().get<HeaderParameter::Algorithm>();
        if (copy.verify(QByteArrayLiteral("key"), *algorithm, boost::none) != VerificationError::NoError)
            std::abort();
    } catch (const boost::bad_optional_access&) {
        // A header without "alg" cannot be signed or checked.
    }
    if (readsBack) {
        const auto carried = Helpers::tokenFromContent(Helpers::tokenToContent(*token));
        FUZZ_CHECK(carried);
        FUZZ_CHECK(carried->value() == again);
    }
    return 0;
}
