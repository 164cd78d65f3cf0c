#include "errorhandling/kvexception.h"
#include "observableobserver/observable.h"

#include <QTest>

#include <map>
#include <stdexcept>

// Observers are named by one letter and log "<name><code>" on every Update.
// Steps: "+a" adds a, "-a" deletes a, "*a" makes a first ("+", "-", "*" pass
// null), "?a" notifies a change (code 1) leaving a out ("?": nobody), "!a" a
// follow-up (code 2), "#" throws; "a!f" makes step "!f" a's reaction to every change.
class Model : public Observable
{
public:
    class Recorder : public IObserver
    {
    public:
        Recorder(Model* model, const QString& name) : m_pModel(model), m_strName(name) {}
        void Update(Observable* source, TChangeCode code) override
        {
            m_pModel->log << (source == m_pModel ? m_strName : QStringLiteral("?")) + QString::number(code);
            for (const QString& reaction : m_pModel->reactions)
                if (code == 1 && reaction.startsWith(m_strName))
                    m_pModel->step(reaction.mid(1));
        }
        Model* m_pModel;
        QString m_strName;
    };

    IObserver* at(const QString& name)
    {
        return name.isEmpty() ? nullptr : &m_Recorders.emplace(name, Recorder(this, name)).first->second;
    }

    void step(const QString& step)
    {
        const char op = step.at(0).toLatin1();
        IObserver* target = at(step.mid(1));
        if (QChar::isLetter(op))
            reactions << step;
        else if (op == '+')
            AddObserver(target);
        else if (op == '-')
            DeleteObserver(target);
        else if (op == '*')
            MakeFirstObserver(target);
        else if (op == '?' || op == '!')
            NotifyObservers(static_cast<TChangeCode>(op == '?' ? 1 : 2), target);
        else
            throw std::runtime_error("observer failed");
    }

    QStringList log, reactions;
    std::map<QString, Recorder> m_Recorders;
};

class TestObservable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rules_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("expected");

        const auto row = [](const char* name, const char* steps, const char* expected) {
            QTest::newRow(name) << QString::fromLatin1(steps) << QString::fromLatin1(expected);
        };
        row("first observer comes first, the list in its order", "+b +a *f ?", "f1 b1 a1");
        row("null and repeated additions are refused", "+ +a +a ?", "a1");
        row("making an observer first takes it out of the list", "+a +f +b *f *f ?", "f1 a1 b1");
        row("the first observer may be listed too; deleting it keeps the entry", "+a *f +f -f ?", "a1 f1");
        row("a different first observer is refused, changing nothing", "+a *f *a ?",
            "observableobserver\\observable/Observable/MakeFirstObserver/"
            "MakeFirstObserver called while there was one set before! f1 a1");
        row("null hands the first observer back to the end", "+a *f +b * ?", "a1 b1 f1");
        row("listed except is left out", "+a +b *f ?a", "f1 b1");
        row("first observer as except is left out", "+a +b *f ?f", "a1 b1");
        row("observers removed in the round are not called", "+a +b +c *f f-c a-a a-b ? ?", "f1 a1 f1");
        row("observers added in the round are called from the next on", "+a *f f+b a+c ? !f",
            "f1 a1 a2 b2 c2");
        row("first observer's follow-up reaches the one left out", "+a +b *f f!f ?a", "f1 a2 b1");
        row("and only once", "+a +b *f f!f f!f ?a", "f1 a2 b1");
        row("with nobody left out it reaches nobody", "+a +b *f f!f ?", "f1 a1 b1");
        row("a throwing observer leaves no round open", "+a *f a# ? !f", "f1 a1 thrown a2");
    }

    void rules()
    {
        QFETCH(QString, steps);
        QFETCH(QString, expected);
        Model model;
        for (const QString& step : steps.split(QLatin1Char(' '))) {
            try {
                model.step(step);
            } catch (const std::runtime_error&) {
                model.log << QStringLiteral("thrown");
            } catch (const KvException& e) {
                model.log << QStringList{e.GetFileName(), e.ClassName(), e.GetMethodName(),
                                         e.GetErrorReason()}
                                 .join('/');
            }
        }
        QCOMPARE(model.log.join(QLatin1Char(' ')), expected);
    }
};

QTEST_GUILESS_MAIN(TestObservable)
#include "tst_observable.moc"
