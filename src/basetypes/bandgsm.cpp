#include "basetypes/bandgsm.h"

#include "basetypes/bandgsm_p.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace ChannelMath;

namespace {

double channelFactor(unsigned long factor)
{
    return static_cast<double>(static_cast<std::uint32_t>(factor));
}

bool intervalsTouch(double lo, double hi, double a, double b)
{
    return lo <= std::max(a, b) && std::min(a, b) <= hi;
}

} // namespace

BandGSM::BandGSM() : m_strName(QStringLiteral("not defined")) {}

BandGSM::BandGSM(QString name, double stepWidth, double startFreq, unsigned long startChannel,
                 unsigned long stopChannel, unsigned long channelCalculationFactor)
    : m_strName(std::move(name)), m_dStepWidth(stepWidth), m_dStartFreq(startFreq),
      m_nStartChannel(startChannel), m_nStopChannel(stopChannel),
      m_nChannelCalculationFactor(channelCalculationFactor)
{
    AddSubBand(stepWidth, startFreq, startChannel, stopChannel, channelCalculationFactor);
}

BandGSM::BandGSM(const BandGSM& other) = default;
BandGSM& BandGSM::operator=(const BandGSM& other) = default;
BandGSM::~BandGSM() = default;

bool BandGSM::operator==(const BandGSM& other) const
{
    return m_strName == other.m_strName && m_dStepWidth == other.m_dStepWidth &&
           m_dOffset == other.m_dOffset && m_dStartFreq == other.m_dStartFreq &&
           m_nStartChannel == other.m_nStartChannel && m_nStopChannel == other.m_nStopChannel &&
           m_nChannelCalculationFactor == other.m_nChannelCalculationFactor &&
           m_nChannelValue == other.m_nChannelValue && m_SubBands == other.m_SubBands;
}

void BandGSM::AddSubBand(double stepWidth, double startFreq, unsigned long startChannel,
                         unsigned long stopChannel, unsigned long channelCalculationFactor)
{
    m_SubBands.append(SubBandGSM(stepWidth, startFreq, startChannel, stopChannel, channelCalculationFactor));
    UpdateData();
}

void BandGSM::UpdateData()
{
    if (m_SubBands.isEmpty())
        return;
    double startFreq = 0.0;
    std::int32_t startChannel = -1;
    std::int32_t stopChannel = -1;
    for (const SubBandGSM& sub : qAsConst(m_SubBands)) {
        if (startFreq == 0.0 || startFreq > sub.m_dStartFreq)
            startFreq = sub.m_dStartFreq;
        const std::int32_t start = asSigned(sub.m_nStartChannel);
        if (startChannel < 0 || startChannel > start)
            startChannel = start;
        const std::int32_t stop = asSigned(sub.m_nStopChannel);
        if (stopChannel < 0 || stopChannel < stop)
            stopChannel = stop;
    }
    if (startFreq > 0.0)
        m_dStartFreq = startFreq;
    if (startChannel >= 0)
        m_nStartChannel = static_cast<unsigned long>(startChannel);
    if (stopChannel >= 0)
        m_nStopChannel = static_cast<unsigned long>(stopChannel);
}

double BandGSM::GetFrequency(unsigned long channel)
{
    if (m_dStepWidth == 0.0)
        m_dStepWidth = kDefaultStepWidth;
    return frequencyOf(channel, m_dStepWidth, m_nChannelValue);
}

double BandGSM::frequencyOf(unsigned long channel, double stepWidth, unsigned long& channelValue) const
{
    double startFreq = m_dStartFreq;
    unsigned long startChannel = m_nStartChannel;
    unsigned long factor = m_nChannelCalculationFactor;
    if (m_SubBands.size() >= 2) {
        startFreq = 0.0;
        startChannel = 0;
        factor = 0;
        for (const SubBandGSM& sub : m_SubBands) {
            if (sub.m_nStartChannel <= channel && channel <= sub.m_nStopChannel) {
                startFreq = sub.m_dStartFreq;
                startChannel = sub.m_nStartChannel;
                factor = sub.m_nChannelCalculationFactor;
            }
        }
    }
    if (!(startFreq > 0.0))
        return 0.0;
    if (channel >= startChannel)
        channelValue = channel;
    return distance(channelValue, factor) * stepWidth + startFreq;
}

unsigned long BandGSM::GetChannelForFrequency(double frequency) const
{
    if (m_SubBands.size() < 2) {
        const double x =
            (frequency - m_dStartFreq) / m_dStepWidth + channelFactor(m_nChannelCalculationFactor);
        if (std::isnan(x))
            return 0;
        if (x >= 0.0)
            return truncToChannel(x + 0.5);
        if (x <= -2147483648.0)
            return truncToChannel(x);
        // Round half up on the negative side as well: shift into [0, 1] first.
        const double k = std::trunc(x - 1.0);
        return truncToChannel(std::trunc(x - k + 0.5) + k);
    }
    std::uint32_t channel = 0;
    for (const SubBandGSM& sub : m_SubBands) {
        const double lower =
            distance(sub.m_nStartChannel, sub.m_nChannelCalculationFactor) * m_dStepWidth + sub.m_dStartFreq;
        const double upper =
            distance(sub.m_nStopChannel, sub.m_nChannelCalculationFactor) * sub.m_dStepWidth +
            sub.m_dStartFreq;
        if (lower <= frequency && frequency <= upper)
            channel = truncToChannel((frequency - sub.m_dStartFreq) / sub.m_dStepWidth +
                                     channelFactor(sub.m_nChannelCalculationFactor));
    }
    return channel;
}

