#ifndef KVBASE_TESTS_COORD_REFERENCEDATA_H
#define KVBASE_TESTS_COORD_REFERENCEDATA_H

#include <QFile>
#include <QList>
#include <QStringList>
#include <QTest>

#include <cmath>
#include <cstddef>
#include <limits>
#include <tuple>

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Rows of a committed reference file in tests/data/coord (made by make_reference.py
// there with PROJ and GeographicLib), split at blanks; comment lines start with "#".
inline QList<QStringList> referenceRows(const char* file)
{
    QList<QStringList> rows;
    QFile f(QStringLiteral(KVBASE_TEST_DATA_DIR "/coord/") + QLatin1String(file));
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("missing reference data %s", file);
    while (!f.atEnd()) {
        const QString line = QString::fromLatin1(f.readLine()).trimmed();
        if (!line.isEmpty() && !line.startsWith(QLatin1Char('#')))
            rows << line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    return rows;
}

const auto within = [](double v, double expected, double tol) { return std::fabs(v - expected) < tol; };

// A table of tuples, each led by its name, as a QtTest data table: column "row" holds the index.
template <typename Row, std::size_t N>
void addRows(const Row (&rows)[N])
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < N; ++i)
        QTest::newRow(std::get<0>(rows[i])) << int(i);
}

#endif // KVBASE_TESTS_COORD_REFERENCEDATA_H
