#include "errorhandling/kvexception.h"
#include "observableobserver/observable.h"

#include <QTest>

#include <functional>
#include <stdexcept>

// Every Update lands in one shared log as "<name>:<code>", so a test reads the
// order of calls across observers.
class Recorder : public IObserver
{
public:
    Recorder(QString name, QStringList* log) : m_strName(std::move(name)), m_pLog(log) {}
    void Update(Observable*, TChangeCode code) override
    {
        m_pLog->append(m_strName + QLatin1Char(':') + QString::number(code));
        if (onUpdate)
            onUpdate(code);
    }
    std::function<void(TChangeCode)> onUpdate;

private:
    QString m_strName;
    QStringList* m_pLog;
};

class Model : public Observable
{
public:
    using Observable::NotifyObservers;
};

constexpr TChangeCode kChanged = static_cast<TChangeCode>(1);
constexpr TChangeCode kFollowUp = static_cast<TChangeCode>(2);

class TestObservable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_Log.clear();
        m_pModel = new Model;
        a = new Recorder(QStringLiteral("a"), &m_Log);
        b = new Recorder(QStringLiteral("b"), &m_Log);
        c = new Recorder(QStringLiteral("c"), &m_Log);
        f = new Recorder(QStringLiteral("f"), &m_Log);
    }

    void cleanup()
    {
        delete m_pModel;
        delete a;
        delete b;
        delete c;
        delete f;
    }

    void addObserver()
    {
        QVERIFY(!m_pModel->AddObserver(nullptr));
        QVERIFY(m_pModel->AddObserver(a));
        QVERIFY(!m_pModel->AddObserver(a));
        QVERIFY(m_pModel->AddObserver(b));
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, b}));
        QCOMPARE(m_pModel->GetObserverTypeName(a), std::string("Recorder"));

        m_pModel->MakeFirstObserver(f);
        QVERIFY(m_pModel->AddObserver(f));
        QCOMPARE(m_pModel->GetFirstObserver(), f);
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, b, f}));
    }

    void deleteObserver()
    {
        m_pModel->AddObserver(a);
        m_pModel->AddObserver(b);
        m_pModel->AddObserver(c);
        m_pModel->DeleteObserver(b);
        m_pModel->DeleteObserver(b);
        m_pModel->DeleteObserver(nullptr);
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, c}));
        QCOMPARE(m_pModel->GetObserverTypeName(b), std::string());

        // Deleting the first observer leaves a list entry of the same pointer.
        m_pModel->MakeFirstObserver(f);
        m_pModel->AddObserver(f);
        m_pModel->DeleteObserver(f);
        QCOMPARE(m_pModel->GetFirstObserver(), nullptr);
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, c, f}));

        m_pModel->MakeFirstObserver(b);
        m_pModel->DeleteObservers();
        QCOMPARE(m_pModel->GetFirstObserver(), nullptr);
        QVERIFY(m_pModel->GetObservers().empty());
        QCOMPARE(m_pModel->GetObserverTypeName(a), std::string());
    }

    void firstObserverIsToldFirst()
    {
        m_pModel->AddObserver(b);
        m_pModel->AddObserver(a);
        m_pModel->MakeFirstObserver(f);
        m_pModel->NotifyObservers(kChanged, nullptr);
        QCOMPARE(m_Log, QStringList({"f:1", "b:1", "a:1"}));
    }

    void exceptIsNeverTold_data()
    {
        QTest::addColumn<bool>("exceptFirst");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("listed observer") << false << QStringList({"f:1", "b:1"});
        QTest::newRow("first observer") << true << QStringList({"a:1", "b:1"});
    }

    void exceptIsNeverTold()
    {
        QFETCH(bool, exceptFirst);
        QFETCH(QStringList, expected);
        m_pModel->AddObserver(a);
        m_pModel->AddObserver(b);
        m_pModel->MakeFirstObserver(f);
        m_pModel->NotifyObservers(kChanged, exceptFirst ? f : a);
        QCOMPARE(m_Log, expected);
    }

    void removalDuringNotification()
    {
        m_pModel->AddObserver(a);
        m_pModel->AddObserver(b);
        m_pModel->AddObserver(c);
        m_pModel->MakeFirstObserver(f);
        f->onUpdate = [this](TChangeCode) { m_pModel->DeleteObserver(c); };
        a->onUpdate = [this](TChangeCode) {
            m_pModel->DeleteObserver(a);
            m_pModel->DeleteObserver(b);
        };
        m_pModel->NotifyObservers(kChanged, nullptr);
        QCOMPARE(m_Log, QStringList({"f:1", "a:1"}));
        QVERIFY(m_pModel->GetObservers().empty());
    }

    void additionDuringNotification()
    {
        m_pModel->AddObserver(a);
        m_pModel->MakeFirstObserver(f);
        f->onUpdate = [this](TChangeCode) { m_pModel->AddObserver(b); };
        a->onUpdate = [this](TChangeCode) { m_pModel->AddObserver(c); };
        m_pModel->NotifyObservers(kChanged, nullptr);
        QCOMPARE(m_Log, QStringList({"f:1", "a:1"}));

        m_Log.clear();
        m_pModel->NotifyObservers(kFollowUp, nullptr);
        QCOMPARE(m_Log, QStringList({"f:2", "a:2", "b:2", "c:2"}));
    }

    void firstObserverReentry_data()
    {
        QTest::addColumn<bool>("outerExceptA");
        QTest::addColumn<int>("reentries");
        QTest::addColumn<QStringList>("expected");

        QTest::newRow("the observer left out of the round hears of the follow-up")
            << true << 1 << QStringList({"f:1", "a:2", "b:1"});
        QTest::newRow("it hears of it only once") << true << 2 << QStringList({"f:1", "a:2", "b:1"});
        QTest::newRow("without one left out nobody hears of the follow-up")
            << false << 1 << QStringList({"f:1", "a:1", "b:1"});
    }

    void firstObserverReentry()
    {
        QFETCH(bool, outerExceptA);
        QFETCH(int, reentries);
        QFETCH(QStringList, expected);

        m_pModel->AddObserver(a);
        m_pModel->AddObserver(b);
        m_pModel->MakeFirstObserver(f);
        f->onUpdate = [&](TChangeCode code) {
            if (code == kChanged) {
                for (int i = 0; i < reentries; ++i)
                    m_pModel->NotifyObservers(kFollowUp, f);
            }
        };
        m_pModel->NotifyObservers(kChanged, outerExceptA ? a : nullptr);
        QCOMPARE(m_Log, expected);

        // Outside a round the first observer's notification is an ordinary one.
        m_Log.clear();
        m_pModel->NotifyObservers(kFollowUp, f);
        QCOMPARE(m_Log, QStringList({"a:2", "b:2"}));
    }

    void throwingObserverLeavesNoRoundOpen()
    {
        m_pModel->AddObserver(a);
        m_pModel->MakeFirstObserver(f);
        a->onUpdate = [](TChangeCode code) {
            if (code == kChanged)
                throw std::runtime_error("observer failed");
        };
        QVERIFY_EXCEPTION_THROWN(m_pModel->NotifyObservers(kChanged, nullptr), std::runtime_error);
        m_Log.clear();
        m_pModel->NotifyObservers(kFollowUp, f);
        QCOMPARE(m_Log, QStringList({"a:2"}));
    }

    void makeFirstObserver()
    {
        m_pModel->AddObserver(a);
        m_pModel->AddObserver(f);
        m_pModel->AddObserver(b);
        m_pModel->MakeFirstObserver(f);
        QCOMPARE(m_pModel->GetFirstObserver(), f);
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, b}));

        m_pModel->MakeFirstObserver(f);
        QCOMPARE(m_pModel->GetFirstObserver(), f);

        const Observable before = *m_pModel;
        try {
            m_pModel->MakeFirstObserver(a);
            QFAIL("a second first observer was accepted");
        } catch (const KvException& e) {
            QCOMPARE(e.GetErrorReason(),
                     QStringLiteral("MakeFirstObserver called while there was one set before!"));
            QCOMPARE(e.GetFileName(), QStringLiteral("observableobserver\\observable"));
            QCOMPARE(e.ClassName(), QStringLiteral("Observable"));
            QCOMPARE(e.GetMethodName(), QStringLiteral("MakeFirstObserver"));
        }
        QVERIFY(*m_pModel == before);

        // Null hands the first observer back to the end of the list.
        m_pModel->MakeFirstObserver(nullptr);
        QCOMPARE(m_pModel->GetFirstObserver(), nullptr);
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, b, f}));
        m_pModel->MakeFirstObserver(nullptr);
        QCOMPARE(m_pModel->GetObservers(), (std::vector<IObserver*>{a, b, f}));
    }

    void copiesAndEquality()
    {
        m_pModel->AddObserver(a);
        m_pModel->AddObserver(b);
        m_pModel->MakeFirstObserver(f);

        Observable copy(*m_pModel);
        QVERIFY(copy == *m_pModel);
        QCOMPARE(copy.GetObserverTypeName(b), std::string("Recorder"));

        Observable reordered;
        reordered.AddObserver(b);
        reordered.AddObserver(a);
        reordered.MakeFirstObserver(f);
        QVERIFY(reordered != *m_pModel);

        copy.DeleteObserver(f);
        QVERIFY(copy != *m_pModel);
        copy = *m_pModel;
        QVERIFY(copy == *m_pModel);
        copy = copy;
        QCOMPARE(copy.GetObservers(), (std::vector<IObserver*>{a, b}));
    }

private:
    QStringList m_Log;
    Model* m_pModel = nullptr;
    Recorder* a = nullptr;
    Recorder* b = nullptr;
    Recorder* c = nullptr;
    Recorder* f = nullptr;
};

QTEST_GUILESS_MAIN(TestObservable)
#include "tst_observable.moc"
