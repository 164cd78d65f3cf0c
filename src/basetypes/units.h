#ifndef KVBASE_BASETYPES_UNITS_H
#define KVBASE_BASETYPES_UNITS_H

/// \file basetypes/units.h
/// \brief Frequency and time units with their texts.

#include "kvbase_export.h"

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QString>

// Each Type has int as its underlying type, so any int is a valid value (one
// outside the list gives an empty text).

/// Frequency units shown beside numbers. A value is the unit's decimal
/// exponent in hertz (kHz = 3), so 10^value converts to hertz. Values are
/// ordered from Hz up to THz; successor/predecessor step through them within a
/// caller's allowed set. Thread-safe.
///
/// \code
/// bool ok = false;
/// FrequencyUnit::Type unit = FrequencyUnit::fromString(QStringLiteral("k"), &ok);   // kHz, ok
/// double hz = 12.5 * std::pow(10.0, unit);                                         // 12500.0
/// \endcode
struct KVBASE_EXPORT FrequencyUnit
{
    Q_GADGET

public:
    /// The unit as its decimal exponent in hertz.
    enum Type : int
    {
        Hz = 0,  ///< hertz
        kHz = 3, ///< kilohertz
        MHz = 6, ///< megahertz
        GHz = 9, ///< gigahertz
        THz = 12 ///< terahertz
    };
    Q_ENUM(Type)

    /// \return Hz, kHz, MHz, GHz, THz
    static const QList<Type>& values();
    /// \param value a unit
    /// \return "Hz", "kHz", ...; empty for a value outside the list
    static QString toString(Type value);
    /// \param value a unit
    /// \return the unit's text translated (context "QObject", disambiguation
    ///         "FrequencyUnit"); empty for a value outside the list
    static QString toDisplayString(Type value);
    /// Prefix match of the first word, case-insensitive, first in values()
    /// order: "m" is MHz (see EnumHelpers::fromString()).
    /// \param text the text to read
    /// \param ok   receives whether a unit matched; may be null
    /// \return the unit; Hz when nothing matched
    static Type fromString(const QString& text, bool* ok = nullptr);
    /// \param value   the unit to start from
    /// \param allowed the units to choose from
    /// \return the next larger unit in `allowed`, or `value` when there is none
    static Type successor(Type value, const QList<Type>& allowed);
    /// \param value   the unit to start from
    /// \param allowed the units to choose from
    /// \return the next smaller unit in `allowed`, or `value` when there is
    ///         none; never Hz, even when allowed
    static Type predecessor(Type value, const QList<Type>& allowed);
};

/// Time units shown beside numbers. Below one second a value is the unit's
/// decimal exponent in seconds (ms = -3); from one second up it is the
/// unit's length in seconds (h = 3600). Values are ordered from ns up to d.
/// Thread-safe.
struct KVBASE_EXPORT TimeUnit
{
    Q_GADGET

public:
    /// Below one second the decimal exponent in seconds, from one second up
    /// the length in seconds.
    enum Type : int
    {
        ns = -9,  ///< nanoseconds
        us = -6,  ///< microseconds
        ms = -3,  ///< milliseconds
        s = 0,    ///< seconds
        m = 60,   ///< minutes
        h = 3600, ///< hours
        d = 86400 ///< days
    };
    Q_ENUM(Type)

    /// \return ns, us, ms, s, m, h, d
    static const QList<Type>& values();
    /// \param value a unit
    /// \return "ns", "us", "ms", ...; empty for a value outside the list
    static QString toString(Type value);
    /// \param value a unit
    /// \return the unit's text translated (context "QObject", disambiguation
    ///         "TimeUnit"); the microsecond unit shows as "µs" with the micro
    ///         sign U+00B5; empty for a value outside the list
    static QString toDisplayString(Type value);
    /// Prefix match of the first word, case-insensitive, first in values()
    /// order: "m" is ms (see EnumHelpers::fromString()).
    /// \param text the text to read
    /// \param ok   receives whether a unit matched; may be null
    /// \return the unit; ns when nothing matched
    static Type fromString(const QString& text, bool* ok = nullptr);
    /// \param value   the unit to start from
    /// \param allowed the units to choose from
    /// \return the next larger unit in `allowed`, or `value` when there is none
    static Type successor(Type value, const QList<Type>& allowed);
    /// \param value   the unit to start from
    /// \param allowed the units to choose from
    /// \return the next smaller unit in `allowed`, or `value` when there is
    ///         none; never ns, even when allowed
    static Type predecessor(Type value, const QList<Type>& allowed);
};

#endif
