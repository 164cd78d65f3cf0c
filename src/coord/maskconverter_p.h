#ifndef KVBASE_COORD_MASKCONVERTER_P_H
#define KVBASE_COORD_MASKCONVERTER_P_H

// MaskConverter's merging and splitting as plain functions, which Coord's formatted
// texts use without an object. Not part of the API.

#include <QString>

namespace MaskText {

/// True at an input position of a mask: "#", "?", "E", "N", "X" or "Y".
bool isInputPosition(QChar maskChar);
/// The mask with its input positions filled in order from raw (as it stands), with
/// placeholder once raw is used up: MaskConverter::SetText's mask text.
QString merge(const QString& mask, const QString& raw, QChar placeholder);
/// The characters of maskText at the input positions of mask, in order, as far as both
/// reach: MaskConverter::GetText.
QString extract(const QString& mask, const QString& maskText);

} // namespace MaskText

#endif // KVBASE_COORD_MASKCONVERTER_P_H
