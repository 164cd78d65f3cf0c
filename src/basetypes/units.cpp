#include "basetypes/units.h"

#include "basetypes/enumhelpers_p.h"

namespace {

// Queued signals look argument types up by name, so the types must be known
// before the first such connection, not only after the first qMetaTypeId call.
void registerUnitMetaTypes()
{
    qRegisterMetaType<FrequencyUnit::Type>();
    qRegisterMetaType<TimeUnit::Type>();
    qRegisterMetaType<EnumHelpers::EmptyEnum::Type>();
}
Q_CONSTRUCTOR_FUNCTION(registerUnitMetaTypes)

} // namespace

const QList<FrequencyUnit::Type>& FrequencyUnit::values()
{
    static const QList<Type> all{Hz, kHz, MHz, GHz, THz};
    return all;
}

QString FrequencyUnit::toString(Type value)
{
    switch (value) {
    case Hz:
        return QStringLiteral("Hz");
    case kHz:
        return QStringLiteral("kHz");
    case MHz:
        return QStringLiteral("MHz");
    case GHz:
        return QStringLiteral("GHz");
    case THz:
        return QStringLiteral("THz");
    }
    return QString();
}

QString FrequencyUnit::toDisplayString(Type value)
{
    switch (value) {
    case Hz:
        return QObject::tr("Hz", "FrequencyUnit");
    case kHz:
        return QObject::tr("kHz", "FrequencyUnit");
    case MHz:
        return QObject::tr("MHz", "FrequencyUnit");
    case GHz:
        return QObject::tr("GHz", "FrequencyUnit");
    case THz:
        return QObject::tr("THz", "FrequencyUnit");
    }
    return QString();
}

KVBASE_ENUM_LOOKUPS(FrequencyUnit)

const QList<TimeUnit::Type>& TimeUnit::values()
{
    static const QList<Type> all{ns, us, ms, s, m, h, d};
    return all;
}

QString TimeUnit::toString(Type value)
{
    switch (value) {
    case ns:
        return QStringLiteral("ns");
    case us:
        return QStringLiteral("us");
    case ms:
        return QStringLiteral("ms");
    case s:
        return QStringLiteral("s");
    case m:
        return QStringLiteral("m");
    case h:
        return QStringLiteral("h");
    case d:
        return QStringLiteral("d");
    }
    return QString();
}

QString TimeUnit::toDisplayString(Type value)
{
    switch (value) {
    case ns:
        return QObject::tr("ns", "TimeUnit");
    case us:
        return QObject::tr("µs", "TimeUnit");
    case ms:
        return QObject::tr("ms", "TimeUnit");
    case s:
        return QObject::tr("s", "TimeUnit");
    case m:
        return QObject::tr("m", "TimeUnit");
    case h:
        return QObject::tr("h", "TimeUnit");
    case d:
        return QObject::tr("d", "TimeUnit");
    }
    return QString();
}

KVBASE_ENUM_LOOKUPS(TimeUnit)
