#include "qthelpers/signaldelayer.h"
#include "qthelpers/signalhandler.h"

#include <QAction>
#include <QActionGroup>
#include <QTest>

using QObjectHelpers::SignalDelayer;
using QObjectHelpers::SignalHandler;

class ActionReceiver : public QObject
{
    Q_OBJECT
public:
    QList<QAction*> received;
public Q_SLOTS:
    void onAction(QAction* action) { received << action; }
};

// KvBase only declares QAction; these cases use real actions.
class TestActionSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Qt queues pointer arguments without a registered meta type, so this works
    // although KvBase never sees QAction's definition.
    void queuedHandlerGetsTheAction()
    {
        QActionGroup group(nullptr);
        QAction* first = group.addAction(QStringLiteral("first"));
        QList<QAction*> calls;
        QVERIFY(SignalHandler::connectHandler<void(QAction*)>(
            &group, SIGNAL(triggered(QAction*)), [&](QAction* action) { calls << action; }, nullptr,
            Qt::QueuedConnection));
        first->trigger();
        QVERIFY(calls.isEmpty());
        QTRY_COMPARE(calls, QList<QAction*>{first});
    }

    void delayerForwardsNewestAction()
    {
        QActionGroup group(nullptr);
        QAction* first = group.addAction(QStringLiteral("first"));
        QAction* second = group.addAction(QStringLiteral("second"));
        ActionReceiver receiver;
        QVERIFY(SignalDelayer::connectDelayed<void(QAction*)>(&group, SIGNAL(triggered(QAction*)), &receiver,
                                                              SLOT(onAction(QAction*)), 20,
                                                              Qt::QueuedConnection));
        first->trigger();
        second->trigger();
        QTRY_COMPARE(receiver.received, QList<QAction*>{second});
        QTest::qWait(100);
        QCOMPARE(receiver.received.size(), 1);
    }
};

QTEST_MAIN(TestActionSignals)
#include "tst_actionsignals.moc"
