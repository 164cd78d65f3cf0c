#include "basetypes/gsm.h"

namespace {

constexpr unsigned int kBandCount = 12;
constexpr double kChannelSpacing = 200000.0;

struct GsmRow
{
    const char* name;
    double startFreq;
    unsigned long startChannel;
    unsigned long stopChannel;
    unsigned long channelCalculationFactor;
};

// In EGSMBand order. GSM900's extended channels are added in the constructor.
const GsmRow kRows[kBandCount] = {
    {QT_TRANSLATE_NOOP("QObject", "GSM900 Up"), 890000000.0, 0, 124, 0},
    {QT_TRANSLATE_NOOP("QObject", "GSM900 Down"), 935000000.0, 0, 124, 0},
    {QT_TRANSLATE_NOOP("QObject", "GSM1800 Up"), 1710200000.0, 512, 885, 512},
    {QT_TRANSLATE_NOOP("QObject", "GSM1800 Down"), 1805200000.0, 512, 885, 512},
    {QT_TRANSLATE_NOOP("QObject", "GSM1900 Up"), 1850200000.0, 512, 810, 512},
    {QT_TRANSLATE_NOOP("QObject", "GSM1900 Down"), 1930200000.0, 512, 810, 512},
    {QT_TRANSLATE_NOOP("QObject", "GSM450 Up"), 450600000.0, 259, 293, 259},
    {QT_TRANSLATE_NOOP("QObject", "GSM450 Down"), 460600000.0, 259, 293, 259},
    {QT_TRANSLATE_NOOP("QObject", "GSM480 Up"), 479000000.0, 306, 340, 306},
    {QT_TRANSLATE_NOOP("QObject", "GSM480 Down"), 489000000.0, 306, 340, 306},
    {QT_TRANSLATE_NOOP("QObject", "GSM850 Up"), 824200000.0, 128, 251, 128},
    {QT_TRANSLATE_NOOP("QObject", "GSM850 Down"), 869200000.0, 128, 251, 128},
};

// E-GSM: channels 955..1023 sit below channel 0, numbered as if 1024 were channel 0.
constexpr unsigned long kExtendedStartChannel = 955;
constexpr unsigned long kExtendedStopChannel = 1023;
constexpr unsigned long kExtendedFactor = 1024;

} // namespace

GSM::GSM() : m_Bands(kBandCount)
{
    for (unsigned int i = 0; i < kBandCount; ++i) {
        const GsmRow& row = kRows[i];
        Band& band = m_Bands[i];
        band = Band(QObject::tr(row.name), kChannelSpacing, row.startFreq, row.startChannel, row.stopChannel,
                    row.channelCalculationFactor, true);
        if (i == GSM900Up || i == GSM900Down)
            band.AddSubBand(kChannelSpacing, row.startFreq, kExtendedStartChannel, kExtendedStopChannel,
                            kExtendedFactor);
    }
}

unsigned int GSM::GetCount() const
{
    return kBandCount;
}

Band GSM::GetBand(unsigned int index) const
{
    return m_Bands[index < kBandCount ? index : 0];
}

bool GSM::GetDefinition(unsigned int index, BandGSM& out) const
{
    if (index >= kBandCount)
        return false;
    out = m_Bands[index];
    return true;
}

bool GSM::GetDefinition(unsigned int index, QString& name, double& stepWidth, double& startFreq,
                        unsigned long& startChannel, unsigned long& stopChannel) const
{
    if (index >= kBandCount)
        return false;
    const Band& band = m_Bands[index];
    name = band.GetName();
    stepWidth = band.GetStepWidth();
    startFreq = band.GetStartFreq();
    startChannel = band.GetStartChannel();
    stopChannel = band.GetStopChannel();
    return true;
}

double GSM::Channel2Frequency(unsigned long channel, EGSMBand band)
{
    const auto index = static_cast<unsigned int>(band);
    if (index >= kBandCount)
        return -1.0;
    return m_Bands[index].GetFrequency(channel, 0.0);
}

int GSM::GetBcchBandForBand(int band)
{
    if (band < 1 || band > 11)
        return GSM900Down;
    return band % 2 == 1 ? band : band + 1;
}

void GSM::setVisible(unsigned int index, bool visible)
{
    if (index < kBandCount)
        m_Bands[index].setVisible(visible);
}
