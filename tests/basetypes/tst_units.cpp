#include "basetypes/enumhelpers.h"
#include "basetypes/numberhelpers.h"
#include "basetypes/units.h"

#include "kvtest.h"

using KvTest::field;

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

// The unit the current row's step reaches.
template <typename Unit>
QString stepped()
{
    QList<typename Unit::Type> units;
    for (const QString& unit : KvTest::field("allowed").split(' ', Qt::SkipEmptyParts))
        units << typename Unit::Type(unit.toInt());
    const auto start = typename Unit::Type(KvTest::field("from").toInt());
    const auto list = units.isEmpty() ? Unit::values() : units;
    return QString::number(KvTest::field("direction") == "successor" ? Unit::successor(start, list)
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
        QCOMPARE(TimeUnit::toString(TimeUnit::us), QString("us"));
        QCOMPARE(TimeUnit::toDisplayString(TimeUnit::us), QString("\u00b5s"));
        QCOMPARE(FrequencyUnit::toDisplayString(FrequencyUnit::kHz), QString("kHz"));
        QCOMPARE(FrequencyUnit::toString(FrequencyUnit::Type(1)), QString());
        // Queued connections look the types up by name, before anyone asked for their ids.
        QVERIFY(registeredByName("FrequencyUnit::Type"));
        QVERIFY(registeredByName("TimeUnit::Type"));
    }

    void steps_data() { KvTest::addRows("basetypes/unitsteps.txt", "unit direction from allowed reached"); }

    void steps()
    {
        QCOMPARE(field("unit") == "TimeUnit" ? stepped<TimeUnit>() : stepped<FrequencyUnit>(),
                 field("reached"));
    }

    void parse_data() { KvTest::addRows("basetypes/parsing.txt", "type text base value ok"); }

    void parse()
    {
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
        QVERIFY2(parsers.contains(field("type")), qPrintable(field("type")));
        bool parsedOk = field("ok") != "true";
        QCOMPARE(parsers.value(field("type"))(field("text"), field("base").toInt(), &parsedOk),
                 field("value"));
        QCOMPARE(parsedOk, field("ok") == "true");
        QCOMPARE(parsers.value(field("type"))(field("text"), field("base").toInt(), nullptr), field("value"));
    }
};

QTEST_APPLESS_MAIN(TestUnits)
#include "tst_units.moc"
