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
    void nullStampIsInvalid();
    void stampWithNumberZeroMillisecondsIsEpoch();
    void fromQDateTime();
    void implicitSequenceNumbersAreConsecutive();
    void sequenceNumbersAreDistinctAcrossThreads();
    void addMSecsTakesFreshNumber();
    void addSecs_data();
    void addSecs();
    void setMovesNow();
    void systemClockIsUnshifted();
    void toString_data();
    void toString();
    void toStringMatchesQDateTime();
    void copiesFormatIndependently();
};

void tst_Clock::nullStampIsInvalid()
{
    const Timestamp null;
    QVERIFY(null.isNull());
    QVERIFY(!null.isValid());
    QVERIFY(null.toQDateTime().isNull());
    QCOMPARE(null.first, 0LL);
    QCOMPARE(null.second, 0ULL);
}

void tst_Clock::stampWithNumberZeroMillisecondsIsEpoch()
{
    const Timestamp stamp(0, 5ULL);
    QVERIFY(!stamp.isNull());
    QVERIFY(stamp.isValid());
    QCOMPARE(stamp.second, 5ULL);
    const QDateTime dt = stamp;
    QCOMPARE(dt.toUTC(), QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC));
    QCOMPARE(static_cast<long long>(Timestamp(-1234, 7ULL)), -1234LL);
}

void tst_Clock::fromQDateTime()
{
    const Timestamp before(10);
    QVERIFY(Timestamp::fromQDateTime(QDateTime(), 99ULL).isNull());
    const Timestamp after(10);
    QCOMPARE(after.second, before.second + 1); // the null date took no number

    const QDateTime dt(QDate(2024, 5, 1), QTime(12, 0, 0, 123), Qt::UTC);
    const Timestamp given = Timestamp::fromQDateTime(dt, 42ULL);
    QCOMPARE(given.first, 1714564800123LL);
    QCOMPARE(given.second, 42ULL);
    QCOMPARE(given.toQDateTime(), dt);
    QCOMPARE(Timestamp::fromQDateTime(dt).second, after.second + 1);
}

void tst_Clock::implicitSequenceNumbersAreConsecutive()
{
    const Clock clock;
    const Timestamp a = clock.currentTimestampUtc();
    const Timestamp b = clock.currentTimestampUtc();
    const Timestamp c(a.first);
    QVERIFY(a.second > 0);
    QCOMPARE(b.second, a.second + 1);
    QCOMPARE(c.second, a.second + 2);
    QVERIFY(a < b); // pair order: same millisecond is told apart by number
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
    for (auto& thread : threads)
        thread.join();
    QSet<unsigned long long> seen;
    for (const auto& list : numbers) {
        for (int i = 1; i < perThread; ++i)
            QVERIFY(list[i] > list[i - 1]);
        for (const auto n : list)
            seen.insert(n);
    }
    QCOMPARE(seen.size(), threadCount * perThread);
}

void tst_Clock::addMSecsTakesFreshNumber()
{
    const Timestamp source(1000, 5ULL);
    const Timestamp later = source.addMSecs(-1500);
    QCOMPARE(later.first, -500LL);
    QVERIFY(later.second != source.second);
    QCOMPARE(source.addMSecs(1).second, later.second + 1);
    QCOMPARE(Timestamp(LLONG_MAX, 1ULL).addMSecs(1).first, LLONG_MIN);
}

void tst_Clock::addSecs_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<long long>("expected");

    const long long base = 1714564800000LL;
    QTest::newRow("one hour ahead") << 3600 << base + 3600000LL;
    QTest::newRow("one day back") << -86400 << base - 86400000LL;
    QTest::newRow("largest offset that fits 32 bits") << 2147483 << base + 2147483000LL;
    QTest::newRow("most negative offset that fits 32 bits") << -2147483 << base - 2147483000LL;
    // 2147484000 - 2^32 = -2147483296
    QTest::newRow("one second more wraps negative") << 2147484 << base - 2147483296LL;
    // 3000000000 - 2^32 = -1294967296
    QTest::newRow("3000000 s wraps negative") << 3000000 << base - 1294967296LL;
    QTest::newRow("-3000000 s wraps positive") << -3000000 << base + 1294967296LL;
}

void tst_Clock::addSecs()
{
    QFETCH(int, seconds);
    QFETCH(long long, expected);
    const Timestamp source(1714564800000LL, 3ULL);
    const Timestamp result = source.addSecs(seconds);
    QCOMPARE(result.first, expected);
    QVERIFY(result.second != source.second);
}

void tst_Clock::setMovesNow()
{
    Clock clock;
    const Timestamp target(1000000000000LL, 1ULL); // 2001-09-09
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    clock.set(target);
    const Timestamp now = clock.currentTimestampUtc();
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(now.first >= target.first);
    QVERIFY(now.first - target.first <= after - before);

    clock.setMSecsDelta(-before);
    QCOMPARE(clock.msecsDelta(), -before);
    const Timestamp shifted = clock.currentTimestampUtc();
    QVERIFY(shifted.first >= 0);
    QVERIFY(shifted.first <= QDateTime::currentMSecsSinceEpoch() - before);

    const Clock copy = clock;
    QCOMPARE(copy.msecsDelta(), -before);
}

void tst_Clock::systemClockIsUnshifted()
{
    QCOMPARE(&Clock::system(), &Clock::system());
    QCOMPARE(Clock::system().msecsDelta(), 0LL);
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const Timestamp now = Clock::system().currentTimestampUtc();
    QVERIFY(now.first >= before);
    QVERIFY(now.first <= QDateTime::currentMSecsSinceEpoch());
}

void tst_Clock::toString_data()
{
    QTest::addColumn<unsigned long long>("microseconds");
    QTest::addColumn<QString>("expected");

    // Dates from `date -u -d @<seconds>`.
    QTest::newRow("epoch on the first call") << 0ULL << "1970-01-01 00:00:00.000.000";
    QTest::newRow("whole milliseconds end in .000") << 1500000ULL << "1970-01-01 00:00:01.500.000";
    QTest::newRow("one microsecond shows") << 1500001ULL << "1970-01-01 00:00:01.500.001";
    QTest::newRow("last microsecond of a second") << 1999999ULL << "1970-01-01 00:00:01.999.999";
    QTest::newRow("2024") << 1714564800123456ULL << "2024-05-01 12:00:00.123.456";
    QTest::newRow("last second of 32 bits") << 4294967295999999ULL << "2106-02-07 06:28:15.999.999";
    QTest::newRow("seconds wrap at 32 bits") << 4294967296000005ULL << "1970-01-01 00:00:00.000.005";
    QTest::newRow("largest input stays in range") << ULLONG_MAX << "2101-08-26 13:04:45.551.615";
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
    // Jumps of 0.37 s revisit a second about every third stamp and cross
    // days, months and years, exercising both cache hits and misses. Also run
    // under a zone with daylight saving time (see CMakeLists.txt).
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
    QCOMPARE(copy.toString(second), QStringLiteral("2024-05-01 12:00:00.123.456"));

    QString& text = copy.toString(first);
    const QString kept = text;
    copy.toString(second);
    QCOMPARE(kept, QStringLiteral("1970-01-01 00:00:01.500.001"));
}

QTEST_APPLESS_MAIN(tst_Clock)
#include "tst_clock.moc"
