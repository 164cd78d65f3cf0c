#ifndef KVBASE_TESTS_KVTEST_H
#define KVBASE_TESTS_KVTEST_H

// Shared by the test programs: a fixed locale and time zone, and test rows
// read from the data files under tests/data.

#include <QFile>
#include <QLocale>
#include <QTest>

#include <ctime>
#include <list>

namespace KvTest {

// Texts that depend on the locale or the time zone then read the same on
// every machine, whatever the environment of the run.
inline void pinLocaleAndZone(const char* zone = "UTC")
{
    QLocale::setDefault(QLocale::c());
    qputenv("TZ", zone);
    tzset();
}

// One row per line of tests/data/<path>: fields separated by "|", the first
// one names the row, the others fill the QString columns named in `columns`
// (separated by blanks) in order. One blank on either side of a "|" belongs
// to the separator, further blanks to the field; "<TAB>" and "<LF>" stand for
// a tab and a line feed. Blank lines and lines starting with "#" are skipped.
inline void addRows(const char* path, const char* columns)
{
    static std::list<QByteArray> names; // QTest keeps the pointers
    const QList<QByteArray> wanted = QByteArray(columns).split(' ');
    for (const QByteArray& column : wanted)
        QTest::addColumn<QString>(names.insert(names.end(), column)->constData());
    QFile file(QStringLiteral(KVBASE_TEST_DATA_DIR "/") + QLatin1String(path));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    int rows = 0;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
        if (line.trimmed().isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        QStringList fields = line.split(QLatin1Char('|'));
        if (fields.size() != wanted.size() + 1)
            qFatal("%s: %d fields in: %s", path, int(fields.size()), qPrintable(line));
        QTestData& row = QTest::newRow(qPrintable(fields.takeFirst().trimmed()));
        for (QString field : fields) {
            if (field.startsWith(QLatin1Char(' ')))
                field.remove(0, 1);
            if (field.endsWith(QLatin1Char(' ')))
                field.chop(1);
            row << field.replace(QLatin1String("<TAB>"), QLatin1String("\t"))
                       .replace(QLatin1String("<LF>"), QLatin1String("\n"));
        }
        ++rows;
    }
    if (rows == 0)
        qFatal("no rows in %s", path);
}

// The current row's text in `column` of a table made by addRows.
inline const QString& field(const char* column)
{
    return *static_cast<const QString*>(QTest::qData(column, qMetaTypeId<QString>()));
}

} // namespace KvTest

#endif
