#ifndef KVBASE_BASETYPES_BAND_H
#define KVBASE_BASETYPES_BAND_H

#include "kvbase_export.h"

#include "basetypes/bandgsm.h"

#include <QObject>

class QDomDocument;
class QDomElement;

/// A band as applications keep it in their band lists and job documents: either a
/// plain frequency band (type 0) with an optional raster of offset + n × step width,
/// or a channel band (type 1) with the arithmetic of BandGSM. Frequencies in Hz.
/// Copyable although a QObject: copies get a fresh QObject without parent.
/// One thread at a time per object.
class KVBASE_EXPORT Band : public QObject, public BandGSM
{
    Q_OBJECT

public:
    /// How FindFrequency places a frequency.
    enum FrequencyFound
    {
        FrequencyExact = 0,     ///< on the raster, or exactly a channel's frequency
        FrequencyInBetween = 1, ///< inside the band, between raster points or channels
        FrequencyOutside = 2,   ///< outside a channel band
        FrequencyNoRaster = 3   ///< a plain band without raster accepts every frequency
    };
    Q_ENUM(FrequencyFound)

    /// An unnamed plain band with a 10 kHz raster.
    Band();
    /// A plain band (type 0); step width and offset in Hz.
    Band(QString name, double stepWidth, double offset, bool useRaster);
    /// A channel band (type 1), as BandGSM's constructor; frequencies in Hz.
    Band(QString name, double stepWidth, double startFreq, unsigned long startChannel,
         unsigned long stopChannel, unsigned long channelCalculationFactor, bool isSystem);
    Band(const Band& other);
    Band& operator=(const Band& other);
    ~Band() override;

    /// BandGSM's comparison plus type and the three flags.
    bool operator==(const Band& other) const;
    bool operator!=(const Band& other) const { return !(*this == other); }
    /// Orders by step width only.
    bool operator<(const Band& other) const;

    bool GetGSM() const { return m_eType == ChannelBand; }
    bool GetUseRaster() const { return m_bUseRaster; }
    void SetUseRaster(bool useRaster) { m_bUseRaster = useRaster; }
    /// Built-in bands persist only their name.
    bool isSystem() const { return m_bSystem; }
    bool isVisible() const { return m_bVisible; }
    /// Hides the band whatever the argument: bands are only ever hidden this way.
    void setVisible(bool visible);

    /// Loads the band from the child elements of `element` ("Name", "Channelspacing",
    /// "Type", "Offset", "UseRaster", "StartChannel", "StopChannel", "StartFrequency",
    /// in any order; unknown ones are skipped, absent ones leave the field as it is).
    /// A child that is not an element ends the reading and is traced as "error loading job.".
    void Read(QDomDocument& doc, QDomElement& element);
    /// Appends the band's child elements to `element`; a system band writes only its name.
    /// Every number reads back to the same double, bit for bit (NaN as some NaN).
    void Save(QDomDocument& doc, QDomElement& element);

    /// Channel band: the frequency of `channel` (as BandGSM::GetFrequency). Plain band:
    /// `frequency` (Hz) snapped to the raster, if any: down to the raster point below
    /// for a whole-hertz step width, to the nearest one otherwise.
    double GetFrequency(unsigned long channel, double frequency);
    /// Classifies `frequency` (Hz). For a channel band inside it, `channel` receives the
    /// channel (also kept as the stepping cursor); otherwise `channel` is untouched.
    FrequencyFound FindFrequency(double frequency, unsigned long& channel);
    /// One step up or down from `current` (Hz; channel bands step from their stored
    /// channel instead and jump gaps in the direction of travel). `moreAbove`/`moreBelow`
    /// tell whether a further step stays within [lowFreq, highFreq] (Hz).
    double GetNextFrequency(bool up, bool& moreAbove, bool& moreBelow, double current, double lowFreq,
                            double highFreq);

private:
    bool m_bUseRaster = true;
    bool m_bSystem = false;
    bool m_bVisible = true;
};

#endif
