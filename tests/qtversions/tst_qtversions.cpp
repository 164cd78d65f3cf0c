// The expected texts and values are what Qt 5.15 itself gives for these
// inputs: the Qt 5 build checks the table against Qt, the Qt 6 build checks
// that the library still gives Qt 5's results where Qt 6 changed them.
#include "basetypes/band.h"
#include "basetypes/numberhelpers.h"
#include "coord/coord.h"
#include "coord/swedishgrids.h"
#include "errorhandling/kvtextfile.h"
#include "jsonwebtoken/payload.h"

#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_QtVersions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }
    void shortestNumbers_data();
    void shortestNumbers();
    void integerTexts_data();
    void integerTexts();
    void channelText();
    void coordFields_data();
    void coordFields();
    void tokenNumbers_data();
    void tokenNumbers();
    void latin1Line();
};

// Qt 6 writes the shorter of fixed and exponent form; Qt 5 kept fixed for
// decimal exponents -4 .. digits + 4.
void tst_QtVersions::shortestNumbers_data()
{
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    QTest::addColumn<QString>("expected");
    QTest::newRow("one digit, exponent 5 stays fixed") << 200000.0 << -900000.0 << "200000;-900000";
    QTest::newRow("one digit, exponent -4 stays fixed") << 0.0001 << -0.0005 << "0.0001;-0.0005";
    QTest::newRow("exponent 6 and -5 switch") << 1e6 << -1e-5 << "1e+06;-1e-05";
    QTest::newRow("two digits, exponent 6 stays fixed") << 1200000.0 << 0.00012 << "1200000;0.00012";
    QTest::newRow("Stockholm") << 18.0686 << 59.3293 << "18.0686;59.3293";
    QTest::newRow("shortest round trip") << 0.1 << 1e21 << "0.1;1e+21";
}

void tst_QtVersions::shortestNumbers()
{
    QFETCH(double, lon);
    QFETCH(double, lat);
    QString text;
    QCOMPARE(CoordToSWEREF99String(text, lon, lat, TCoordFormatSWEREF99), 0);
    QTEST(text, "expected");
}

// Qt 6 reads integers with ASCII blanks only, without U+2212 and with a "0b"
// binary prefix.
void tst_QtVersions::integerTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("base");
    QTest::addColumn<qlonglong>("value");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<bool>("flagOk");
    QTest::newRow("no-break spaces around hex")
        << QStringLiteral("\u00a0ff\u00a0") << 16 << 255LL << true << false << false;
    QTest::newRow("thin and em spaces")
        << QStringLiteral("\u2009 12\u2003") << 0 << 12LL << true << true << false;
    QTest::newRow("blanks around a one")
        << QStringLiteral("\u00a01\u2003") << 10 << 1LL << true << true << true;
    QTest::newRow("U+2212 minus") << QStringLiteral("\u22125") << 0 << -5LL << true << true << false;
    QTest::newRow("binary prefix, base 0") << QStringLiteral("0b1") << 0 << 0LL << false << false << false;
    QTest::newRow("binary prefix, base 2") << QStringLiteral("-0B1") << 2 << 0LL << false << false << false;
    QTest::newRow("hex prefix") << QStringLiteral("0x1F") << 0 << 31LL << true << true << false;
    QTest::newRow("octal prefix") << QStringLiteral(" 010") << 0 << 8LL << true << true << false;
}

void tst_QtVersions::integerTexts()
{
    QFETCH(QString, text);
    QFETCH(int, base);
    bool ok = false;
    QTEST(NumberHelpers::parse<long long>(text, QLocale::c(), &ok, base), "value");
    QTEST(ok, "ok");
    // bool reads numbers in base 0 first.
    QTEST(NumberHelpers::parse<bool>(text, QLocale::c(), &ok), "flag");
    QTEST(ok, "flagOk");
}

void tst_QtVersions::channelText()
{
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("Band"));
    const auto add = [&](const QString& tag, const QString& text) {
        QDomElement child = doc.createElement(tag);
        child.appendChild(doc.createTextNode(text));
        element.appendChild(child);
    };
    add(QStringLiteral("StartChannel"), QStringLiteral("\u00a0512"));
    add(QStringLiteral("StopChannel"), QStringLiteral("885\u2003"));
    Band band;
    band.Read(doc, element);
    QCOMPARE(band.GetStartChannel(), 512UL);
    QCOMPARE(band.GetStopChannel(), 885UL);
}

// A raw coordinate text with a blank, of any kind, for a leading zero reads as
// with the zero.
void tst_QtVersions::coordFields_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("position");
    QTest::newRow("decimal degrees") << int(cfGeoDecimal) << 1;
    QTest::newRow("sexagesimal degrees") << int(cfGeoLong) << 1;
    QTest::newRow("UTM easting") << int(cfUTM) << 3;
}

void tst_QtVersions::coordFields()
{
    QFETCH(int, format);
    QFETCH(int, position);
    const auto notation = static_cast<CoordFormat>(format);
    const QString plain = Coord(18.0686, 59.3293).GetText(notation);
    QCOMPARE(plain.at(position), QLatin1Char('0'));
    Coord expected;
    expected.SetText(plain, notation);
    for (const char16_t blank : {u' ', u'\u00a0', u'\u2003'}) {
        QString text = plain;
        text[position] = QChar(blank);
        Coord read;
        read.SetText(text, notation);
        QVERIFY2(read == expected, qPrintable(text));
    }
}

// Qt 5 wrote JSON numbers through a double; the signature covers the digits.
void tst_QtVersions::tokenNumbers_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("2^53 + 1") << QVariant(qint64(9007199254740993LL)) << QByteArray("9007199254740992");
    QTest::newRow("-(2^53 + 1)") << QVariant(qint64(-9007199254740993LL)) << QByteArray("-9007199254740992");
    QTest::newRow("int64 maximum") << QVariant(qint64(9223372036854775807LL))
                                   << QByteArray("9223372036854776000");
    QTest::newRow("in a list") << QVariant(QVariantList{qint64(9007199254740995LL), 2})
                               << QByteArray("[9007199254740996,2]");
    QTest::newRow("in an object") << QVariant(
                                         QVariantMap{{QStringLiteral("x"), qint64(1234567890123456789LL)}})
                                  << QByteArray("{\"x\":1234567890123456800}");
    QTest::newRow("seconds since 1970") << QVariant(qint64(1700000000)) << QByteArray("1700000000");
    QTest::newRow("fraction") << QVariant(1.5) << QByteArray("1.5");
}

void tst_QtVersions::tokenNumbers()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, json);
    const QByteArray segment = jsonWebToken::Payload().withClaim(QStringLiteral("n"), value).value();
    const QByteArray written = QByteArray::fromBase64(segment, QByteArray::Base64UrlEncoding);
    QCOMPARE(written, "{\"n\":" + json + '}');
}

void tst_QtVersions::latin1Line()
{
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), qPrintable(dir.errorString()));
    const QString path = dir.filePath(QStringLiteral("latin1.txt"));
    {
        KvTextFile file(path, true);
        QCOMPARE(file.WriteLine(std::string("caf\xe9 \xb0")), static_cast<unsigned short>(8));
    }
    QFile written(path);
    QVERIFY2(written.open(QIODevice::ReadOnly), qPrintable(written.errorString()));
    QCOMPARE(written.readAll(), QByteArray("caf\xe9 \xb0\n"));
}

QTEST_GUILESS_MAIN(tst_QtVersions)
#include "tst_qtversions.moc"
