#ifndef KVBASE_BASETYPES_BANDGSM_H
#define KVBASE_BASETYPES_BANDGSM_H

#include "kvbase_export.h"

#include <QMetaType>
#include <QString>
#include <QVector>

#include <cstdint>

class SubBandGSM;

/// A radio channel band: channel numbers (ARFCN style, 32-bit unsigned) and their
/// carrier frequencies in Hz, frequency = start frequency + (channel − factor) × step
/// width. A band may consist of several sub-bands with gaps between them (E-GSM 900).
/// Differences of channel numbers wrap like 32-bit unsigned numbers read as signed,
/// so channels below the factor lie below the start frequency. Conversions are exact
/// for whole-hertz rasters. A value class; one thread at a time per object.
class KVBASE_EXPORT BandGSM
{
public:
    enum BandType : std::int32_t
    {
        FrequencyBand = 0, ///< plain frequency band, no channels
        ChannelBand = 1    ///< channel numbers apply
    };

    /// Named "not defined", everything else zero; type ChannelBand, no sub-bands.
    BandGSM();
    /// Frequencies in Hz. The band also holds one sub-band repeating these values.
    BandGSM(QString name, double stepWidth, double startFreq, unsigned long startChannel,
            unsigned long stopChannel, unsigned long channelCalculationFactor);
    BandGSM(const BandGSM& other);
    BandGSM& operator=(const BandGSM& other);
    virtual ~BandGSM();

    /// All fields and the sub-bands, except the type. NaN frequencies never compare equal.
    bool operator==(const BandGSM& other) const;
    bool operator!=(const BandGSM& other) const { return !(*this == other); }

    bool GetGSM() const { return true; }
    const QString& GetName() const { return m_strName; }
    BandType GetType() const { return m_eType; }
    /// Hz.
    double GetStepWidth() const { return m_dStepWidth; }
    void SetStepWidth(double stepWidth) { m_dStepWidth = stepWidth; }
    /// Hz; only the raster of plain bands uses it.
    double GetOffset() const { return m_dOffset; }
    void SetOffset(double offset) { m_dOffset = offset; }
    /// Hz; the frequency of the channel numbered by the calculation factor.
    double GetStartFreq() const { return m_dStartFreq; }
    void SetStartFreq(double startFreq) { m_dStartFreq = startFreq; }
    unsigned long GetStartChannel() const { return m_nStartChannel; }
    void SetStartChannel(unsigned long channel) { m_nStartChannel = channel; }
    unsigned long GetStopChannel() const { return m_nStopChannel; }
    void SetStopChannel(unsigned long channel) { m_nStopChannel = channel; }
    unsigned long GetChannelCalculationFactor() const { return m_nChannelCalculationFactor; }
    void SetChannelCalculationFactor(unsigned long factor) { m_nChannelCalculationFactor = factor; }
    /// The last channel accepted by GetFrequency: the stepping cursor of Band.
    unsigned long GetChannelValue() const { return m_nChannelValue; }
    const QVector<SubBandGSM>& GetSubBands() const { return m_SubBands; }

    /// Appends a sub-band (frequencies in Hz) and widens the band's frequency and
    /// channel envelope to cover it; the band's factor and step width stay.
    void AddSubBand(double stepWidth, double startFreq, unsigned long startChannel, unsigned long stopChannel,
                    unsigned long channelCalculationFactor);

    /// Frequency in Hz of `channel`; 0.0 for a channel in no sub-band of a multi-part
    /// band or a band without start frequency. A step width of 0.0 becomes 10 kHz for
    /// good. Deliberately remembers the channel (GetChannelValue) and, for a channel
    /// below the start channel of a single-part band, answers for the remembered one.
    double GetFrequency(unsigned long channel);
    /// Channel of `frequency` (Hz), not checked against the band. A single-part band
    /// rounds half up and wraps negative channels to 32 bits; a multi-part band
    /// truncates and gives 0 outside its sub-bands. Results beyond the 32-bit range
    /// saturate (NaN gives 0).
    unsigned long GetChannelForFrequency(double frequency) const;
    bool IsValidChannel(unsigned long channel) const;
    /// `channel` if valid, else the band's end it lies beyond, else the next valid
    /// channel upward (`up`), downward (`down`) or the nearest gap edge (neither,
    /// ties go up). `up` wins over `down`.
    unsigned long GetNextValidChannel(unsigned long channel, bool up, bool down) const;
    /// Start and stop channel; always true.
    bool GetChannelRange(int& first, int& last) const;
    /// The channel range narrowed to [lowFreq, highFreq] (Hz), counted from the start
    /// channel; sub-bands are not consulted. Always true.
    bool GetChannelRangeWithinFreqRange(int& first, int& last, double lowFreq, double highFreq) const;
    /// Whether the band's (or any sub-band's) frequencies touch [freq1, freq2] (Hz,
    /// either order). Always true for a plain band.
    bool HasChannelsWithinFreqRange(double freq1, double freq2) const;

protected:
    /// GetFrequency without the step-width default; `channelValue` is the cursor to use and update.
    double frequencyOf(unsigned long channel, double stepWidth, unsigned long& channelValue) const;

    QString m_strName;
    double m_dStepWidth = 0.0;
    double m_dOffset = 0.0;
    BandType m_eType = ChannelBand;
    double m_dStartFreq = 0.0;
    unsigned long m_nStartChannel = 0;
    unsigned long m_nStopChannel = 0;
    unsigned long m_nChannelCalculationFactor = 0;
    unsigned long m_nChannelValue = 0;
    QVector<SubBandGSM> m_SubBands;

private:
    void UpdateData();
};

/// One contiguous piece of a BandGSM: its own start frequency (Hz), step width (Hz),
/// channel range and factor; unnamed, without sub-bands of its own. A value class.
class KVBASE_EXPORT SubBandGSM : public BandGSM
{
public:
    SubBandGSM();
    SubBandGSM(double stepWidth, double startFreq, unsigned long startChannel, unsigned long stopChannel,
               unsigned long channelCalculationFactor);
    SubBandGSM(const SubBandGSM& other);
    SubBandGSM& operator=(const SubBandGSM& other);
    ~SubBandGSM() override;
};

Q_DECLARE_METATYPE(BandGSM)

#endif
