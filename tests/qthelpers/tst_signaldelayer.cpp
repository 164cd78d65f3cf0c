#include "qthelpers/signaldelayer.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QVariant>

using QObjectHelpers::SignalDelayer;

class Sender : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void voidSignal();
    void boolSignal(bool value);
    void intSignal(int value);
    void doubleSignal(double value);
    void stringSignal(const QString& value);
};

class Receiver : public QObject
{
    Q_OBJECT
public:
    QVariantList received;
    QElapsedTimer clock;
    qint64 lastArrival = -1;
    QVector<qint64> arrivals;
    std::function<void()> onArrival;

public Q_SLOTS:
    void onVoid() { record(QVariant()); }
    void onBool(bool value) { record(value); }
    void onInt(int value) { record(value); }
    void onDouble(double value) { record(value); }
    void onString(const QString& value) { record(value); }

private:
    void record(const QVariant& value)
    {
        received.append(value);
        lastArrival = clock.isValid() ? clock.elapsed() : -1;
        arrivals.append(lastArrival);
        if (onArrival)
            onArrival();
    }
};

class TestSignalDelayer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySignatureForwardsItsArguments()
    {
        Sender sender;
        Receiver receiver;
        QVERIFY(SignalDelayer::connectDelayed<void()>(&sender, SIGNAL(voidSignal()), &receiver,
                                                      SLOT(onVoid()), 0));
        QVERIFY(SignalDelayer::connectDelayed<void(bool)>(&sender, SIGNAL(boolSignal(bool)), &receiver,
                                                          SLOT(onBool(bool)), 0));
        QVERIFY(SignalDelayer::connectDelayed<void(int)>(&sender, SIGNAL(intSignal(int)), &receiver,
                                                         SLOT(onInt(int)), 0));
        QVERIFY(SignalDelayer::connectDelayed<void(double)>(&sender, SIGNAL(doubleSignal(double)), &receiver,
                                                            SLOT(onDouble(double)), 0));
        QVERIFY(SignalDelayer::connectDelayed<void(const QString&)>(&sender, SIGNAL(stringSignal(QString)),
                                                                    &receiver, SLOT(onString(QString)), 0));
        // The by-value signature shares the delayer's const-reference signal.
        QVERIFY(SignalDelayer::connectDelayed<void(QString)>(&sender, SIGNAL(stringSignal(QString)),
                                                             &receiver, SLOT(onString(QString)), 0));

        const QVariantList expected{QVariant(), true, 42, 2.5, QStringLiteral("f"), QStringLiteral("f")};
        Q_EMIT sender.voidSignal();
        QTRY_COMPARE(receiver.received.size(), 1);
        Q_EMIT sender.boolSignal(true);
        QTRY_COMPARE(receiver.received.size(), 2);
        Q_EMIT sender.intSignal(42);
        QTRY_COMPARE(receiver.received.size(), 3);
        Q_EMIT sender.doubleSignal(2.5);
        QTRY_COMPARE(receiver.received.size(), 4);
        Q_EMIT sender.stringSignal(QStringLiteral("f"));
        QTRY_COMPARE(receiver.received.size(), 6);
        QCOMPARE(receiver.received, expected);
    }

    void burstIsForwardedOnceWithNewestArguments_data()
    {
        QTest::addColumn<bool>("lastOnly");
        QTest::newRow("timed from the first signal") << false;
        QTest::newRow("timed from the last signal") << true;
    }

    void burstIsForwardedOnceWithNewestArguments()
    {
        QFETCH(bool, lastOnly);
        const int delay = 100;
        Sender sender;
        Receiver receiver;
        SignalDelayer* delayer = SignalDelayer::connectDelayed<void(int)>(&sender, SIGNAL(intSignal(int)),
                                                                          &receiver, SLOT(onInt(int)), delay);
        QVERIFY(delayer);
        delayer->setEmitLastSignalOnly(lastOnly);

        receiver.clock.start();
        Q_EMIT sender.intSignal(1);
        Q_EMIT sender.intSignal(2);
        Q_EMIT sender.intSignal(3);
        const qint64 lastSignal = receiver.clock.elapsed();
        QVERIFY(receiver.received.isEmpty());
        QTRY_COMPARE(receiver.received.size(), 1);
        QTest::qWait(2 * delay);
        QCOMPARE(receiver.received, QVariantList{3});
        // Coarse timers may fire up to 5 % early.
        QVERIFY2(receiver.lastArrival - lastSignal >= delay * 95 / 100,
                 qPrintable(QString::number(receiver.lastArrival)));
    }

    void steadyStream_data()
    {
        QTest::addColumn<bool>("lastOnly");
        QTest::newRow("gets through every delay while it flows") << false;
        QTest::newRow("is held back until it stops") << true;
    }

    void steadyStream()
    {
        QFETCH(bool, lastOnly);
        // Long against the stream's 20 ms spacing, so a busy machine's stalls do not end the stream early.
        const int delay = 250;
        Sender sender;
        Receiver receiver;
        SignalDelayer* delayer = SignalDelayer::connectDelayed<void(int)>(&sender, SIGNAL(intSignal(int)),
                                                                          &receiver, SLOT(onInt(int)), delay);
        QVERIFY(delayer);
        delayer->setEmitLastSignalOnly(lastOnly);

        receiver.clock.start();
        int value = 0;
        QVector<qint64> emitted; // emitted[v - 1]: when value v went out
        while (receiver.clock.elapsed() < 4 * delay) {
            emitted.append(receiver.clock.elapsed());
            Q_EMIT sender.intSignal(++value);
            QTest::qWait(20);
        }
        const int duringStream = receiver.received.size();
        QTest::qWait(2 * delay);

        if (lastOnly) {
            // A stalled machine may open a gap in the stream long enough to let a
            // value through; what must hold is that each forwarded value was the
            // newest one and had stood for the whole delay.
            QVERIFY(!receiver.received.isEmpty());
            QCOMPARE(receiver.received.last().toInt(), value);
            for (int i = 0; i < receiver.received.size(); ++i) {
                const int v = receiver.received.at(i).toInt();
                const qint64 arrival = receiver.arrivals.at(i);
                QVERIFY(arrival - emitted.at(v - 1) >= delay * 95 / 100);
                if (v < value)
                    QVERIFY(emitted.at(v) >= arrival);
            }
        } else {
            QVERIFY2(duringStream >= 2, qPrintable(QString::number(duringStream)));
            QCOMPARE(receiver.received.last().toInt(), value);
            for (int i = 1; i < receiver.received.size(); ++i)
                QVERIFY(receiver.received.at(i - 1).toInt() < receiver.received.at(i).toInt());
        }
    }

    void signalDuringForwardingStartsNewBurst()
    {
        Sender sender;
        Receiver receiver;
        QVERIFY(SignalDelayer::connectDelayed<void(int)>(&sender, SIGNAL(intSignal(int)), &receiver,
                                                         SLOT(onInt(int)), 10));
        receiver.onArrival = [&] {
            if (receiver.received.size() == 1)
                Q_EMIT sender.intSignal(2);
        };
        Q_EMIT sender.intSignal(1);
        QTRY_COMPARE(receiver.received, (QVariantList{1, 2}));
    }

    void receiverDestroyedDeletesDelayer()
    {
        Sender sender;
        auto* receiver = new Receiver;
        QPointer<SignalDelayer> delayer = SignalDelayer::connectDelayed<void(int)>(
            &sender, SIGNAL(intSignal(int)), receiver, SLOT(onInt(int)), 100);
        QVERIFY(delayer);
        QSignalSpy forwarded(delayer.data(), SIGNAL(signalled(int)));

        Q_EMIT sender.intSignal(1);
        delete receiver;
        QTRY_VERIFY(delayer.isNull());
        QTest::qWait(200);
        QCOMPARE(forwarded.count(), 0);
        QVERIFY(sender.children().isEmpty());
    }

    void refusedConnectionLeavesNothingBehind_data()
    {
        QTest::addColumn<bool>("nullSender");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<bool>("nullReceiver");
        QTest::addColumn<QByteArray>("slot");
        QTest::addColumn<bool>("warns");

        const QByteArray signal(SIGNAL(intSignal(int)));
        const QByteArray slot(SLOT(onInt(int)));
        QTest::newRow("null sender") << true << signal << false << slot << false;
        QTest::newRow("null signal") << false << QByteArray() << false << slot << false;
        QTest::newRow("null receiver") << false << signal << true << slot << false;
        QTest::newRow("null slot") << false << signal << false << QByteArray() << false;
        QTest::newRow("unknown signal")
            << false << QByteArray(SIGNAL(noSuchSignal(int))) << false << slot << true;
        QTest::newRow("unknown slot")
            << false << signal << false << QByteArray(SLOT(noSuchSlot(int))) << true;
        QTest::newRow("signal of another signature")
            << false << QByteArray(SIGNAL(stringSignal(QString))) << false << slot << true;
        QTest::newRow("slot text without its code")
            << false << signal << false << QByteArray("onInt(int)") << true;
    }

    void refusedConnectionLeavesNothingBehind()
    {
        QFETCH(bool, nullSender);
        QFETCH(QByteArray, signal);
        QFETCH(bool, nullReceiver);
        QFETCH(QByteArray, slot);
        QFETCH(bool, warns);

        Sender sender;
        Receiver receiver;
        if (warns)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^QObject::connect")));
        SignalDelayer* delayer = SignalDelayer::connectDelayed<void(int)>(
            nullSender ? nullptr : &sender, signal.isNull() ? nullptr : signal.constData(),
            nullReceiver ? nullptr : &receiver, slot.isNull() ? nullptr : slot.constData(), 0);
        QCOMPARE(delayer, nullptr);
        QVERIFY(sender.children().isEmpty());
        QVERIFY(receiver.children().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSignalDelayer)
#include "tst_signaldelayer.moc"