bool BandGSM::IsValidChannel(unsigned long channel) const
{
    if (m_SubBands.size() < 2)
        return m_nStartChannel <= channel && channel <= m_nStopChannel;
    return std::any_of(m_SubBands.cbegin(), m_SubBands.cend(), [channel](const SubBandGSM& sub) {
        return sub.m_nStartChannel <= channel && channel <= sub.m_nStopChannel;
    });
}

unsigned long BandGSM::GetNextValidChannel(unsigned long channel, bool up, bool down) const
{
    if (IsValidChannel(channel))
        return channel;
    if (channel < m_nStartChannel)
        return m_nStartChannel;
    if (channel > m_nStopChannel)
        return m_nStopChannel;

    // Here the channel lies in a gap between sub-bands. Stepping one channel at a
    // time would give the same answers as the closed forms below; when the band's
    // envelope reaches past its sub-bands the search wraps around like a 32-bit
    // counter, and a band without any non-empty sub-band returns the channel as is.
    if (up) {
        bool found = false;
        bool any = false;
        unsigned long next = 0;
        unsigned long lowest = 0;
        for (const SubBandGSM& sub : m_SubBands) {
            if (sub.m_nStartChannel > sub.m_nStopChannel)
                continue;
            if (!any || sub.m_nStartChannel < lowest)
                lowest = sub.m_nStartChannel;
            any = true;
            if (sub.m_nStopChannel >= channel) {
                const unsigned long candidate = std::max(sub.m_nStartChannel, channel);
                if (!found || candidate < next)
                    next = candidate;
                found = true;
            }
        }
        if (found)
            return next;
        return any ? lowest : channel;
    }
    if (!down) {
        unsigned long nearest = 0;
        for (int i = 0; i + 1 < m_SubBands.size(); ++i) {
            const unsigned long below = m_SubBands.at(i).m_nStopChannel;
            const unsigned long above = m_SubBands.at(i + 1).m_nStartChannel;
            const std::int64_t toBelow = std::llabs(distance(channel, below));
            const std::int64_t toAbove = std::llabs(distance(channel, above));
            nearest = toBelow < toAbove ? below : above;
        }
        return nearest;
    }
    bool found = false;
    unsigned long previous = 0;
    unsigned long highest = 0;
    bool any = false;
    for (const SubBandGSM& sub : m_SubBands) {
        if (sub.m_nStartChannel > sub.m_nStopChannel)
            continue;
        if (!any || sub.m_nStopChannel > highest)
            highest = sub.m_nStopChannel;
        any = true;
        if (sub.m_nStartChannel <= channel) {
            const unsigned long candidate = std::min(sub.m_nStopChannel, channel);
            if (!found || candidate > previous)
                previous = candidate;
            found = true;
        }
    }
    if (found)
        return previous;
    return any ? highest : channel;
}

bool BandGSM::GetChannelRange(int& first, int& last) const
{
    first = asSigned(m_nStartChannel);
    last = asSigned(m_nStopChannel);
    return true;
}

bool BandGSM::GetChannelRangeWithinFreqRange(int& first, int& last, double lowFreq, double highFreq) const
{
    first = asSigned(m_nStartChannel);
    last = asSigned(m_nStopChannel);
    if (m_eType == FrequencyBand)
        return true;
    const double top = distance(m_nStopChannel, m_nChannelCalculationFactor) * m_dStepWidth + m_dStartFreq;
    const auto fromStart = [this](double steps) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(truncToInt32(steps)) +
                                         static_cast<std::uint32_t>(m_nStartChannel));
    };
    if (lowFreq > m_dStartFreq && top > lowFreq)
        first = fromStart(std::ceil((lowFreq - m_dStartFreq) / m_dStepWidth));
    if (top > highFreq && highFreq > m_dStartFreq)
        last = fromStart(std::floor((highFreq - m_dStartFreq) / m_dStepWidth));
    return true;
}

bool BandGSM::HasChannelsWithinFreqRange(double freq1, double freq2) const
{
    if (m_eType == FrequencyBand)
        return true;
    const double lo = std::min(freq1, freq2);
    const double hi = std::max(freq1, freq2);
    if (m_SubBands.size() < 2) {
        const double top =
            distance(m_nStopChannel, m_nChannelCalculationFactor) * m_dStepWidth + m_dStartFreq;
        return intervalsTouch(lo, hi, m_dStartFreq, top);
    }
    return std::any_of(m_SubBands.cbegin(), m_SubBands.cend(), [&](const SubBandGSM& sub) {
        const double a =
            distance(sub.m_nStartChannel, sub.m_nChannelCalculationFactor) * m_dStepWidth + sub.m_dStartFreq;
        const double b =
            distance(sub.m_nStopChannel, sub.m_nChannelCalculationFactor) * m_dStepWidth + sub.m_dStartFreq;
        return intervalsTouch(lo, hi, a, b);
    });
}

SubBandGSM::SubBandGSM()
{
    m_strName.clear();
}

SubBandGSM::SubBandGSM(double stepWidth, double startFreq, unsigned long startChannel,
                       unsigned long stopChannel, unsigned long channelCalculationFactor)
{
    m_strName.clear();
    m_dStepWidth = stepWidth;
    m_dStartFreq = startFreq;
    m_nStartChannel = startChannel;
    m_nStopChannel = stopChannel;
    m_nChannelCalculationFactor = channelCalculationFactor;
}

SubBandGSM::SubBandGSM(const SubBandGSM& other) : BandGSM(other)
{
    m_eType = ChannelBand;
}

SubBandGSM& SubBandGSM::operator=(const SubBandGSM& other)
{
    BandGSM::operator=(other);
    m_eType = ChannelBand;
    return *this;
}

SubBandGSM::~SubBandGSM() = default;
