// libFuzzer target: any text as a grid reference in every grid number (MGRS,
// British, Irish, the national grids, both MGRS letterings) and as the text of
// every notation of StringToCoord. Both GR2LL faces must agree exactly.
#include "fuzzsupport.h"

#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QString text = fuzz::text(data, size);
    const CMercCoordTrans grids;
    for (int grid = -19; grid <= 19; ++grid) {
        const double lat = grids.GR2LL(true, text, grid);
        const double lon = grids.GR2LL(false, text, grid);
        double bothLat = 0.0, bothLon = 0.0;
        const bool read = grids.GR2LL(text, grid, bothLat, bothLon);
        FUZZ_CHECK(fuzz::sameBits(lat, bothLat));
        FUZZ_CHECK(fuzz::sameBits(lon, bothLon));
        FUZZ_CHECK(read || (bothLat == -1.0 && bothLon == -1.0));
    }
    for (int format = 0; format <= 7; ++format) {
        QString copy = text;
        double lon = 1234.5, lat = 1234.5;
        if (StringToCoord(copy, &lon, &lat, TCoordFormat(format)) != 0)
            FUZZ_CHECK(lon == 1234.5 && lat == 1234.5); // untouched on failure
    }
    return 0;
}
