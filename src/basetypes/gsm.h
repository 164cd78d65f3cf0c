#ifndef KVBASE_BASETYPES_GSM_H
#define KVBASE_BASETYPES_GSM_H

#include "kvbase_export.h"

#include "basetypes/band.h"

#include <vector>

/// The twelve GSM band plans (uplink and downlink of GSM900 with the extended
/// channels 955..1023, GSM1800, GSM1900, GSM450, GSM480 and GSM850), 200 kHz
/// channels, frequencies in Hz. Uplink rows have even indices, each downlink row
/// follows its uplink row. Conversions are exact to the hertz. Reentrant; a const
/// table may be read from several threads.
class KVBASE_EXPORT GSM
{
public:
    enum EGSMBand : int
    {
        GSM900Up = 0,
        GSM900Down = 1,
        GSM1800Up = 2,
        GSM1800Down = 3,
        GSM1900Up = 4,
        GSM1900Down = 5,
        GSM450Up = 6,
        GSM450Down = 7,
        GSM480Up = 8,
        GSM480Down = 9,
        GSM850Up = 10,
        GSM850Down = 11
    };

    GSM();

    /// Always 12.
    unsigned int GetCount() const;
    /// A copy of row `index`; row 0 for an index of 12 or more.
    Band GetBand(unsigned int index) const;
    /// Copies the row's channel data into `out`; false (out untouched) for an index of 12 or more.
    bool GetDefinition(unsigned int index, BandGSM& out) const;
    /// The row's name, step width (Hz), start frequency (Hz) and channel range; false
    /// (arguments untouched) for an index of 12 or more.
    bool GetDefinition(unsigned int index, QString& name, double& stepWidth, double& startFreq,
                       unsigned long& startChannel, unsigned long& stopChannel) const;
    /// Frequency in Hz of `channel` in `band`: 0.0 for a channel outside GSM900's two
    /// parts, −1.0 for a band of 12 or more. Converts on the row itself, so the row
    /// remembers the channel (see BandGSM::GetFrequency): a channel below a row's start
    /// channel answers with the frequency of the last channel the row accepted.
    double Channel2Frequency(unsigned long channel, EGSMBand band);
    /// The downlink band carrying the BCCH for `band`: downlinks map to themselves,
    /// uplinks 2..10 to their downlink, anything else (GSM900 Up included) to 1.
    static int GetBcchBandForBand(int band);
    /// Hides row `index` whatever `visible` says; an index of 12 or more does nothing.
    void setVisible(unsigned int index, bool visible);

private:
    std::vector<Band> m_Bands;
};

#endif
