#include "basetypes/band.h"

#include "basetypes/bandgsm_p.h"
#include "basetypes/numberhelpers_p.h"
#include "errorhandling/errorhandler.h"
#include "errorhandling/quality_p.h"

#include <QDomDocument>
#include <QDomElement>
#include <QLocale>

#include <cmath>
#include <cstring>

using namespace ChannelMath;

namespace {

// FindFrequency's tolerances: a channel's frequency must match exactly, a raster
// point to within 10 µHz.
constexpr double kChannelTolerance = 1e-15;
constexpr double kRasterTolerance = 1e-5;

// The line a failed load has been reported with since the first version; log
// filters match it, so it does not follow this file's layout.
constexpr std::uint16_t kReadErrorLine = 321;

const QString kTagName = QStringLiteral("Name");
const QString kTagChannelSpacing = QStringLiteral("Channelspacing");
const QString kTagType = QStringLiteral("Type");
const QString kTagOffset = QStringLiteral("Offset");
const QString kTagUseRaster = QStringLiteral("UseRaster");
const QString kTagStartChannel = QStringLiteral("StartChannel");
const QString kTagStopChannel = QStringLiteral("StopChannel");
const QString kTagStartFrequency = QStringLiteral("StartFrequency");
const QString kTypeSimple = QStringLiteral("Simple");
const QString kTypeGsm = QStringLiteral("GSM");

void appendChild(QDomDocument& doc, QDomElement& parent, const QString& tag, const QString* text)
{
    QDomElement child = doc.createElement(tag);
    if (text)
        child.appendChild(doc.createTextNode(*text));
    parent.appendChild(child);
}

void appendChild(QDomDocument& doc, QDomElement& parent, const QString& tag, const QString& text)
{
    appendChild(doc, parent, tag, &text);
}

// Channel numbers are stored as 32-bit values; larger texts read as 0 like any
// other malformed number.
unsigned long readChannel(const QString& text)
{
    return NumberHelpers::qt5IntegerText(text, 10).toUInt();
}

bool readsBackAs(const QString& text, double value)
{
    const double back = text.toDouble();
    return std::memcmp(&back, &value, sizeof value) == 0;
}

// The text older versions wrote ('g' or 'f' with six digits) wherever it reads
// back to the same double, so unchanged documents stay byte for byte the same;
// otherwise the shortest text that does. NaN keeps its "nan", whose payload no
// text can carry.
QString exactText(double value, char format)
{
    const QString usual = QStringLiteral("%1").arg(value, 0, format, -1);
    if (std::isnan(value) || readsBackAs(usual, value))
        return usual;
    // Qt writes a negative zero without its sign.
    if (value == 0.0)
        return QStringLiteral("-0");
    return QString::number(value, format, QLocale::FloatingPointShortest);
}

} // namespace

Band::Band() : BandGSM(QString(), kDefaultStepWidth, 0.0, 0, 0, 0)
{
    m_eType = FrequencyBand;
}

Band::Band(QString name, double stepWidth, double offset, bool useRaster)
    : BandGSM(std::move(name), stepWidth, 0.0, 0, 0, 0), m_bUseRaster(useRaster)
{
    m_dOffset = offset;
    m_eType = FrequencyBand;
}

Band::Band(QString name, double stepWidth, double startFreq, unsigned long startChannel,
           unsigned long stopChannel, unsigned long channelCalculationFactor, bool isSystem)
    : BandGSM(std::move(name), stepWidth, startFreq, startChannel, stopChannel, channelCalculationFactor),
      m_bSystem(isSystem)
{
}

// QObject cannot be copied: a copy is a new QObject holding the same band.
Band::Band(const Band& other)
    : QObject(), BandGSM(other), m_bUseRaster(other.m_bUseRaster), m_bSystem(other.m_bSystem),
      m_bVisible(other.m_bVisible)
{
}

Band& Band::operator=(const Band& other)
{
    BandGSM::operator=(other);
    m_bUseRaster = other.m_bUseRaster;
    m_bSystem = other.m_bSystem;
    m_bVisible = other.m_bVisible;
    return *this;
}

Band::~Band() = default;

bool Band::operator==(const Band& other) const
{
    return BandGSM::operator==(other) && m_eType == other.m_eType && m_bUseRaster == other.m_bUseRaster &&
           m_bSystem == other.m_bSystem && m_bVisible == other.m_bVisible;
}

bool Band::operator<(const Band& other) const
{
    return m_dStepWidth < other.m_dStepWidth;
}

void Band::setVisible(bool)
{
    m_bVisible = false;
}

double Band::GetFrequency(unsigned long channel, double frequency)
{
    if (m_dStepWidth == 0.0)
        m_dStepWidth = kDefaultStepWidth;
    if (m_eType != FrequencyBand)
        return BandGSM::GetFrequency(channel);
    if (!m_bUseRaster)
        return frequency;
    const double steps = (frequency - m_dOffset) / m_dStepWidth;
    // A whole-hertz raster snaps down, any other snaps to the nearest point;
    // both behaviours are relied upon.
    if (std::fabs(m_dStepWidth - std::floor(m_dStepWidth)) < 0.001)
        return std::floor(std::floor(steps) * m_dStepWidth) + m_dOffset;
    return std::floor(steps + 0.5) * m_dStepWidth + m_dOffset;
}

