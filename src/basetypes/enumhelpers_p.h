#ifndef KVBASE_BASETYPES_ENUMHELPERS_P_H
#define KVBASE_BASETYPES_ENUMHELPERS_P_H

#include "basetypes/enumhelpers.h"

// The static functions that every enumeration struct declares alike, defined
// once here: each struct forwards to the rule in EnumHelpers, so no struct can
// drift from it. Use at namespace scope in the struct's source file.

#define KVBASE_ENUM_FROM_STRING(Struct)                                                                      \
    Struct::Type Struct::fromString(const QString& text, bool* ok)                                           \
    {                                                                                                        \
        return ::EnumHelpers::fromString<Struct>(text, ok);                                                  \
    }

// fromString, successor and predecessor, for structs whose values are ordered units.
#define KVBASE_ENUM_LOOKUPS(Struct)                                                                          \
    KVBASE_ENUM_FROM_STRING(Struct)                                                                          \
    Struct::Type Struct::successor(Type value, const QList<Type>& allowed)                                   \
    {                                                                                                        \
        return ::EnumHelpers::successor<Struct>(value, allowed);                                             \
    }                                                                                                        \
    Struct::Type Struct::predecessor(Type value, const QList<Type>& allowed)                                 \
    {                                                                                                        \
        return ::EnumHelpers::predecessor<Struct>(value, allowed);                                           \
    }

#endif
