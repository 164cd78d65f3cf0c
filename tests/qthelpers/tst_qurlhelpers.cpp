#include "qthelpers/qurlhelpers.h"

#include "kvtest.h"

using namespace QUrlHelpers;

class TestQUrlHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostPort_data() { KvTest::addRows("qthelpers/hostport.txt", {"text", "isString", "url", "back"}); }

    void hostPort()
    {
        QFETCH(QString, text);
        QFETCH(QString, isString);
        QFETCH(QString, url);
        QFETCH(QString, back);
        QCOMPARE(isMirelTcpHostPortString(text), isString == QLatin1String("yes"));
        const QUrl converted = urlFromMirelTcpHostPortString(text);
        QCOMPARE(converted.toString(), url);
        QCOMPARE(converted.isEmpty(), isString == QLatin1String("no"));
        const QUrl source = converted.isEmpty() ? QUrl(text) : converted;
        QCOMPARE(urlToMirelTcpHostPortString(source), back);
        QCOMPARE(isMirelTcpHostPortUrl(source), !back.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestQUrlHelpers)
#include "tst_qurlhelpers.moc"