Band::FrequencyFound Band::FindFrequency(double frequency, unsigned long& channel)
{
    if (m_dStepWidth == 0.0)
        m_dStepWidth = kDefaultStepWidth;
    if (m_eType != FrequencyBand) {
        if (!HasChannelsWithinFreqRange(frequency, frequency))
            return FrequencyOutside;
        channel = GetChannelForFrequency(frequency);
        m_nChannelValue = channel;
        return std::fabs(GetFrequency(channel, frequency) - frequency) < kChannelTolerance
                   ? FrequencyExact
                   : FrequencyInBetween;
    }
    if (!m_bUseRaster)
        return FrequencyNoRaster;
    const double rest = std::fmod(frequency - m_dOffset, m_dStepWidth);
    return rest < kRasterTolerance || std::fabs(m_dStepWidth - rest) < kRasterTolerance ? FrequencyExact
                                                                                        : FrequencyInBetween;
}

double Band::GetNextFrequency(bool up, bool& moreAbove, bool& moreBelow, double current, double lowFreq,
                              double highFreq)
{
    if (m_eType == FrequencyBand) {
        const double next = up ? current + m_dStepWidth : current - m_dStepWidth;
        moreAbove = highFreq >= next + m_dStepWidth;
        moreBelow = next - m_dStepWidth >= lowFreq;
        return GetFrequency(0, next);
    }
    // The cursor is a 32-bit channel: stepping down from 0 wraps to the top and
    // is then clamped to the stop channel.
    std::uint32_t channel = static_cast<std::uint32_t>(m_nChannelValue);
    channel = up ? channel + 1u : channel - 1u;
    m_nChannelValue = channel;
    if (m_nChannelValue < m_nStartChannel)
        m_nChannelValue = m_nStartChannel;
    else if (m_nChannelValue > m_nStopChannel)
        m_nChannelValue = m_nStopChannel;
    m_nChannelValue = GetNextValidChannel(m_nChannelValue, up, !up);
    int first = 0;
    int last = 0;
    GetChannelRangeWithinFreqRange(first, last, lowFreq, highFreq);
    // Compared as unsigned 32-bit numbers, as channel numbers are.
    const auto cursor = static_cast<std::uint32_t>(m_nChannelValue);
    moreAbove = cursor < static_cast<std::uint32_t>(last);
    moreBelow = cursor > static_cast<std::uint32_t>(first);
    return GetFrequency(m_nChannelValue, current);
}

void Band::Read(QDomDocument&, QDomElement& element)
{
    if (element.isNull())
        return;
    for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
        const QDomElement child = node.toElement();
        if (child.isNull()) {
            ErrorHandler& handler = ErrorHandler::Instance();
            if (handler.GetMessageMask() & ErrorHandler::TraceMask)
                handler.trace(QStringLiteral("error loading job."), QStringLiteral("basetypes\\band"),
                              QStringLiteral("Band"), QStringLiteral("Read"), kReadErrorLine, kTraceLevel);
            return;
        }
        const QString tag = child.tagName();
        const QString text = child.text();
        if (tag == kTagName) {
            m_strName = text;
        } else if (tag == kTagChannelSpacing) {
            m_dStepWidth = text.toDouble();
            if (m_dStepWidth == 0.0)
                m_dStepWidth = kDefaultStepWidth;
        } else if (tag == kTagType) {
            m_eType = text == kTypeSimple ? FrequencyBand : ChannelBand;
        } else if (tag == kTagOffset) {
            m_dOffset = text.toDouble();
        } else if (tag == kTagUseRaster) {
            m_bUseRaster = text == QLatin1String("1");
        } else if (tag == kTagStartChannel) {
            m_nStartChannel = readChannel(text);
            m_nChannelCalculationFactor = m_nStartChannel;
        } else if (tag == kTagStopChannel) {
            m_nStopChannel = readChannel(text);
        } else if (tag == kTagStartFrequency) {
            m_dStartFreq = text.toDouble();
        }
    }
}

void Band::Save(QDomDocument& doc, QDomElement& element)
{
    appendChild(doc, element, kTagName, m_strName);
    if (m_bSystem)
        return;
    appendChild(doc, element, kTagChannelSpacing, QStringLiteral("%1").arg(m_dStepWidth, 0, 'g', 20));
    switch (m_eType) {
    case FrequencyBand:
        appendChild(doc, element, kTagType, kTypeSimple);
        break;
    case ChannelBand:
        appendChild(doc, element, kTagType, kTypeGsm);
        break;
    default:
        appendChild(doc, element, kTagType, nullptr);
        break;
    }
    if (m_eType != ChannelBand) {
        appendChild(doc, element, kTagOffset, exactText(m_dOffset, 'g'));
        appendChild(doc, element, kTagUseRaster, m_bUseRaster ? QStringLiteral("1") : QStringLiteral("0"));
    } else {
        appendChild(doc, element, kTagStartChannel, QString::number(m_nStartChannel));
        appendChild(doc, element, kTagStopChannel, QString::number(m_nStopChannel));
        appendChild(doc, element, kTagStartFrequency, exactText(m_dStartFreq, 'f'));
    }
}
