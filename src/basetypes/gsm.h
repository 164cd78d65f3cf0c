#ifndef KVBASE_BASETYPES_GSM_H
#define KVBASE_BASETYPES_GSM_H

/// \file basetypes/gsm.h
/// \brief The twelve GSM band plans.

#include "kvbase_export.h"

#include "basetypes/band.h"

#include <vector>

/// The twelve GSM band plans (uplink and downlink of GSM900 with the extended
/// channels 955..1023, GSM1800, GSM1900, GSM450, GSM480 and GSM850), 200 kHz
/// channels, frequencies in Hz. Uplink rows have even indices, each downlink row
/// follows its uplink row. Conversions are exact to the hertz. Reentrant; a const
/// table may be read from several threads.
///
/// \code
/// GSM gsm;
/// gsm.Channel2Frequency(975, GSM::GSM900Up);   // 880200000.0 (E-GSM)
/// Band dcs = gsm.GetBand(GSM::GSM1800Down);
/// unsigned long ch = 0;
/// dcs.FindFrequency(1805400000.0, ch);         // Band::FrequencyExact, ch == 513
/// \endcode
class KVBASE_EXPORT GSM
{
public:
    /// Row indices of the table.
    enum EGSMBand : int
    {
        GSM900Up = 0,    ///< channels 955..1023 and 0..124, carriers 876.2..914.8 MHz
        GSM900Down = 1,  ///< channels 955..1023 and 0..124, carriers 921.2..959.8 MHz
        GSM1800Up = 2,   ///< channels 512..885, carriers 1710.2..1784.8 MHz
        GSM1800Down = 3, ///< channels 512..885, carriers 1805.2..1879.8 MHz
        GSM1900Up = 4,   ///< channels 512..810, carriers 1850.2..1909.8 MHz
        GSM1900Down = 5, ///< channels 512..810, carriers 1930.2..1989.8 MHz
        GSM450Up = 6,    ///< channels 259..293, carriers 450.6..457.4 MHz
        GSM450Down = 7,  ///< channels 259..293, carriers 460.6..467.4 MHz
        GSM480Up = 8,    ///< channels 306..340, carriers 479.0..485.8 MHz
        GSM480Down = 9,  ///< channels 306..340, carriers 489.0..495.8 MHz
        GSM850Up = 10,   ///< channels 128..251, carriers 824.2..848.8 MHz
        GSM850Down = 11  ///< channels 128..251, carriers 869.2..893.8 MHz
    };

    /// Builds the twelve rows, all visible.
    GSM();

    /// \return always 12
    unsigned int GetCount() const;
    /// \param index row, 0..11 (EGSMBand)
    /// \return a copy of the row; row 0 for an index of 12 or more
    Band GetBand(unsigned int index) const;
    /// Copies a row's channel data.
    /// \param index row, 0..11 (EGSMBand)
    /// \param out   receives the row; untouched on failure
    /// \return false for an index of 12 or more
    bool GetDefinition(unsigned int index, BandGSM& out) const;
    /// A row's values; the arguments stay untouched on failure.
    /// \param index        row, 0..11 (EGSMBand)
    /// \param name         receives the row's name
    /// \param stepWidth    receives the channel spacing in Hz (200000.0)
    /// \param startFreq    receives the frequency in Hz of the row's calculation channel
    /// \param startChannel receives the first channel
    /// \param stopChannel  receives the last channel (1023 for GSM900 with E-GSM)
    /// \return false for an index of 12 or more
    bool GetDefinition(unsigned int index, QString& name, double& stepWidth, double& startFreq,
                       unsigned long& startChannel, unsigned long& stopChannel) const;
    /// Frequency of a channel in a band. Converts on the row itself, so the
    /// row remembers the channel (see BandGSM::GetFrequency()): a channel below
    /// a row's start channel answers with the frequency of the last channel the
    /// row accepted.
    /// \param channel the channel number
    /// \param band    the row
    /// \return the frequency in Hz; 0.0 for a channel outside GSM900's two
    ///         parts, -1.0 for a band of 12 or more
    double Channel2Frequency(unsigned long channel, EGSMBand band);
    /// The downlink band carrying the BCCH for a band.
    /// \param band a row index
    /// \return downlinks map to themselves, uplinks 2..10 to their downlink,
    ///         anything else (GSM900 Up included) to 1
    static int GetBcchBandForBand(int band);
    /// Hides a row whatever `visible` says.
    /// \param index   row, 0..11; an index of 12 or more does nothing
    /// \param visible ignored
    void setVisible(unsigned int index, bool visible);

private:
    std::vector<Band> m_Bands;
};

#endif
