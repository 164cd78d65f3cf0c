#include "qthelpers/qurlhelpers.h"

#include <QTest>

using namespace QUrlHelpers;

static void row(const char* name, const char* text, bool isString, const char* url, const char* back)
{
    QTest::newRow(name) << QString(text) << isString << QString(url) << QString(back);
}

class TestQUrlHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Texts that are no host-port string are read as URLs instead, so the table
    // covers both directions.
    void hostPort_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isString");
        QTest::addColumn<QString>("url");  // of the host-port string; empty when no valid URL comes out
        QTest::addColumn<QString>("back"); // host-port string of that URL, or of the text read as a URL

        row("any case of the prefix", "tCp:host1:5025", true, "tcp://host1:5025", "TCP:host1:5025");
        row("empty host is any host", "TCP::5025", true, "tcp://:5025", "TCP::5025");
        row("star is any host, held by QUrl as empty", "TCP:*:5025", true, "tcp://:5025", "TCP::5025");
        row("port in base 10, zeros dropped", "TCP:h:0005025", true, "tcp://h:5025", "TCP:h:5025");
        row("port above 65535 gives an invalid URL", "TCP:h:65536", true, "", "");
        row("port beyond int does not wrap", "TCP:h:99999999999999999999", true, "", "");
        row("host QUrl refuses gives no URL of any host", "TCP:a@b:1", true, "", "");
        row("missing port", "TCP:host1:", false, "", "");
        row("space in host", "TCP:ho st:1", false, "", "");
        row("slash in host", "TCP:a/b:1", false, "", "");
        row("trailing line feed", "TCP:host1:5025\n", false, "", "");
        row("empty text", "", false, "", "");
        row("URL form is no host-port string", "tcp://host1:5025", false, "", "TCP:host1:5025");
        row("URL without port gives port -1", "tcp://host1", false, "", "TCP:host1:-1");
        row("URL with path", "tcp://host1:5025/", false, "", "");
        row("URL with empty query", "tcp://host1:5025?", false, "", "");
        row("URL of another scheme", "udp://host1:5025", false, "", "");
    }

    void hostPort()
    {
        QFETCH(QString, text);
        QFETCH(bool, isString);
        QFETCH(QString, url);
        QFETCH(QString, back);

        QCOMPARE(isMirelTcpHostPortString(text), isString);
        const QUrl converted = urlFromMirelTcpHostPortString(text);
        QCOMPARE(converted.toString(), url);
        QCOMPARE(converted.isEmpty(), !isString);
        const QUrl source = isString ? converted : QUrl(text);
        QCOMPARE(urlToMirelTcpHostPortString(source), back);
        QCOMPARE(isMirelTcpHostPortUrl(source), !back.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestQUrlHelpers)
#include "tst_qurlhelpers.moc"
