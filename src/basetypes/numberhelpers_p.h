#ifndef KVBASE_BASETYPES_NUMBERHELPERS_P_H
#define KVBASE_BASETYPES_NUMBERHELPERS_P_H

#include <QString>

// Number texts as Qt 5 read and wrote them. Files, XML jobs and edit fields
// written under one Qt version are read under the other, so the library keeps
// Qt 5's texts in its Qt 6 build; in the Qt 5 build these are Qt's own.
namespace NumberHelpers {

/// The text to hand to QString::toInt() and its relatives in `base` so Qt 6
/// gives Qt 5's result: Qt 6 reads only ASCII blanks around the number, no
/// U+2212 minus, and takes "0b" as a binary prefix, which Qt 5 did not. Null
/// when Qt 5 rejected the text.
QString qt5IntegerText(const QString& text, int base);

/// QString::number(value, 'g', QLocale::FloatingPointShortest) as Qt 5 wrote
/// it: Qt 6 picks the shorter form, so 200000 became "2e+05" and 0.0001
/// "1e-04"; Qt 5 kept the fixed form for decimal exponents from -4 up to four
/// more than the number of significant digits.
QString qt5ShortestText(double value);

} // namespace NumberHelpers

#endif
