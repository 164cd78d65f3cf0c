// libFuzzer target: any text read by PositionText::parse, detecting the
// notation and in each notation given. A text read gives a position in range
// (else an error text); what was read is written in every notation at several
// precisions, and every text format() writes must read back in its notation.
#include "fuzzsupport.h"

#include "coord/positiontext.h"

using namespace PositionText;

namespace {

constexpr Notation kNotations[] = {Notation::Decimal,    Notation::DMS,         Notation::UTM,
                                   Notation::MGRS,       Notation::RT90,        Notation::SWEREF99TM,
                                   Notation::Maidenhead, Notation::BritishGrid, Notation::IrishGrid};

void checkRead(const std::optional<Position>& position, const QString& error)
{
    FUZZ_CHECK(bool(position) == error.isEmpty());
    if (!position)
        return;
    FUZZ_CHECK(position->latitude >= -90.0 && position->latitude <= 90.0);
    FUZZ_CHECK(position->longitude >= -180.0 && position->longitude <= 180.0);
}

void writeEverywhere(const Position& position)
{
    for (const Notation notation : kNotations) {
        for (const int precision : {-1, 0, 1, 3, 10, 11}) {
            QString error;
            const QString text = format(position.latitude, position.longitude, notation, precision, &error);
            FUZZ_CHECK(text.isEmpty() != error.isEmpty());
            if (text.isEmpty())
                continue;
            const auto back = parse(text, notation, &error);
            FUZZ_CHECK(back);
            FUZZ_CHECK(back->notation == notation);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QString text = fuzz::text(data, size);
    QString error;
    const auto detected = parse(text, &error);
    checkRead(detected, error);
    if (detected)
        writeEverywhere(*detected);
    for (const Notation notation : kNotations) {
        const auto read = parse(text, notation, &error);
        checkRead(read, error);
        if (read)
            FUZZ_CHECK(read->notation == notation);
    }
    notationFromName(text);
    return 0;
}
