#ifndef KVBASE_COORD_MASKCONVERTER_H
#define KVBASE_COORD_MASKCONVERTER_H

/// \file coord/maskconverter.h
/// \brief Raw texts merged into display masks and read back.

#include "kvbase_export.h"

#include <QString>

/// Merges a raw text (significant characters only) into a display mask and
/// reads it back out of a formatted text. Mask characters "#" (digit), "?"
/// (letter), "E" (E/W), "N" (N/S), "X" and "Y" (axis letters) are input
/// positions; every other character is a literal copied into the text.
/// Positions outside the current mask text are reported through the contract
/// check, never read. A value type; one thread at a time.
///
/// \code
/// MaskConverter converter;
/// converter.SetMask(QStringLiteral("##?-??"), '_');
/// converter.SetText(QStringLiteral("34VC"));
/// converter.GetFormattedText();   // "34V-C_"
/// \endcode
class KVBASE_EXPORT MaskConverter
{
public:
    /// Empty mask and text, placeholder "_".
    MaskConverter() = default;
    /// Copies mask, text and placeholder.
    MaskConverter(const MaskConverter&) = default;
    /// Copies mask, text and placeholder.
    /// \return this converter
    MaskConverter& operator=(const MaskConverter&) = default;
    // Virtual: the class is a polymorphic base that applications may derive from.
    virtual ~MaskConverter();

    /// Sets the display mask; the mask text stays until SetText().
    /// \param mask        the display mask
    /// \param placeholder shown at input positions that the raw text does not fill
    void SetMask(const QString& mask, char placeholder);
    /// \return the display mask
    const QString& GetMask() const { return m_strMask; }
    /// \return the formatted text (the same as GetFormattedText())
    const QString& GetMaskText() const { return m_strMaskText; }
    /// \return the placeholder as a one-character text
    QString GetPlaceHolder() const;

    /// Rebuilds the mask text: literals copied, input positions filled in order
    /// from raw without checks, placeholders once it runs out; surplus raw
    /// characters are dropped.
    /// \param raw the significant characters
    void SetText(const QString& raw);
    /// \return the mask text's characters at the input positions of the mask, in order
    QString GetText() const;
    /// \param text a formatted text, as shown in the edit; taken as it is
    void SetFormattedText(const QString& text) { m_strMaskText = text; }
    /// \return the formatted text
    const QString& GetFormattedText() const { return m_strMaskText; }

    /// \param nPos position in the mask text, from 0
    /// \return true at a literal of the mask, false at an input position and,
    ///         after the contract report, outside the mask text
    bool IsMaskChar(unsigned int nPos) const;
    /// Whether c may be typed at an input position.
    /// \param nPos position in the mask text, from 0
    /// \param c    the typed character
    /// \param out  receives the character to store (letters upper-cased) when allowed
    /// \return false at literals, for a character the position does not take
    ///         and, after the contract report, outside the mask text
    bool GetReplacementChar(unsigned int nPos, char c, char& out) const;

private:
    bool IsPositionInMaskText(unsigned int nPos) const;

    QString m_strMask;
    QString m_strMaskText;
    char m_cPlaceHolder = '_';
};

#endif // KVBASE_COORD_MASKCONVERTER_H
