// libFuzzer target: any bytes as the XML element a band is read from. Reading
// must not crash, and what was read must save and read back to an equal band.
#include "fuzzsupport.h"

#include "basetypes/band.h"

#include <QDomDocument>
#include <QXmlStreamReader>

#include <cmath>

namespace {

// Qt's DOM parser recurses once per level of nesting and overflows the stack
// on some ten thousand levels; an application bounds the depth of a document
// it did not write before parsing it, as band.h says, and so does this target.
// The check must read the whole document: the DOM parser goes on past badly
// encoded bytes and expands a DTD's entities, where the stream reader stops.
bool shallow(const QByteArray& xml)
{
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::DTD || (token == QXmlStreamReader::StartElement && ++depth > 256))
            return false;
        if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    return !reader.hasError();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();

    const QByteArray xml =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QDomDocument doc;
    if (!shallow(xml) || !doc.setContent(xml))
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
