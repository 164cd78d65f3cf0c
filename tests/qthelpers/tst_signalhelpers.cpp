#include "qthelpers/signaldelayer.h"
#include "qthelpers/signalhandler.h"

#include <QActionGroup>
#include <QElapsedTimer>
#include <QRegularExpression>

#include "kvtest.h"

using namespace QObjectHelpers;

// The actions need a GUI application; without a display it runs offscreen, as under CTest.
static const bool s_bPlatformSet =
    qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qputenv("QT_QPA_PLATFORM", "offscreen");

class Peer : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void voidSignal();
    void boolSignal(bool value);
    void intSignal(int value);
    void longSignal(long value);
    void doubleSignal(double value);
    void stringSignal(const QString& value);
    void triggered(QAction* action);
    void objectSignal(QObject* object);
    void indexSignal(const QModelIndex& first, const QModelIndex& second);
};

// A delayer from `signal` of `in` to the same signal of `out`, where a handler
// picks the values up, so both helpers' texts for the signature are in use.
template <typename Signature, typename Callable>
static SignalDelayer* wire(QObject& in, Peer& out, const char* signal, const Callable& slot, int delay = 0,
                           Qt::ConnectionType type = Qt::AutoConnection)
{
    SignalDelayer* delayer = SignalDelayer::connectDelayed<Signature>(&in, signal, &out, signal, delay, type);
    return SignalHandler::connectHandler<Signature>(&out, signal, slot, nullptr, type) ? delayer : nullptr;
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
        // KvBase only declares QAction, yet actions must pass, also queued.
        QVERIFY(wire<void(QAction*)>(
            group, out, SIGNAL(triggered(QAction*)), [&](QAction* a) { add(a->text()); }, 0,
            Qt::QueuedConnection));
        // Signatures only the handler takes.
        QVERIFY(SignalHandler::connectHandler<void(long)>(&in, SIGNAL(longSignal(long)),
                                                          [&](long value) { add(qlonglong(value)); }));
        QVERIFY(SignalHandler::connectHandler<void(QObject*)>(&in, SIGNAL(objectSignal(QObject*)),
                                                              [&](QObject* o) { add(o->objectName()); }));
        QVERIFY(SignalHandler::connectHandler<void(const QModelIndex&, const QModelIndex&)>(
            &in, SIGNAL(indexSignal(QModelIndex, QModelIndex)),
            [&](const QModelIndex& first, const QModelIndex&) { add(first.isValid() ? "valid" : "index"); }));
        Q_EMIT in.voidSignal();
        Q_EMIT in.boolSignal(true);
        Q_EMIT in.intSignal(-7);
        Q_EMIT in.doubleSignal(0.25);
        Q_EMIT in.stringSignal(QString("text"));
        group.addAction("action")->trigger();
        Q_EMIT in.longSignal(-5000000000L);
        group.setObjectName("object");
        Q_EMIT in.objectSignal(&group);
        Q_EMIT in.indexSignal(QModelIndex(), QModelIndex());
        QTRY_COMPARE(QSet<QString>(log.begin(), log.end()),
                     (QSet<QString>{"void", "true", "-7", "0.25", "text", "action", "-5000000000", "object",
                                    "index"}));
    }

    // A handler holds one callable; the slots of other signatures do nothing.
    void handlerCallsOnlyItsOwnSignature()
    {
        QStringList calls;
        SignalHandler* handler = SignalHandler::createHandler<void(bool)>(
            [&calls](bool value) { calls << QVariant(value).toString(); }, this);
        handler->onSignal(7);
        handler->onSignal(false);
        QCOMPARE(calls, QStringList{"false"});
    }

    void coalescing_data() { KvTest::addRows("qthelpers/coalescing.txt", "lastOnly"); }

    // A loaded machine stalls at random, so nothing is timed exactly. What must
    // hold: each forwarded value was the newest when it came, it had waited the
    // whole delay (from the first signal of its burst, or from itself when only
    // the last signal counts; coarse timers may be 5 % early), the final value
    // gets through, and a flowing stream is not held back without that option.
    void coalescing()
    {
        const bool lastOnly = KvTest::field("lastOnly") == "true";
        const int delay = 250;
        Peer in, out;
        QElapsedTimer clock;
        QVector<int> values;
        QVector<qint64> arrivals, emitted; // emitted[v - 1]: when value v went out
        const auto note = [&](int value) { values << value, arrivals << clock.elapsed(); };
        wire<void(int)>(in, out, SIGNAL(intSignal(int)), note, delay)->setEmitLastSignalOnly(lastOnly);
        clock.start();
        while (clock.elapsed() < 4 * delay) {
            emitted << clock.elapsed();
            Q_EMIT in.intSignal(emitted.size());
            QTest::qWait(20);
        }
        QVERIFY2(lastOnly || values.size() >= 2, "a flowing stream was held back");
        QTest::qWait(2 * delay);

        QCOMPARE(values.isEmpty() ? 0 : values.last(), emitted.size());
        for (int i = 0, previous = 0; i < values.size(); previous = values.at(i++)) {
            const QByteArray value = "value " + QByteArray::number(values.at(i));
            QVERIFY2(values.at(i) > previous, value + " came out of order");
            if (values.at(i) < emitted.size())
                QVERIFY2(emitted.at(values.at(i)) >= arrivals.at(i), value + " was no longer the newest");
            QVERIFY2(arrivals.at(i) - emitted.at(lastOnly ? values.at(i) - 1 : previous) >= delay * 95 / 100,
                     value + " came too early");
        }
    }

    void refusedConnectionsAndLifetime()
    {
        Peer peer;
        const char* signal = SIGNAL(intSignal(int));
        const char* unknown = SIGNAL(noSuchSignal(int));
        for (int i = 0; i < 3; ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^QObject::connect: No"));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(nullptr, signal, &peer, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, nullptr, &peer, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, signal, nullptr, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, signal, &peer, nullptr, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, unknown, &peer, signal, 0));
        QVERIFY(!SignalDelayer::connectDelayed<void(int)>(&peer, signal, &peer, unknown, 0));
        QVERIFY(!SignalHandler::connectHandler<void(int)>(&peer, nullptr, [](int) {}));
        QVERIFY(!SignalHandler::connectHandler<void(int)>(&peer, unknown, [](int) {}));
        QVERIFY2(peer.children().isEmpty(), "a refused connection left a helper behind");

        // A delayer dies with its receiver, also while it waits; a handler lives with its sender.
        auto* receiver = new Peer;
        QVERIFY(SignalDelayer::connectDelayed<void(int)>(&peer, signal, receiver, signal, 100));
        Q_EMIT peer.intSignal(1);
        delete receiver;
        QTRY_VERIFY(peer.children().isEmpty());
        QCOMPARE(SignalHandler::connectHandler<void(int)>(&peer, signal, [](int) {})->parent(), &peer);
    }
};

QTEST_MAIN(TestSignalHelpers)
#include "tst_signalhelpers.moc"
