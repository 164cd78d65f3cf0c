// libFuzzer target: any text through fromString of every enumeration struct
// (units, the empty enumeration, the token vocabulary), and the unit steps
// within sets of allowed units chosen by the input. fromString must keep its
// one rule: a match is a value whose text starts with the first word, else
// the first value with ok false.
#include "fuzzsupport.h"

#include "basetypes/enumhelpers.h"
#include "basetypes/units.h"
#include "jsonwebtoken/enums.h"

namespace {

QString firstWord(const QString& text)
{
    const QString trimmed = text.trimmed();
    int end = 0;
    while (end < trimmed.size() && !trimmed.at(end).isSpace())
        ++end;
    return trimmed.left(end);
}

template <typename Enum>
void fromString(const QString& text)
{
    bool ok = true;
    const auto value = Enum::fromString(text, &ok);
    Enum::fromString(text, nullptr);
    const auto& all = Enum::values();
    if (!ok) {
        FUZZ_CHECK(all.isEmpty() || value == all.first());
        return;
    }
    FUZZ_CHECK(all.contains(value));
    FUZZ_CHECK(Enum::toString(value).startsWith(firstWord(text), Qt::CaseInsensitive));
}

template <typename Enum>
void steps(const std::uint8_t* data, std::size_t size)
{
    const auto& all = Enum::values();
    QList<typename Enum::Type> allowed;
    for (std::size_t i = 0; i < size && i < 8; ++i)
        allowed << typename Enum::Type(data[i] % 8); // also values outside values()
    for (const auto value : all) {
        const auto up = Enum::successor(value, allowed);
        const auto down = Enum::predecessor(value, allowed);
        FUZZ_CHECK(up == value || (allowed.contains(up) && all.indexOf(up) > all.indexOf(value)));
        FUZZ_CHECK(down == value || (allowed.contains(down) && all.indexOf(down) < all.indexOf(value)));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QString text = fuzz::text(data, size);
    fromString<FrequencyUnit>(text);
    fromString<TimeUnit>(text);
    fromString<EnumHelpers::EmptyEnum>(text);
    fromString<jsonWebToken::SignatureAlgorithm>(text);
    fromString<jsonWebToken::HeaderParameter>(text);
    fromString<jsonWebToken::Claim>(text);
    fromString<jsonWebToken::VerificationError>(text);
    steps<FrequencyUnit>(data, size);
    steps<TimeUnit>(data, size);
    return 0;
}
