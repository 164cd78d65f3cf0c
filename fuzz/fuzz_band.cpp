// libFuzzer target: any bytes as the XML element a band is read from. Reading
// must not crash, and what was read must save and read back to an equal band.
#include "basetypes/band.h"
#include "errorhandling/errorhandler.h"

#include <QDomDocument>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Traces would pile up in the queue of a handler whose event loop never runs.
    ErrorHandler::Instance().SetMessageMask(0);

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
    if (reread.GetName() != band.GetName() || reread.GetType() != band.GetType())
        std::abort();
    return 0;
}
