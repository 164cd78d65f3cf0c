// libFuzzer target: any text in every coordinate notation, as a grid
// reference and as an RT90 text. Nothing may crash or hang, and whatever is
// read must be a valid position.
#include "coord/coord.h"
#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"
#include "errorhandling/errorhandler.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    ErrorHandler::Instance().SetMessageMask(0);
    QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));

    for (int format = cfGeoDecimal; format <= cfQTHMaidenhead; ++format) {
        const auto f = static_cast<CoordFormat>(format);
        Coord coord;
        coord.SetText(text, f);
        if (!coord.IsValid())
            std::abort();
        coord.SetString(text, f);
        if (!coord.IsValid())
            std::abort();
        coord.GetString(f);
    }

    const CMercCoordTrans grids;
    for (int grid : {1, 2, 4, -4})
        grids.GR2LL(true, text, grid);
    double lon = 0.0, lat = 0.0;
    StringToCoord(text, &lon, &lat, TCoordFormatRT90);
    return 0;
}
