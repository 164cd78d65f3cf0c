#include "basetypes/enumhelpers.h"
#include "basetypes/numberhelpers.h"
#include "basetypes/units.h"

#include "kvtest.h"

namespace {

// Every text-to-value entry point, reading into the value's text.
using Parser = QString (*)(const QString&, int, bool*);

template <typename T>
QString parsed(const QString& text, int base, bool* ok)
{
    if constexpr (std::is_class<T>::value)
        return QString::number(T::fromString(text, ok));
    else
        return QString::number(NumberHelpers::parse<T>(text, QLocale(QLocale::German), ok, base));
}

template <typename Unit>
QString stepped(const QString& direction, int from, const QString& allowed)
{
    QList<typename Unit::Type> units;
    for (const QString& unit : allowed.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        units << typename Unit::Type(unit.toInt());
    const auto start = typename Unit::Type(from);
    const auto list = units.isEmpty() ? Unit::values() : units;
    return QString::number(direction == QLatin1String("successor") ? Unit::successor(start, list)
                                                                   : Unit::predecessor(start, list));
}

bool registeredByName(const char* name)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return QMetaType::fromName(name).isValid();
#else
    return QMetaType::type(name) != QMetaType::UnknownType;
#endif
}

} // namespace

class TestUnits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { KvTest::pinLocaleAndZone(); }

    // Only the microsecond unit shows otherwise than it is written.
    void texts()
    {
        QCOMPARE(TimeUnit::toString(TimeUnit::us), QStringLiteral("us"));
        QCOMPARE(TimeUnit::toDisplayString(TimeUnit::us), QStringLiteral("\u00b5s"));
        QCOMPARE(FrequencyUnit::toDisplayString(FrequencyUnit::kHz), QStringLiteral("kHz"));
        QCOMPARE(FrequencyUnit::toString(FrequencyUnit::Type(1)), QString());
        // Queued connections look the types up by name, before anyone asked for their ids.
        QVERIFY(registeredByName("FrequencyUnit::Type"));
        QVERIFY(registeredByName("TimeUnit::Type"));
    }

    void steps_data()
    {
        KvTest::addRows("basetypes/unitsteps.txt", {"unit", "direction", "from", "allowed", "reached"});
    }

    void steps()
    {
        QFETCH(QString, unit);
        QFETCH(QString, direction);
        QFETCH(QString, from);
        QFETCH(QString, allowed);
        QFETCH(QString, reached);
        QCOMPARE(unit == QLatin1String("TimeUnit") ? stepped<TimeUnit>(direction, from.toInt(), allowed)
                                                   : stepped<FrequencyUnit>(direction, from.toInt(), allowed),
                 reached);
    }

    void parse_data() { KvTest::addRows("basetypes/parsing.txt", {"type", "text", "base", "value", "ok"}); }

    void parse()
    {
        QFETCH(QString, type);
        QFETCH(QString, text);
        QFETCH(QString, base);
        QFETCH(QString, value);
        QFETCH(QString, ok);
        const QHash<QString, Parser> parsers{{"FrequencyUnit", &parsed<FrequencyUnit>},
                                             {"TimeUnit", &parsed<TimeUnit>},
                                             {"EmptyEnum", &parsed<EnumHelpers::EmptyEnum>},
                                             {"signed char", &parsed<signed char>},
                                             {"unsigned char", &parsed<unsigned char>},
                                             {"short", &parsed<short>},
                                             {"int", &parsed<int>},
                                             {"unsigned long long", &parsed<unsigned long long>},
                                             {"float", &parsed<float>},
                                             {"double", &parsed<double>},
                                             {"bool", &parsed<bool>}};
        QVERIFY2(parsers.contains(type), qPrintable(type));
        bool parsedOk = ok != QLatin1String("true");
        QCOMPARE(parsers.value(type)(text, base.toInt(), &parsedOk), value);
        QCOMPARE(parsedOk, ok == QLatin1String("true"));
        QCOMPARE(parsers.value(type)(text, base.toInt(), nullptr), value);
    }
};

QTEST_APPLESS_MAIN(TestUnits)
#include "tst_units.moc"
