#ifndef KVBASE_BASETYPES_UNITS_H
#define KVBASE_BASETYPES_UNITS_H

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
struct KVBASE_EXPORT FrequencyUnit
{
    Q_GADGET

public:
    enum Type : int
    {
        Hz = 0,
        kHz = 3,
        MHz = 6,
        GHz = 9,
        THz = 12
    };
    Q_ENUM(Type)

    /// Hz, kHz, MHz, GHz, THz.
    static const QList<Type>& values();
    /// "Hz", "kHz", ...; empty for a value outside the list.
    static QString toString(Type value);
    /// Translated (context "QObject", disambiguation "FrequencyUnit").
    static QString toDisplayString(Type value);
    /// Prefix match, case-insensitive, first in values() order: "m" is MHz.
    static Type fromString(const QString& text, bool* ok = nullptr);
    /// The next larger unit in `allowed`, or `value` when there is none.
    static Type successor(Type value, const QList<Type>& allowed);
    /// The next smaller unit in `allowed`, or `value` when there is none; never
    /// Hz, even when allowed.
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
    enum Type : int
    {
        ns = -9,
        us = -6,
        ms = -3,
        s = 0,
        m = 60,
        h = 3600,
        d = 86400
    };
    Q_ENUM(Type)

    /// ns, us, ms, s, m, h, d.
    static const QList<Type>& values();
    /// "ns", "us", "ms", ...; empty for a value outside the list.
    static QString toString(Type value);
    /// Translated (context "QObject", disambiguation "TimeUnit"); the
    /// microsecond unit shows as "µs" with the micro sign U+00B5.
    static QString toDisplayString(Type value);
    /// Prefix match, case-insensitive, first in values() order: "m" is ms.
    static Type fromString(const QString& text, bool* ok = nullptr);
    /// The next larger unit in `allowed`, or `value` when there is none.
    static Type successor(Type value, const QList<Type>& allowed);
    /// The next smaller unit in `allowed`, or `value` when there is none; never
    /// ns, even when allowed.
    static Type predecessor(Type value, const QList<Type>& allowed);
};

#endif
