#include "basetypes/enumhelpers.h"

namespace EnumHelpers {

const QList<EmptyEnum::Type>& EmptyEnum::values()
{
    static const QList<Type> all;
    return all;
}

QString EmptyEnum::toString(Type)
{
    return QString();
}

QString EmptyEnum::toDisplayString(Type)
{
    return QString();
}

EmptyEnum::Type EmptyEnum::fromString(const QString& text, bool* ok)
{
    return EnumHelpers::fromString<EmptyEnum>(text, ok);
}

EmptyEnum::Type EmptyEnum::successor(Type value, const QList<Type>& allowed)
{
    return EnumHelpers::successor<EmptyEnum>(value, allowed);
}

EmptyEnum::Type EmptyEnum::predecessor(Type value, const QList<Type>& allowed)
{
    return EnumHelpers::predecessor<EmptyEnum>(value, allowed);
}

} // namespace EnumHelpers
