// libFuzzer target: any bytes as the JSON of a token header and payload (the
// input is encoded to a segment first, so the fuzzer works on the JSON
// itself) and as a segment as it stands. Every parameter and claim is read,
// and what was read must encode to a segment that reads back to a part which
// encodes to that same segment (where the segment avoids "-" and "_", which
// the reader skips by design). Equality of the parts themselves is too much:
// Qt writes integers beyond 2^53 as doubles.
#include "fuzzsupport.h"

#include "jsonwebtoken/header.h"
#include "jsonwebtoken/payload.h"

using namespace jsonWebToken;

namespace {

template <typename Part>
void readBack(const Part& part)
{
    const QByteArray segment = part.value();
    if (segment.contains('-') || segment.contains('_'))
        return;
    const auto again = Part::fromValue(segment);
    FUZZ_CHECK(again);
    FUZZ_CHECK(again->value() == segment);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QByteArray json = fuzz::bytes(data, size);
    const QByteArray encoded = json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    for (const QByteArray& segment : {encoded, json}) {
        if (const auto header = Header::fromValue(segment)) {
            for (const auto parameter : HeaderParameter::values())
                header->get(parameter);
            header->getParam(QStringLiteral("alg"));
            readBack(*header);
        }
        if (const auto payload = Payload::fromValue(segment)) {
            for (const auto claim : Claim::values())
                payload->get(claim);
            readBack(*payload);
        }
    }
    return 0;
}
