#include "qthelpers/qurlhelpers.h"

#include "kvtest.h"

using KvTest::field;

using namespace QUrlHelpers;

class TestQUrlHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostPort_data() { KvTest::addRows("qthelpers/hostport.txt", "text isString url back"); }

    void hostPort()
    {
        QCOMPARE(isMirelTcpHostPortString(field("text")), field("isString") == "yes");
        const QUrl converted = urlFromMirelTcpHostPortString(field("text"));
        QCOMPARE(converted.toString(), field("url"));
        QCOMPARE(converted.isEmpty(), field("isString") == "no");
        const QUrl source = converted.isEmpty() ? QUrl(field("text")) : converted;
        QCOMPARE(urlToMirelTcpHostPortString(source), field("back"));
        QCOMPARE(isMirelTcpHostPortUrl(source), !field("back").isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestQUrlHelpers)
#include "tst_qurlhelpers.moc"
