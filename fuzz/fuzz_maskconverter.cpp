// libFuzzer target: a display mask and a raw text (split at the first line
// feed; the first byte is the placeholder) merged and read back, then every
// position and character asked about. The coordinate masks take the whole
// input as raw text. Positions past the text must be reported, never read.
#include "fuzzsupport.h"

#include "coord/coord.h"
#include "coord/maskconverter.h"

namespace {

int inputPositions(const QString& mask)
{
    int count = 0;
    for (const QChar c : mask)
        count += QStringLiteral("#?ENXY").contains(c);
    return count;
}

void exercise(MaskConverter& converter, const QString& raw)
{
    converter.SetText(raw);
    const QString& mask = converter.GetMask();
    FUZZ_CHECK(converter.GetFormattedText().size() == mask.size());
    // Input positions take raw in order, then the placeholder.
    const int positions = inputPositions(mask);
    const QString expected =
        raw.left(positions) + QString(qMax(0, positions - int(raw.size())), converter.GetPlaceHolder().at(0));
    FUZZ_CHECK(converter.GetText() == expected);
    for (unsigned int pos = 0; pos < unsigned(mask.size()); ++pos) {
        converter.IsMaskChar(pos);
        for (const char c : {'0', '9', 'a', 'Z', 'e', 'W', 'n', 's', 'x', 'Y', '-', '\0', '\xff'}) {
            char out = 0;
            converter.GetReplacementChar(pos, c, out);
        }
    }
    // Past the text: reported, never read.
    char out = 0;
    FUZZ_CHECK(!converter.IsMaskChar(unsigned(mask.size())));
    FUZZ_CHECK(!converter.GetReplacementChar(unsigned(mask.size()) + 1, '0', out));
    converter.SetFormattedText(raw);
    converter.GetText();
    converter.IsMaskChar(unsigned(raw.size()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    if (size == 0)
        return 0;
    const QString all = fuzz::text(data + 1, size - 1);
    const int split = all.indexOf(QLatin1Char('\n'));
    MaskConverter converter;
    converter.SetMask(split < 0 ? all : all.left(split), char(data[0]));
    exercise(converter, split < 0 ? QString() : all.mid(split + 1));

    const Coord coord;
    for (int format = cfGeoDecimal; format <= cfQTHMaidenhead + 1; ++format) {
        MaskConverter masked;
        masked.SetMask(coord.GetMask(CoordFormat(format)), '_');
        exercise(masked, all);
    }
    return 0;
}
