#ifndef KVBASE_BASETYPES_BAND_H
#define KVBASE_BASETYPES_BAND_H

/// \file basetypes/band.h
/// \brief Bands as applications keep them: plain frequency bands with a raster
/// and channel bands, with their XML persistence.

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
///
/// \code
/// Band air(QStringLiteral("Air"), 25000.0, 0.0, true);  // plain band, 25 kHz raster
/// air.GetFrequency(0, 118012000.0);                     // 118000000.0
/// QDomDocument doc;
/// QDomElement element = doc.createElement(QStringLiteral("Band"));
/// air.Save(doc, element);   // <Name>Air</Name><Channelspacing>25000</Channelspacing>...
/// Band loaded;
/// loaded.Read(doc, element);
/// \endcode
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
    /// A plain band (type 0), not a system band, visible.
    /// \param name      shown name
    /// \param stepWidth raster spacing in Hz; 0.0 becomes 10 kHz when first used
    /// \param offset    raster offset in Hz: raster points are offset + n x stepWidth
    /// \param useRaster whether GetFrequency() snaps to the raster
    Band(QString name, double stepWidth, double offset, bool useRaster);
    /// A channel band (type 1), as BandGSM's constructor, visible, with raster.
    /// \param name                     shown name
    /// \param stepWidth                channel spacing in Hz
    /// \param startFreq                frequency in Hz of channel `channelCalculationFactor`
    /// \param startChannel             first channel
    /// \param stopChannel              last channel
    /// \param channelCalculationFactor channel number whose frequency is `startFreq`
    /// \param isSystem                 true for built-in bands, which persist only their name
    Band(QString name, double stepWidth, double startFreq, unsigned long startChannel,
         unsigned long stopChannel, unsigned long channelCalculationFactor, bool isSystem);
    /// Copies the band; the copy is a new QObject without parent.
    /// \param other the band to copy
    Band(const Band& other);
    /// Copies the band's values; the QObject side (parent, name) stays.
    /// \param other the band to copy
    /// \return this band
    Band& operator=(const Band& other);
    ~Band() override;

    /// BandGSM's comparison plus type and the three flags.
    /// \param other the band to compare with
    /// \return true when equal
    bool operator==(const Band& other) const;
    /// \param other the band to compare with
    /// \return the negation of operator==()
    bool operator!=(const Band& other) const { return !(*this == other); }
    /// Orders by step width only.
    /// \param other the band to compare with
    /// \return true when this step width is smaller (false with a NaN)
    bool operator<(const Band& other) const;

    /// \return true for a channel band (type 1)
    bool GetGSM() const { return m_eType == ChannelBand; }
    /// \return whether a plain band snaps frequencies to its raster
    bool GetUseRaster() const { return m_bUseRaster; }
    /// \param useRaster whether a plain band snaps frequencies to its raster
    void SetUseRaster(bool useRaster) { m_bUseRaster = useRaster; }
    /// \return true for a built-in band, which persists only its name
    bool isSystem() const { return m_bSystem; }
    /// \return false once setVisible() was called
    bool isVisible() const { return m_bVisible; }
    /// Hides the band whatever the argument: bands are only ever hidden this way.
    /// \param visible ignored
    void setVisible(bool visible);

    /// Loads the band from the child elements of `element` ("Name", "Channelspacing",
    /// "Type", "Offset", "UseRaster", "StartChannel", "StopChannel", "StartFrequency",
    /// in any order; unknown ones are skipped, absent ones leave the field as it is).
    /// A child that is not an element ends the reading and is traced as
    /// "error loading job."; unreadable numbers read as 0 (a step width of 0 as 10 kHz).
    /// Qt's own parser (QDomDocument::setContent) recurses once per level of
    /// nesting: a document from elsewhere can overflow the stack at some ten
    /// thousand levels before it gets here. Check it first, for example with a
    /// QXmlStreamReader that reads it to the end without an error or a DTD and counts
    /// StartElement against EndElement tokens (the DOM parser goes on past badly
    /// encoded bytes and expands a DTD's entities).
    /// \param doc     the job document (not used)
    /// \param element the band's element; a null element leaves the band as it is
    void Read(QDomDocument& doc, QDomElement& element);
    /// Appends the band's child elements to `element`; a system band writes only its name.
    /// Every number reads back to the same double, bit for bit (NaN as some NaN).
    /// \param doc     the document that creates the elements
    /// \param element the band's element, which receives the children
    void Save(QDomDocument& doc, QDomElement& element);

    /// Channel band: the frequency of `channel` (as BandGSM::GetFrequency()).
    /// Plain band: `frequency` snapped to the raster, if any: down to the
    /// raster point below for a whole-hertz step width, to the nearest one otherwise.
    /// \param channel   channel number, for a channel band
    /// \param frequency frequency in Hz, for a plain band
    /// \return the frequency in Hz (0.0 as BandGSM::GetFrequency() for a channel in no part)
    double GetFrequency(unsigned long channel, double frequency);
    /// Classifies a frequency against the band.
    /// \param frequency frequency in Hz
    /// \param channel   for a channel band containing the frequency, receives the
    ///                  channel (also kept as the stepping cursor); otherwise untouched
    /// \return where the frequency lies
    FrequencyFound FindFrequency(double frequency, unsigned long& channel);
    /// One step up or down (channel bands step from their stored channel
    /// instead of `current` and jump gaps in the direction of travel).
    /// \param up        true steps up, false down
    /// \param moreAbove receives whether a further step up stays within the range
    /// \param moreBelow receives whether a further step down stays within the range
    /// \param current   frequency in Hz to step from (plain bands)
    /// \param lowFreq   lower end of the range in Hz
    /// \param highFreq  upper end of the range in Hz
    /// \return the new frequency in Hz
    double GetNextFrequency(bool up, bool& moreAbove, bool& moreBelow, double current, double lowFreq,
                            double highFreq);

private:
    bool m_bUseRaster = true;
    bool m_bSystem = false;
    bool m_bVisible = true;
};

#endif
