#ifndef KVBASE_TESTS_COORD_REFERENCEDATA_H
#define KVBASE_TESTS_COORD_REFERENCEDATA_H

#include <QFile>
#include <QLocale>
#include <QStringList>
#include <QTest>

#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Texts must not depend on how the machine is set up.
inline void pinLocaleAndTimeZone()
{
    QLocale::setDefault(QLocale::c());
    qputenv("TZ", "UTC");
    tzset();
}

// The lines of a file in tests/data/coord that are neither blank nor comments ("#"),
// each with its line number.
inline QList<QPair<int, QString>> dataLines(const char* file)
{
    QFile f(QStringLiteral(KVBASE_TEST_DATA_DIR "/coord/") + QLatin1String(file));
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("missing test data %s", file);
    QList<QPair<int, QString>> lines;
    for (int line = 1; !f.atEnd(); ++line) {
        const QString text = QString::fromUtf8(f.readLine()).trimmed();
        if (!text.isEmpty() && !text.startsWith(QLatin1Char('#')))
            lines.append({line, text});
    }
    if (lines.isEmpty())
        qFatal("no rows in %s", file);
    return lines;
}

// The rows of a reference file (made by make_reference.py with PROJ and GeographicLib) as
// a data table: column "ref" holds a row's fields, and the row is named after file and line.
inline void addReferenceRows(const char* file)
{
    QTest::addColumn<QStringList>("ref");
    for (const auto& [line, text] : dataLines(file))
        QTest::addRow("%s:%d", file, line) << text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// The hand-written cases "section | row name | field | ..." of one section of a file as a
// data table: column "ref" holds the fields after the name.
inline void addCaseRows(const char* file, const char* section)
{
    QTest::addColumn<QStringList>("ref");
    int rows = 0;
    for (const auto& [line, text] : dataLines(file)) {
        QStringList fields = text.split(QLatin1Char('|'));
        for (QString& field : fields)
            field = field.trimmed();
        if (fields.size() < 2 || fields[0] != QLatin1String(section))
            continue;
        QTest::newRow(qPrintable(fields[1])) << QStringList(fields.mid(2));
        ++rows;
    }
    if (rows == 0)
        qFatal("no cases %s in %s", section, file);
}

// Degrees written as "d:m:s" (a sign in front counts for all three) or as a decimal.
inline double degrees(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() != 3)
        return text.toDouble();
    const double value =
        std::fabs(parts[0].toDouble()) + parts[1].toDouble() / 60.0 + parts[2].toDouble() / 3600.0;
    return text.startsWith(QLatin1Char('-')) ? -value : value;
}

// Fails with both values and the tolerance in the message.
#define COMPARE_NEAR(actual, expected, tolerance)                                                            \
    do {                                                                                                     \
        const double a_ = (actual), e_ = (expected), t_ = (tolerance);                                       \
        QVERIFY2(std::fabs(a_ - e_) <= t_, qPrintable(QStringLiteral(#actual " = %1, expected %2 +- %3")     \
                                                          .arg(a_, 0, 'g', 17)                               \
                                                          .arg(e_, 0, 'g', 17)                               \
                                                          .arg(t_)));                                        \
    } while (false)

#endif // KVBASE_TESTS_COORD_REFERENCEDATA_H
