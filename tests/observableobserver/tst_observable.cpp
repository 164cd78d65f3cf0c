#include "errorhandling/kvexception.h"
#include "observableobserver/observable.h"

#include "kvtest.h"

// Plays the steps of tests/data/observableobserver/rules.txt (explained there).
struct Model : Observable
{
    struct Letter : IObserver
    {
        void Update(Observable* source, TChangeCode code) override
        {
            auto* model = static_cast<Model*>(source);
            const QChar name(char('a' + (this - model->letters)));
            model->seen << name + QString::number(code);
            for (const QString& reaction : model->reactions.values(code == 1 ? name : QChar()))
                model->step(reaction);
        }
    } letters[26];
    QStringList seen;
    QMultiMap<QChar, QString> reactions;

    void step(const QString& text)
    {
        const char op = text.at(0).toLatin1();
        if (QChar::isLetter(op))
            return void(reactions.insert(text.at(0), text.mid(1)));
        Letter* who = text.size() > 1 ? &letters[text.at(1).toLatin1() - 'a'] : nullptr;
        if (op == '+' && !AddObserver(who))
            seen << "refused";
        else if (op == '-' || op == '*')
            (this->*(op == '-' ? &Observable::DeleteObserver : &Observable::MakeFirstObserver))(who);
        else if (op == '?' || op == '!')
            NotifyObservers(TChangeCode(op == '?' ? 1 : 2), who);
    }
};

class TestObservable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rules_data() { KvTest::addRows("observableobserver/rules.txt", "steps expected"); }

    void rules()
    {
        Model model;
        for (const QString& step : KvTest::field("steps").split(' ')) {
            try {
                model.step(step);
            } catch (const KvException& e) {
                const QString fields = e.GetExceptionWideText(FieldList, 1).section('@', 1, 5);
                model.seen << fields + '@' + QString::number(e.GetErrorId());
            }
        }
        QCOMPARE(model.seen.join(' '), KvTest::field("expected"));
    }
};

QTEST_GUILESS_MAIN(TestObservable)
#include "tst_observable.moc"
