#include "qthelpers/qurlhelpers.h"

#include <QTest>

using namespace QUrlHelpers;

class TestQUrlHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hostPortString_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("expected");

        QTest::newRow("lower-case prefix is accepted") << QStringLiteral("tcp:host1:5025") << true;
        QTest::newRow("upper-case prefix is accepted") << QStringLiteral("TCP:host1:5025") << true;
        QTest::newRow("mixed-case prefix is accepted") << QStringLiteral("tCp:host1:5025") << true;
        QTest::newRow("empty host is accepted") << QStringLiteral("TCP::5025") << true;
        QTest::newRow("port above 65535 is still a host-port string")
            << QStringLiteral("TCP:h:70000") << true;
        QTest::newRow("missing port is refused") << QStringLiteral("TCP:host1:") << false;
        QTest::newRow("space in host is refused") << QStringLiteral("TCP:ho st:1") << false;
        QTest::newRow("tab in host is refused") << QStringLiteral("TCP:ho\tst:1") << false;
        QTest::newRow("slash in host is refused") << QStringLiteral("TCP:a/b:1") << false;
        QTest::newRow("IPv6 host with colons is refused") << QStringLiteral("TCP:[::1]:1") << false;
        QTest::newRow("other scheme is refused") << QStringLiteral("UDP:host1:5025") << false;
        QTest::newRow("leading blank is refused") << QStringLiteral(" TCP:host1:5025") << false;
        QTest::newRow("trailing line feed is refused") << QStringLiteral("TCP:host1:5025\n") << false;
        QTest::newRow("signed port is refused") << QStringLiteral("TCP:host1:+5025") << false;
        QTest::newRow("non-ASCII digits are no port") << QString::fromUtf8("TCP:h:\u0661\u0662") << false;
        QTest::newRow("URL form is no host-port string") << QStringLiteral("tcp://host1:5025") << false;
        QTest::newRow("empty text is refused") << QString() << false;
    }

    void hostPortString()
    {
        QFETCH(QString, text);
        QFETCH(bool, expected);
        QCOMPARE(isMirelTcpHostPortString(text), expected);
    }

    void urlFromString_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("url"); // QUrl::toString() of the result, empty for an empty URL
        QTest::addColumn<bool>("valid");
        QTest::addColumn<QString>("back"); // urlToMirelTcpHostPortString of the result

        QTest::newRow("host and port")
            << QStringLiteral("TCP:host1:5025") << QStringLiteral("tcp://host1:5025") << true
            << QStringLiteral("TCP:host1:5025");
        QTest::newRow("host is lower-cased")
            << QStringLiteral("tcp:HOST1:5025") << QStringLiteral("tcp://host1:5025") << true
            << QStringLiteral("TCP:host1:5025");
        QTest::newRow("empty host means any host")
            << QStringLiteral("TCP::5025") << QStringLiteral("tcp://:5025") << true
            << QStringLiteral("TCP::5025");
        QTest::newRow("star host means any host")
            << QStringLiteral("TCP:*:5025") << QStringLiteral("tcp://:5025") << true
            << QStringLiteral("TCP::5025");
        QTest::newRow("IPv4 address")
            << QStringLiteral("TCP:10.0.0.1:80") << QStringLiteral("tcp://10.0.0.1:80") << true
            << QStringLiteral("TCP:10.0.0.1:80");
        QTest::newRow("leading zeros of the port are dropped")
            << QStringLiteral("TCP:h:0005025") << QStringLiteral("tcp://h:5025") << true
            << QStringLiteral("TCP:h:5025");
        QTest::newRow("port 0 is kept")
            << QStringLiteral("TCP:h:0") << QStringLiteral("tcp://h:0") << true << QStringLiteral("TCP:h:0");
        QTest::newRow("port 65535 is the largest")
            << QStringLiteral("TCP:h:65535") << QStringLiteral("tcp://h:65535") << true
            << QStringLiteral("TCP:h:65535");
        QTest::newRow("port 65536 gives an invalid URL")
            << QStringLiteral("TCP:h:65536") << QString() << false << QString();
        QTest::newRow("port beyond int does not wrap to a valid port")
            << QStringLiteral("TCP:h:99999999999999999999") << QString() << false << QString();
        QTest::newRow("host QUrl refuses gives an invalid URL, not any host")
            << QStringLiteral("TCP:a@b:1") << QString() << false << QString();
        QTest::newRow("percent in host gives an invalid URL")
            << QStringLiteral("TCP:a%41b:1") << QString() << false << QString();
        QTest::newRow("no-break space in host gives an invalid URL")
            << QString::fromUtf8("TCP:a\u00a0b:1") << QString() << false << QString();
        QTest::newRow("no match gives an empty URL")
            << QStringLiteral("TCP:host1:") << QString() << false << QString();
    }

    void urlFromString()
    {
        QFETCH(QString, text);
        QFETCH(QString, url);
        QFETCH(bool, valid);
        QFETCH(QString, back);

        const QUrl result = urlFromMirelTcpHostPortString(text);
        QCOMPARE(result.isValid(), valid);
        if (valid)
            QCOMPARE(result.toString(), url);
        QCOMPARE(isMirelTcpHostPortUrl(result), valid);
        QCOMPARE(urlToMirelTcpHostPortString(result), back);
    }

    void urlToString_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<QString>("expected");

        QTest::newRow("host and port")
            << QUrl(QStringLiteral("tcp://host1:5025")) << QStringLiteral("TCP:host1:5025");
        QTest::newRow("missing port is written as -1")
            << QUrl(QStringLiteral("tcp://host1")) << QStringLiteral("TCP:host1:-1");
        QTest::newRow("user info and fragment are left out")
            << QUrl(QStringLiteral("tcp://user@host1:5025#frag")) << QStringLiteral("TCP:host1:5025");
        QTest::newRow("upper-case scheme is normalised by QUrl")
            << QUrl(QStringLiteral("TCP://host1:5025")) << QStringLiteral("TCP:host1:5025");
        QTest::newRow("path is refused") << QUrl(QStringLiteral("tcp://host1:5025/path")) << QString();
        QTest::newRow("root path is refused") << QUrl(QStringLiteral("tcp://host1:5025/")) << QString();
        QTest::newRow("query is refused") << QUrl(QStringLiteral("tcp://host1:5025?x=1")) << QString();
        QTest::newRow("empty query is refused") << QUrl(QStringLiteral("tcp://host1:5025?")) << QString();
        QTest::newRow("other scheme is refused") << QUrl(QStringLiteral("udp://host1:5025")) << QString();
        QTest::newRow("host-port text parsed as URL is refused")
            << QUrl(QStringLiteral("tcp:host1:5025")) << QString();
        QTest::newRow("invalid URL is refused") << QUrl(QStringLiteral("tcp://%2F:5")) << QString();
        QTest::newRow("empty URL is refused") << QUrl() << QString();
    }

    void urlToString()
    {
        QFETCH(QUrl, url);
        QFETCH(QString, expected);
        QCOMPARE(urlToMirelTcpHostPortString(url), expected);
        QCOMPARE(isMirelTcpHostPortUrl(url), !expected.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestQUrlHelpers)
#include "tst_qurlhelpers.moc"
