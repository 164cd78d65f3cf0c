#include "qthelpers/signalhandler.h"

#include <QPointer>
#include <QRegularExpression>
#include <QStringListModel>
#include <QTest>
#include <QVariant>

using QObjectHelpers::SignalHandler;

class Sender : public QObject
{
    Q_OBJECT
Q_SIGNALS:
    void voidSignal();
    void boolSignal(bool value);
    void intSignal(int value);
    void longSignal(long value);
    void doubleSignal(double value);
    void stringSignal(const QString& value);
    void objectSignal(QObject* object);
};

class TestSignalHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySignatureCallsItsCallable()
    {
        Sender sender;
        QVariantList calls;
        auto record = [&calls](const QVariant& value) { calls.append(value); };

        QVERIFY(SignalHandler::connectHandler<void()>(&sender, SIGNAL(voidSignal()),
                                                      [&] { record(QVariant()); }));
        QVERIFY(SignalHandler::connectHandler<void(bool)>(&sender, SIGNAL(boolSignal(bool)), record));
        QVERIFY(SignalHandler::connectHandler<void(int)>(&sender, SIGNAL(intSignal(int)), record));
        QVERIFY(SignalHandler::connectHandler<void(long)>(&sender, SIGNAL(longSignal(long)),
                                                          [&](long value) { record(qlonglong(value)); }));
        QVERIFY(SignalHandler::connectHandler<void(double)>(&sender, SIGNAL(doubleSignal(double)), record));
        QVERIFY(SignalHandler::connectHandler<void(const QString&)>(&sender, SIGNAL(stringSignal(QString)),
                                                                    record));
        QVERIFY(SignalHandler::connectHandler<void(QObject*)>(
            &sender, SIGNAL(objectSignal(QObject*)), [&](QObject* object) { record(object->objectName()); }));

        QObject named;
        named.setObjectName(QStringLiteral("named"));
        Q_EMIT sender.voidSignal();
        Q_EMIT sender.boolSignal(true);
        Q_EMIT sender.intSignal(-7);
        Q_EMIT sender.longSignal(1L << 40);
        Q_EMIT sender.doubleSignal(0.25);
        Q_EMIT sender.stringSignal(QStringLiteral("text"));
        Q_EMIT sender.objectSignal(&named);
        const QVariantList expected{
            QVariant(), true, -7, qlonglong(1) << 40, 0.25, QStringLiteral("text"), QStringLiteral("named")};
        QCOMPARE(calls, expected);

        // A signal with more arguments than the handler takes, as Qt allows.
        QStringListModel model(QStringList{QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        QList<int> rows;
        QVERIFY(SignalHandler::connectHandler<void(const QModelIndex&, const QModelIndex&)>(
            &model, SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>)),
            [&](const QModelIndex& topLeft, const QModelIndex& bottomRight) {
                rows << topLeft.row() << bottomRight.row();
            }));
        model.setData(model.index(2), QStringLiteral("z"));
        QCOMPARE(rows, (QList<int>{2, 2}));
    }

    void parent_data()
    {
        QTest::addColumn<bool>("explicitParent");
        QTest::newRow("no parent makes the sender the parent") << false;
        QTest::newRow("given parent is kept") << true;
    }

    void parent()
    {
        QFETCH(bool, explicitParent);
        Sender sender;
        QObject owner;
        SignalHandler* handler = SignalHandler::connectHandler<void()>(
            &sender, SIGNAL(voidSignal()), [] {}, explicitParent ? &owner : nullptr);
        QVERIFY(handler);
        QCOMPARE(handler->parent(), explicitParent ? &owner : static_cast<QObject*>(&sender));
    }

    void queuedConnectionCallsLater()
    {
        Sender sender;
        QList<long> calls;
        QVERIFY(SignalHandler::connectHandler<void(long)>(
            &sender, SIGNAL(longSignal(long)), [&](long value) { calls << value; }, nullptr,
            Qt::QueuedConnection));
        Q_EMIT sender.longSignal(-3);
        QVERIFY(calls.isEmpty());
        QTRY_COMPARE(calls, QList<long>{-3});
    }

    void callableMayDeleteItsHandler()
    {
        QPointer<Sender> sender = new Sender;
        QString seen;
        // The sender owns the handler, so the callable destroys itself while it runs.
        QVERIFY(SignalHandler::connectHandler<void(const QString&)>(sender, SIGNAL(stringSignal(QString)),
                                                                    [sender, &seen](const QString& value) {
                                                                        delete sender.data();
                                                                        seen = value;
                                                                    }));
        Q_EMIT sender->stringSignal(QStringLiteral("gone"));
        QVERIFY(sender.isNull());
        QCOMPARE(seen, QStringLiteral("gone"));
    }

    void refusedConnectionLeavesNothingBehind_data()
    {
        QTest::addColumn<bool>("nullSender");
        QTest::addColumn<QByteArray>("signal");
        QTest::addColumn<bool>("warns");

        QTest::newRow("null sender") << true << QByteArray(SIGNAL(intSignal(int))) << false;
        QTest::newRow("null signal") << false << QByteArray() << false;
        QTest::newRow("unknown signal") << false << QByteArray(SIGNAL(noSuchSignal(int))) << true;
        QTest::newRow("signal of another signature")
            << false << QByteArray(SIGNAL(stringSignal(QString))) << true;
        QTest::newRow("signal text without its code") << false << QByteArray("intSignal(int)") << true;
    }

    void refusedConnectionLeavesNothingBehind()
    {
        QFETCH(bool, nullSender);
        QFETCH(QByteArray, signal);
        QFETCH(bool, warns);

        Sender sender;
        QObject owner;
        if (warns)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^QObject::connect")));
        for (QObject* parent : {static_cast<QObject*>(nullptr), &owner}) {
            if (warns && parent)
                QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^QObject::connect")));
            SignalHandler* handler = SignalHandler::connectHandler<void(int)>(
                nullSender ? nullptr : &sender, signal.isNull() ? nullptr : signal.constData(), [](int) {},
                parent);
            QCOMPARE(handler, nullptr);
        }
        QVERIFY(sender.children().isEmpty());
        QVERIFY(owner.children().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSignalHandler)
#include "tst_signalhandler.moc"
