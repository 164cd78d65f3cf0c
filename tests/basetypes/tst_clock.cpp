#include "basetypes/clock.h"
#include "basetypes/timestamp2qstring.h"

#include <QSet>
#include <QTest>

#include <thread>
#include <vector>

using Timestamp = Clock::Timestamp;

class tst_Clock : public QObject
{
    Q_OBJECT

private slots:
    void nullAndEpochStamps();
    void sequenceNumbersAreFreshAndConsecutive();
    void sequenceNumbersAreDistinctAcrossThreads();
    void addSecs_data();
    void addSecs();
    void setMovesNow();
    void toString_data();
    void toString();
    void toStringMatchesQDateTime();
    void copiesFormatIndependently();
};

void tst_Clock::nullAndEpochStamps()
{
    QVERIFY(Timestamp().isNull());
    QVERIFY(!Timestamp().isValid());
    QVERIFY(Timestamp().toQDateTime().isNull());
    const Timestamp epoch(0, 5ULL);
    QVERIFY(!epoch.isNull());
    QVERIFY(epoch.isValid());
    QCOMPARE(QDateTime(epoch).toUTC(), QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC));

    const QDateTime dt(QDate(2024, 5, 1), QTime(12, 0, 0, 123), Qt::UTC);
    const Timestamp stamp = Timestamp::fromQDateTime(dt, 42ULL);
    QCOMPARE(stamp, Timestamp(1714564800123LL, 42ULL));
    QCOMPARE(stamp.toQDateTime(), dt);
}

void tst_Clock::sequenceNumbersAreFreshAndConsecutive()
{
    const Clock clock;
    const Timestamp a = clock.currentTimestampUtc();
    const Timestamp b = clock.currentTimestampUtc();
    QVERIFY(a.second > 0);
    QCOMPARE(b.second, a.second + 1);
    QVERIFY(Timestamp::fromQDateTime(QDateTime(), 9ULL).isNull()); // takes no number
    const Timestamp c = a.addMSecs(-1500);
    QCOMPARE(c, Timestamp(a.first - 1500, a.second + 2));
    QCOMPARE(c.addSecs(1).second, a.second + 3);
    QCOMPARE(Timestamp::fromQDateTime(QDateTime::currentDateTime()).second, a.second + 4);
    QCOMPARE(Timestamp(LLONG_MAX, 1ULL).addMSecs(1).first, LLONG_MIN);
}

void tst_Clock::sequenceNumbersAreDistinctAcrossThreads()
{
    constexpr int threadCount = 4;
    constexpr int perThread = 5000;
    std::vector<std::vector<unsigned long long>> numbers(threadCount);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&numbers, t] {
            for (int i = 0; i < perThread; ++i)
                numbers[t].push_back(Clock::system().currentTimestampUtc().second);
        });
    }
    QSet<unsigned long long> seen;
    for (int t = 0; t < threadCount; ++t) {
        threads[t].join();
        QVERIFY(std::is_sorted(numbers[t].begin(), numbers[t].end()));
        for (const auto n : numbers[t])
            seen.insert(n);
    }
    QCOMPARE(seen.size(), threadCount * perThread);
}

void tst_Clock::addSecs_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<long long>("offset");
    QTest::newRow("one day back") << -86400 << -86400000LL;
    QTest::newRow("largest offset that fits 32 bits") << 2147483 << 2147483000LL;
    QTest::newRow("one second more wraps negative") << 2147484 << 2147484000LL - 4294967296LL;
    QTest::newRow("3000000 s wraps negative") << 3000000 << 3000000000LL - 4294967296LL;
    QTest::newRow("-3000000 s wraps positive") << -3000000 << 4294967296LL - 3000000000LL;
}

void tst_Clock::addSecs()
{
    QFETCH(int, seconds);
    QFETCH(long long, offset);
    const Timestamp source(1714564800000LL, 3ULL);
    QCOMPARE(source.addSecs(seconds).first, source.first + offset);
}

void tst_Clock::setMovesNow()
{
    QCOMPARE(Clock::system().msecsDelta(), 0LL);
    Clock clock;
    const Timestamp target(1000000000000LL, 1ULL);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    clock.set(target);
    const Timestamp now = clock.currentTimestampUtc();
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(now.first >= target.first);
    QVERIFY(now.first - target.first <= after - before);
    clock.setMSecsDelta(-before);
    const Timestamp shifted = clock.currentTimestampUtc();
    QVERIFY(shifted.first >= 0 && shifted.first <= QDateTime::currentMSecsSinceEpoch() - before);
}

void tst_Clock::toString_data()
{
    QTest::addColumn<unsigned long long>("microseconds");
    QTest::addColumn<QString>("expected");
    // Dates from `date -u -d @<seconds>`.
    QTest::newRow("epoch on the first call") << 0ULL << "1970-01-01 00:00:00.000.000";
    QTest::newRow("whole milliseconds end in .000") << 1500000ULL << "1970-01-01 00:00:01.500.000";
    QTest::newRow("one microsecond shows") << 1500001ULL << "1970-01-01 00:00:01.500.001";
    QTest::newRow("2024") << 1714564800123456ULL << "2024-05-01 12:00:00.123.456";
    QTest::newRow("last second of 32 bits") << 4294967295999999ULL << "2106-02-07 06:28:15.999.999";
    QTest::newRow("seconds wrap at 32 bits") << 4294967296000005ULL << "1970-01-01 00:00:00.000.005";
    QTest::newRow("largest input keeps its fraction") << ULLONG_MAX << "2101-08-26 13:04:45.551.615";
}

void tst_Clock::toString()
{
    QFETCH(unsigned long long, microseconds);
    QFETCH(QString, expected);
    TimeStamp2QString formatter;
    QCOMPARE(formatter.toString(microseconds), expected);
    QCOMPARE(formatter.toString(microseconds), expected); // from the cached date
}

void tst_Clock::toStringMatchesQDateTime()
{
    // Steps of 0.37 s mostly stay within a second, monthly jumps cross dates;
    // also run under a zone with daylight saving time (see CMakeLists.txt).
    TimeStamp2QString formatter;
    unsigned long long us = 946684799000000ULL; // 1999-12-31 23:59:59
    for (int i = 0; i < 2000; ++i) {
        const QString expected = QDateTime::fromMSecsSinceEpoch(qint64(us / 1000), Qt::LocalTime)
                                     .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz.")) +
                                 QStringLiteral("%1").arg(us % 1000, 3, 10, QLatin1Char('0'));
        QCOMPARE(formatter.toString(us), expected);
        us += (i % 7 == 0) ? 86400000000ULL * 31 : 370001ULL;
    }
}

void tst_Clock::copiesFormatIndependently()
{
    unsigned long long first = 1500001ULL;
    unsigned long long second = 1714564800123456ULL;
    auto original = std::make_unique<TimeStamp2QString>();
    original->toString(first);
    TimeStamp2QString copy(*original);
    TimeStamp2QString assigned;
    assigned = *original;
    original.reset();
    QCOMPARE(copy.toString(first), QStringLiteral("1970-01-01 00:00:01.500.001"));
    QCOMPARE(assigned.toString(second), QStringLiteral("2024-05-01 12:00:00.123.456"));
    const QString kept = copy.toString(second);
    copy.toString(first);
    QCOMPARE(kept, QStringLiteral("2024-05-01 12:00:00.123.456"));
}

QTEST_APPLESS_MAIN(tst_Clock)
#include "tst_clock.moc"
