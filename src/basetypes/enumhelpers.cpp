#include "basetypes/enumhelpers.h"
#include "basetypes/enumhelpers_p.h"

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

KVBASE_ENUM_LOOKUPS(EmptyEnum)

} // namespace EnumHelpers
