#ifndef KVBASE_COORD_MASKCONVERTER_H
#define KVBASE_COORD_MASKCONVERTER_H

#include "kvbase_export.h"

#include <QString>

/// Merges a raw text (significant characters only) into a display mask and
/// reads it back out of a formatted text. Mask characters "#" (digit), "?"
/// (letter), "E" (E/W), "N" (N/S), "X" and "Y" (axis letters) are input
/// positions; every other character is a literal copied into the text.
/// Positions outside the current mask text are reported through the contract
/// check, never read. A value type; one thread at a time.
class KVBASE_EXPORT MaskConverter
{
public:
    MaskConverter() = default;
    MaskConverter(const MaskConverter&) = default;
    MaskConverter& operator=(const MaskConverter&) = default;
    // Virtual: the class is a polymorphic base that applications may derive from.
    virtual ~MaskConverter();

    /// placeholder: shown at input positions that the raw text does not fill
    void SetMask(const QString& mask, char placeholder);
    const QString& GetMask() const { return m_strMask; }
    const QString& GetMaskText() const { return m_strMaskText; }
    QString GetPlaceHolder() const;

    /// Rebuilds the mask text: literals copied, input positions filled in order
    /// from raw without checks, placeholders once it runs out; surplus raw
    /// characters are dropped.
    void SetText(const QString& raw);
    /// The mask text's characters at the input positions of the mask, in order.
    QString GetText() const;
    void SetFormattedText(const QString& text) { m_strMaskText = text; }
    const QString& GetFormattedText() const { return m_strMaskText; }

    /// True at a literal of the mask, false at an input position and, after the
    /// contract report, outside the mask text.
    bool IsMaskChar(unsigned int nPos) const;
    /// Whether c may be typed at input position nPos; if so out receives the
    /// character to store (letters upper-cased). False at literals and, after
    /// the contract report, outside the mask text.
    bool GetReplacementChar(unsigned int nPos, char c, char& out) const;

private:
    bool IsPositionInMaskText(unsigned int nPos) const;

    QString m_strMask;
    QString m_strMaskText;
    char m_cPlaceHolder = '_';
};

#endif // KVBASE_COORD_MASKCONVERTER_H
