#include "basetypes/clock.h"
#include "basetypes/timestamp2qstring.h"

#include "kvtest.h"

#include <algorithm>
#include <thread>

using Timestamp = Clock::Timestamp;

class TestClock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { KvTest::pinLocaleAndZone(); }

    void nullStamp()
    {
        QVERIFY2(Timestamp().isNull(), "the default stamp is not null");
        QVERIFY2(!Timestamp().isValid(), "the null stamp is valid");
        QVERIFY2(Timestamp().toQDateTime().isNull(), "the null stamp has a time");
        QVERIFY2(!Timestamp(0, 5ULL).isNull(), "a numbered stamp at the epoch is null");
        QCOMPARE(QDateTime(Timestamp(0, 5ULL)).toUTC(), QDateTime(QDate(1970, 1, 1), QTime(0, 0), Qt::UTC));
        QVERIFY2(Timestamp::fromQDateTime(QDateTime()).isNull(), "a null QDateTime gives a stamp");
    }

    // Every stamp made without a number takes the next one, even within a millisecond.
    void sequenceNumbers()
    {
        const QDateTime dt(QDate(2024, 5, 1), QTime(12, 0, 0, 123), Qt::UTC);
        QCOMPARE(Timestamp::fromQDateTime(dt, 42ULL), Timestamp(1714564800123LL, 42ULL));
        const Timestamp a = Clock().currentTimestampUtc();
        QCOMPARE(Clock().currentTimestampUtc().second, a.second + 1);
        const Timestamp b = a.addMSecs(-1500);
        QCOMPARE(b, Timestamp(a.first - 1500, a.second + 2));
        QCOMPARE(b.addSecs(1), Timestamp(a.first - 500, a.second + 3));
        QCOMPARE(Timestamp::fromQDateTime(dt).second, a.second + 4);
    }

    // addSecs multiplies in 32 bits: beyond 2147483 s the offset wraps; the milliseconds wrap in 64.
    void offsetsWrap()
    {
        const Timestamp a(1000000000000LL, 1ULL);
        QCOMPARE(a.addSecs(2147483).first - a.first, 2147483000LL);
        QCOMPARE(a.addSecs(3000000).first - a.first, 3000000000LL - 4294967296LL);
        QCOMPARE(Timestamp(LLONG_MAX, 1ULL).addMSecs(1).first, LLONG_MIN);
    }

    // After set(t), now is t and runs on from there.
    void setMovesNow()
    {
        Clock clock;
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        clock.set(Timestamp(1000000000000LL, 1ULL));
        const qint64 ahead = clock.currentTimestampUtc().first - 1000000000000LL;
        QVERIFY2(ahead >= 0, qPrintable(QString::number(ahead)));
        QVERIFY2(ahead <= QDateTime::currentMSecsSinceEpoch() - before, qPrintable(QString::number(ahead)));
    }

    void sequenceNumbersAreDistinctAcrossThreads()
    {
        std::vector<unsigned long long> numbers[4];
        std::vector<std::thread> threads;
        for (auto& own : numbers)
            threads.emplace_back([&own] {
                while (own.size() < 5000)
                    own.push_back(Clock::system().currentTimestampUtc().second);
            });
        std::vector<unsigned long long> all;
        for (std::size_t t = 0; t < threads.size(); ++t) {
            threads[t].join();
            QVERIFY2(std::is_sorted(numbers[t].begin(), numbers[t].end()), "a thread's numbers go backwards");
            all.insert(all.end(), numbers[t].begin(), numbers[t].end());
        }
        std::sort(all.begin(), all.end());
        QVERIFY2(std::adjacent_find(all.begin(), all.end()) == all.end(), "a number was given twice");
    }

    // Dates from `date -u -d @<seconds>`, in UTC.
    void text()
    {
        TimeStamp2QString formatter;
        const auto text = [&formatter](unsigned long long us) { return formatter.toString(us); };
        QCOMPARE(text(1500000), QString("1970-01-01 00:00:01.500.000"));
        QCOMPARE(text(1500001), QString("1970-01-01 00:00:01.500.001"));
        // Seconds are taken as 32 bits and wrap.
        QCOMPARE(text(ULLONG_MAX), QString("2101-08-26 13:04:45.551.615"));
        // A copy starts from the cached date but needs its own conversion state.
        unsigned long long us = ULLONG_MAX;
        QCOMPARE(TimeStamp2QString(formatter).toString(us), QString("2101-08-26 13:04:45.551.615"));
    }

    void textFollowsTheZone_data() { KvTest::addRows("basetypes/zones.txt", "zone hour"); }

    // Steps of 0.37 s mostly stay within a second, monthly jumps cross dates
    // and daylight saving changes; the cached date must follow.
    void textFollowsTheZone()
    {
        KvTest::pinLocaleAndZone(qPrintable(KvTest::field("zone")));
        QCOMPARE(QDateTime::fromSecsSinceEpoch(1720000000).toString("hh"), KvTest::field("hour"));
        TimeStamp2QString formatter;
        unsigned long long us = 946684799000000ULL; // 1999-12-31 23:59:59 UTC
        for (int i = 0; i < 2000; ++i) {
            const QString expected = QDateTime::fromMSecsSinceEpoch(qint64(us / 1000), Qt::LocalTime)
                                         .toString(QString("yyyy-MM-dd hh:mm:ss.zzz.")) +
                                     QString("%1").arg(us % 1000, 3, 10, QLatin1Char('0'));
            QCOMPARE(formatter.toString(us), expected);
            us += (i % 7 == 0) ? 86400000000ULL * 31 : 370001ULL;
        }
    }
};

QTEST_APPLESS_MAIN(TestClock)
#include "tst_clock.moc"
