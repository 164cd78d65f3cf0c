// libFuzzer target: any text read in every coordinate notation (and in
// numbers that are no notation), as a raw text (SetText) and as a formatted
// one (SetString), and written back in that notation; the last position read
// is written in all of them, and so is the position the first 16 bytes make.
// Nothing may crash or hang, and whatever is read must be a valid position.
#include "fuzzsupport.h"

#include "coord/coord.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QString text = fuzz::text(data, size);
    constexpr int first = cfGeoDecimal - 1;
    constexpr int last = cfQTHMaidenhead + 1;
    Coord coord;
    for (int format = first; format <= last; ++format) {
        for (const bool formatted : {false, true}) {
            if (formatted)
                coord.SetString(text, CoordFormat(format));
            else
                coord.SetText(text, CoordFormat(format));
            FUZZ_CHECK(coord.IsValid());
            coord.GetText(CoordFormat(format));
            coord.GetString(CoordFormat(format));
        }
    }
    for (int format = first; format <= last; ++format) {
        coord.GetText(CoordFormat(format));
        coord.GetString(CoordFormat(format));
    }
    // The first 16 bytes as any position (NaN, infinite, far out of range) written in every notation.
    if (size >= 2 * sizeof(double)) {
        double lon = 0.0, lat = 0.0;
        std::memcpy(&lon, data, sizeof lon);
        std::memcpy(&lat, data + sizeof lon, sizeof lat);
        const Coord any(lon, lat);
        for (int format = first; format <= last; ++format) {
            any.GetText(CoordFormat(format));
            any.GetString(CoordFormat(format));
        }
    }
    return 0;
}
