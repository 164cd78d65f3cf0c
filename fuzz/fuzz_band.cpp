// libFuzzer target: any bytes as the XML element a band is read from. Reading
// must not crash, and what was read must save and read back to an equal band.
#include "fuzzsupport.h"

#include "basetypes/band.h"

#include <QDomDocument>

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();

    QDomDocument doc;
    if (!doc.setContent(QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size))))
        return 0;
    QDomElement element = doc.documentElement();
    Band band;
    band.Read(doc, element);

    unsigned long channel = 0;
    band.FindFrequency(band.GetStartFreq() + band.GetStepWidth(), channel);
    bool above = false, below = false;
    band.GetNextFrequency(true, above, below, band.GetStartFreq(), 0.0, 3e9);

    QDomDocument copyDoc;
    QDomElement saved = copyDoc.createElement(QStringLiteral("Band"));
    band.Save(copyDoc, saved);
    Band reread;
    reread.Read(copyDoc, saved);
    FUZZ_CHECK(reread.GetName() == band.GetName());
    FUZZ_CHECK(reread.GetType() == band.GetType());
    // Saved numbers read back exactly.
    FUZZ_CHECK(fuzz::sameBits(reread.GetStepWidth(), band.GetStepWidth()) || std::isnan(band.GetStepWidth()));
    if (band.GetType() == 1)
        FUZZ_CHECK(fuzz::sameBits(reread.GetStartFreq(), band.GetStartFreq()) ||
                   std::isnan(band.GetStartFreq()));
    else
        FUZZ_CHECK(fuzz::sameBits(reread.GetOffset(), band.GetOffset()) || std::isnan(band.GetOffset()));
    return 0;
}
