#ifndef KVBASE_BASETYPES_BANDGSM_H
#define KVBASE_BASETYPES_BANDGSM_H

/// \file basetypes/bandgsm.h
/// \brief Channel bands: channel numbers and their carrier frequencies.

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
///
/// \code
/// BandGSM dcs(QStringLiteral("GSM1800 Down"), 200000.0, 1805200000.0, 512, 885, 512);
/// dcs.GetFrequency(513);                     // 1805400000.0
/// dcs.GetChannelForFrequency(1805400000.0);  // 513
/// \endcode
class KVBASE_EXPORT BandGSM
{
public:
    /// What the band numbers: channels, or frequencies only.
    enum BandType : std::int32_t
    {
        FrequencyBand = 0, ///< plain frequency band, no channels
        ChannelBand = 1    ///< channel numbers apply
    };

    /// Named "not defined", everything else zero; type ChannelBand, no sub-bands.
    BandGSM();
    /// A channel band of one part; it also holds one sub-band repeating these values.
    /// \param name                     shown name
    /// \param stepWidth                channel spacing in Hz
    /// \param startFreq                frequency in Hz of channel `channelCalculationFactor`
    /// \param startChannel             first channel, 0..2^32-1
    /// \param stopChannel              last channel, 0..2^32-1
    /// \param channelCalculationFactor channel number whose frequency is `startFreq`
    BandGSM(QString name, double stepWidth, double startFreq, unsigned long startChannel,
            unsigned long stopChannel, unsigned long channelCalculationFactor);
    /// \param other the band to copy, sub-bands included
    BandGSM(const BandGSM& other);
    /// \param other the band to copy, sub-bands included
    /// \return this band
    BandGSM& operator=(const BandGSM& other);
    virtual ~BandGSM();

    /// All fields and the sub-bands, except the type. NaN frequencies never compare equal.
    /// \param other the band to compare with
    /// \return true when equal
    bool operator==(const BandGSM& other) const;
    /// \param other the band to compare with
    /// \return the negation of operator==()
    bool operator!=(const BandGSM& other) const { return !(*this == other); }

    /// \return always true: every BandGSM counts as a GSM band (Band answers by its type)
    bool GetGSM() const { return true; }
    /// \return the shown name
    const QString& GetName() const { return m_strName; }
    /// \return FrequencyBand or ChannelBand
    BandType GetType() const { return m_eType; }
    /// \return the channel spacing in Hz
    double GetStepWidth() const { return m_dStepWidth; }
    /// \param stepWidth channel spacing in Hz
    void SetStepWidth(double stepWidth) { m_dStepWidth = stepWidth; }
    /// \return the raster offset in Hz; only the raster of plain bands uses it
    double GetOffset() const { return m_dOffset; }
    /// \param offset raster offset in Hz
    void SetOffset(double offset) { m_dOffset = offset; }
    /// \return the frequency in Hz of the channel numbered by the calculation factor
    double GetStartFreq() const { return m_dStartFreq; }
    /// \param startFreq frequency in Hz of the channel numbered by the calculation factor
    void SetStartFreq(double startFreq) { m_dStartFreq = startFreq; }
    /// \return the first channel
    unsigned long GetStartChannel() const { return m_nStartChannel; }
    /// \param channel the first channel, 0..2^32-1
    void SetStartChannel(unsigned long channel) { m_nStartChannel = channel; }
    /// \return the last channel
    unsigned long GetStopChannel() const { return m_nStopChannel; }
    /// \param channel the last channel, 0..2^32-1
    void SetStopChannel(unsigned long channel) { m_nStopChannel = channel; }
    /// \return the channel number whose frequency is the start frequency
    unsigned long GetChannelCalculationFactor() const { return m_nChannelCalculationFactor; }
    /// \param factor the channel number whose frequency is the start frequency
    void SetChannelCalculationFactor(unsigned long factor) { m_nChannelCalculationFactor = factor; }
    /// \return the last channel accepted by GetFrequency(): the stepping cursor of Band
    unsigned long GetChannelValue() const { return m_nChannelValue; }
    /// \return the parts of the band, in the order added; one part repeats the
    ///         band's own values when it was built with channels
    const QVector<SubBandGSM>& GetSubBands() const { return m_SubBands; }

