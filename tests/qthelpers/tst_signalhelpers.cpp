#include "qthelpers/signaldelayer.h"
#include "qthelpers/signalhandler.h"

#include <QActionGroup>
#include <QElapsedTimer>
#include <QPointer>
#include <QRegularExpression>
#include <QTest>

using QObjectHelpers::SignalDelayer;
using QObjectHelpers::SignalHandler;

class Peer : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void voidSignal();
    void boolSignal(bool value);
    void intSignal(int value);
    void doubleSignal(double value);
    void stringSignal(const QString& value);
    void actionSignal(QAction* action);
};

// A delayer from `signal` of `in` to the same signal of `out`, where a handler
// picks the values up, so both helpers' texts for the signature are in use.
template <typename Signature, typename Callable>
static SignalDelayer* wire(Peer& in, Peer& out, const char* signal, const Callable& callable, int delay = 0)
{
    SignalDelayer* delayer = SignalDelayer::connectDelayed<Signature>(&in, signal, &out, signal, delay);
    return SignalHandler::connectHandler<Signature>(&out, signal, callable) ? delayer : nullptr;
}

class TestSignalHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySignaturePassesItsArguments()
    {
        Peer in, out;
        QActionGroup group(nullptr);
        QStringList log;
        const auto add = [&log](const QVariant& value) { log << value.toString(); };
        QVERIFY(wire<void()>(in, out, SIGNAL(voidSignal()), [&] { add("void"); }));
        QVERIFY(wire<void(bool)>(in, out, SIGNAL(boolSignal(bool)), add));
        QVERIFY(wire<void(int)>(in, out, SIGNAL(intSignal(int)), add));
        QVERIFY(wire<void(double)>(in, out, SIGNAL(doubleSignal(double)), add));
        QVERIFY(wire<void(const QString&)>(in, out, SIGNAL(stringSignal(QString)), add));
        QVERIFY(wire<void(QAction*)>(in, out, SIGNAL(actionSignal(QAction*)),
                                     [&](QAction* a) { add(a->text()); }));
        // KvBase only declares QAction, yet a queued action must pass.
        QVERIFY(SignalDelayer::connectDelayed<void(QAction*)>(&group, SIGNAL(triggered(QAction*)), &in,
                                                              SIGNAL(actionSignal(QAction*)), 0,
                                                              Qt::QueuedConnection));
        Q_EMIT in.voidSignal();
        Q_EMIT in.boolSignal(true);
        Q_EMIT in.intSignal(-7);
        Q_EMIT in.doubleSignal(0.25);
        Q_EMIT in.stringSignal(QStringLiteral("text"));
        group.addAction(QStringLiteral("action"))->trigger();
        QStringList expected{"void", "true", "-7", "0.25", "text", "action"};
        QTRY_COMPARE(log.size(), expected.size());
        log.sort();
        expected.sort();
        QCOMPARE(log, expected);
    }

    void coalescing_data()
    {
        QTest::addColumn<bool>("lastOnly");
        QTest::addColumn<int>("spacing"); // ms between signals; 0 for a burst of three
        QTest::newRow("burst timed from its first signal") << false << 0;
        QTest::newRow("burst timed from its last signal") << true << 0;
        QTest::newRow("stream gets through every delay") << false << 20;
        QTest::newRow("stream is held back until it stops") << true << 20;
    }

    // A loaded machine stalls at random, so nothing is timed exactly. What must
    // hold: each forwarded value was the newest when it came, it had waited the
    // whole delay (from the first signal of its burst, or from itself when only
    // the last signal counts; coarse timers may be 5 % early), the final value
    // gets through, and a flowing stream is not held back without that option.
    void coalescing()
    {
        QFETCH(bool, lastOnly);
        QFETCH(int, spacing);
        const int delay = 250;
        Peer in, out;
        QElapsedTimer clock;
        QVector<int> values;
        QVector<qint64> arrivals, emitted; // emitted[v - 1]: when value v went out
        const auto note = [&](int value) { values << value, arrivals << clock.elapsed(); };
        SignalDelayer* delayer = wire<void(int)>(in, out, SIGNAL(intSignal(int)), note, delay);
        QVERIFY(delayer);
        delayer->setEmitLastSignalOnly(lastOnly);
        clock.start();
        while (emitted.size() < 3 || (spacing > 0 && clock.elapsed() < 4 * delay)) {
            emitted << clock.elapsed();
            Q_EMIT in.intSignal(emitted.size());
            if (spacing > 0)
                QTest::qWait(spacing);
        }
        if (spacing > 0 && !lastOnly)
            QVERIFY2(values.size() >= 2, qPrintable(QString::number(values.size())));
        QTest::qWait(2 * delay);

        QCOMPARE(values.isEmpty() ? 0 : values.last(), emitted.size());
        for (int i = 0, previous = 0; i < values.size(); previous = values.at(i++)) {
            QVERIFY(values.at(i) > previous);
            if (values.at(i) < emitted.size())
                QVERIFY(emitted.at(values.at(i)) >= arrivals.at(i));
            QVERIFY(arrivals.at(i) - emitted.at(lastOnly ? values.at(i) - 1 : previous) >= delay * 95 / 100);
        }
    }

    void refusedConnectionsAndLifetime()
    {
        Peer peer;
        const char* signal = SIGNAL(intSignal(int));
        const char* unknown = SIGNAL(noSuchSignal(int));
        const QRegularExpression noSuch(QStringLiteral("^QObject::connect: No such"));
        for (int i = 0; i < 3; ++i)
            QTest::ignoreMessage(QtWarningMsg, noSuch);
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(nullptr, signal, &peer, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, nullptr, &peer, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, signal, nullptr, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, signal, &peer, nullptr, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, unknown, &peer, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, signal, &peer, unknown, 0));
        QVERIFY(!SignalHandler::connectHandler<void(int)>(nullptr, signal, [](int) {}));
        QVERIFY(!SignalHandler::connectHandler<void(int)>(&peer, nullptr, [](int) {}));
        QVERIFY(!SignalHandler::connectHandler<void(int)>(&peer, unknown, [](int) {}));
        QVERIFY(peer.children().isEmpty());

        // A handler lives with its sender; a delayer dies with its receiver, also while it waits.
        QCOMPARE(SignalHandler::connectHandler<void(int)>(&peer, signal, [](int) {})->parent(), &peer);
        auto* receiver = new Peer;
        QPointer<SignalDelayer> delayer =
            SignalDelayer::connectDelayed<void(int)>(&peer, signal, receiver, signal, 100);
        QVERIFY(delayer);
        Q_EMIT peer.intSignal(1);
        delete receiver;
        QTRY_VERIFY(delayer.isNull());
    }
};

QTEST_MAIN(TestSignalHelpers)
#include "tst_signalhelpers.moc"