    /// Appends a sub-band and widens the band's frequency and channel envelope
    /// to cover it; the band's factor and step width stay.
    /// \param stepWidth                channel spacing in Hz
    /// \param startFreq                frequency in Hz of channel `channelCalculationFactor`
    /// \param startChannel             first channel of the part
    /// \param stopChannel              last channel of the part
    /// \param channelCalculationFactor channel number whose frequency is `startFreq`
    void AddSubBand(double stepWidth, double startFreq, unsigned long startChannel, unsigned long stopChannel,
                    unsigned long channelCalculationFactor);

    /// Frequency of a channel. A step width of 0.0 becomes 10 kHz for good.
    /// Deliberately remembers the channel (GetChannelValue()) and, for a
    /// channel below the start channel of a single-part band, answers for the
    /// remembered one.
    /// \param channel the channel number
    /// \return the frequency in Hz; 0.0 for a channel in no sub-band of a
    ///         multi-part band or for a band without start frequency
    double GetFrequency(unsigned long channel);
    /// Channel of a frequency, not checked against the band. A single-part band
    /// rounds half up and wraps negative channels to 32 bits; a multi-part band
    /// truncates. Results beyond the 32-bit range saturate.
    /// \param frequency frequency in Hz
    /// \return the channel; 0 outside the sub-bands of a multi-part band and for NaN
    unsigned long GetChannelForFrequency(double frequency) const;
    /// \param channel the channel number
    /// \return whether the channel lies in the band (in one of its parts for a multi-part band)
    bool IsValidChannel(unsigned long channel) const;
    /// The nearest valid channel.
    /// \param channel the channel to start from
    /// \param up      search upward (wins over `down`)
    /// \param down    search downward
    /// \return `channel` if valid, else the band's end it lies beyond, else the
    ///         next valid channel upward (`up`), downward (`down`) or the nearest
    ///         gap edge (neither, ties go up)
    unsigned long GetNextValidChannel(unsigned long channel, bool up, bool down) const;
    /// \param first receives the start channel, as a signed 32-bit number
    /// \param last  receives the stop channel, as a signed 32-bit number
    /// \return always true
    bool GetChannelRange(int& first, int& last) const;
    /// The channel range narrowed to [lowFreq, highFreq], counted from the
    /// start channel; sub-bands are not consulted.
    /// \param first    receives the first channel within the range
    /// \param last     receives the last channel within the range
    /// \param lowFreq  lower end in Hz
    /// \param highFreq upper end in Hz
    /// \return always true
    bool GetChannelRangeWithinFreqRange(int& first, int& last, double lowFreq, double highFreq) const;
    /// \param freq1 one end in Hz
    /// \param freq2 the other end in Hz, either order
    /// \return whether the band's (or any sub-band's) frequencies touch
    ///         [freq1, freq2]; always true for a plain band
    bool HasChannelsWithinFreqRange(double freq1, double freq2) const;

protected:
    /// GetFrequency() without the step-width default.
    /// \param channel      the channel number
    /// \param stepWidth    channel spacing in Hz to use
    /// \param channelValue the cursor to use and update
    /// \return the frequency in Hz, as GetFrequency()
    double frequencyOf(unsigned long channel, double stepWidth, unsigned long& channelValue) const;

    /// \cond internal

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
    /// \endcond

private:
    void UpdateData();
};

/// One contiguous piece of a BandGSM: its own start frequency (Hz), step width (Hz),
/// channel range and factor; unnamed, without sub-bands of its own. A value class.
class KVBASE_EXPORT SubBandGSM : public BandGSM
{
public:
    /// An empty part, all values zero.
    SubBandGSM();
    /// \param stepWidth                channel spacing in Hz
    /// \param startFreq                frequency in Hz of channel `channelCalculationFactor`
    /// \param startChannel             first channel of the part
    /// \param stopChannel              last channel of the part
    /// \param channelCalculationFactor channel number whose frequency is `startFreq`
    SubBandGSM(double stepWidth, double startFreq, unsigned long startChannel, unsigned long stopChannel,
               unsigned long channelCalculationFactor);
    /// \param other the part to copy
    SubBandGSM(const SubBandGSM& other);
    /// \param other the part to copy
    /// \return this part
    SubBandGSM& operator=(const SubBandGSM& other);
    ~SubBandGSM() override;
};

Q_DECLARE_METATYPE(BandGSM)

#endif
