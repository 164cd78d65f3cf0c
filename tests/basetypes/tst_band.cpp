#include "basetypes/gsm.h"
#include "errorhandling/errorhandler.h"

#include <QDomDocument>
#include <QtTest>

namespace {

// A band of a type no constructor makes.
class OddBand : public Band
{
public:
    OddBand() : Band(QStringLiteral("odd"), 1000.0, 0.0, true) { m_eType = static_cast<BandType>(7); }
};

QString saved(Band& band)
{
    QDomDocument doc;
    QDomElement element = doc.createElement(QStringLiteral("Band"));
    doc.appendChild(element);
    band.Save(doc, element);
    return doc.toString(-1).trimmed();
}

// Reads the children given as XML text into `band`.
void readInto(Band& band, const QString& children)
{
    QDomDocument doc;
    QVERIFY(doc.setContent(QStringLiteral("<Band>%1</Band>").arg(children)));
    QDomElement element = doc.documentElement();
    band.Read(doc, element);
}

QVariantMap fields(const Band& band)
{
    return {{QStringLiteral("name"), band.GetName()},
            {QStringLiteral("step"), band.GetStepWidth()},
            {QStringLiteral("type"), int(band.GetType())},
            {QStringLiteral("offset"), band.GetOffset()},
            {QStringLiteral("raster"), band.GetUseRaster()},
            {QStringLiteral("start"), qulonglong(band.GetStartChannel())},
            {QStringLiteral("stop"), qulonglong(band.GetStopChannel())},
            {QStringLiteral("factor"), qulonglong(band.GetChannelCalculationFactor())},
            {QStringLiteral("startFreq"), band.GetStartFreq()}};
}

Band gsmSeed()
{
    return Band(QStringLiteral("seed"), 200000.0, 1e9, 1, 2, 1, false);
}

} // namespace

class TestBand : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void construction();
    void raster_data();
    void raster();
    void findFrequency_data();
    void findFrequency();
    void findChannel();
    void stepping();
    void saveWritesTheDocumentedElements();
    void saveReadRoundTrip();
    void read_data();
    void read();
    void readTracesNonElements();
};

void TestBand::construction()
{
    const Band empty;
    QVERIFY(empty.GetName().isEmpty());
    QCOMPARE(empty.GetStepWidth(), 10000.0);
    QCOMPARE(empty.GetType(), BandGSM::FrequencyBand);
    QVERIFY(!empty.GetGSM());
    QVERIFY(empty.GetUseRaster() && !empty.isSystem() && empty.isVisible());
    QCOMPARE(empty.GetSubBands().size(), 1);
    QVERIFY(empty == Band(QString(), 10000.0, 0.0, true));

    const Band gsm = GSM().GetBand(GSM::GSM850Down);
    Band copy(gsm);
    QVERIFY(copy == gsm && copy.isSystem() && copy.GetGSM());
    QVERIFY(copy.parent() == nullptr);
    copy = Band(QStringLiteral("plain"), 12500.0, 3.0, false);
    QVERIFY(copy != gsm);
    QVERIFY(!copy.GetUseRaster() && !copy.isSystem());
    QCOMPARE(copy.GetOffset(), 3.0);
    QVERIFY(copy < gsm && !(gsm < copy) && !(copy < copy));

    copy.setVisible(true);
    QVERIFY(!copy.isVisible());
}

void TestBand::raster_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("offset");
    QTest::addColumn<bool>("useRaster");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("expected");
    QTest::newRow("a whole-hertz step snaps down") << 25000.0 << 0.0 << true << 100012000.0 << 100000000.0;
    QTest::newRow("even just below the next point") << 25000.0 << 0.0 << true << 100024999.0 << 100000000.0;
    QTest::newRow("the offset shifts the raster") << 25000.0 << 5000.0 << true << 100012000.0 << 100005000.0;
    QTest::newRow("a fractional step snaps up to the nearest")
        << 12500.5 << 0.0 << true << 100012000.0 << 8001 * 12500.5;
    QTest::newRow("a fractional step snaps down to the nearest")
        << 12500.5 << 0.0 << true << 100005000.0 << 8000 * 12500.5;
    QTest::newRow("without raster the frequency stays")
        << 25000.0 << 0.0 << false << 100012000.0 << 100012000.0;
    QTest::newRow("a zero step width means 10 kHz") << 0.0 << 0.0 << true << 123456.0 << 120000.0;
}

void TestBand::raster()
{
    QFETCH(double, step);
    QFETCH(double, offset);
    QFETCH(bool, useRaster);
    QFETCH(double, frequency);
    QFETCH(double, expected);
    Band band(QStringLiteral("plain"), step, offset, useRaster);
    QCOMPARE(band.GetFrequency(77, frequency), expected);
    QCOMPARE(band.GetStepWidth(), step == 0.0 ? 10000.0 : step);
}

void TestBand::findFrequency_data()
{
    QTest::addColumn<bool>("useRaster");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<int>("found");
    QTest::newRow("no raster accepts anything") << false << 100012000.0 << int(Band::FrequencyNoRaster);
    QTest::newRow("on a raster point") << true << 100000000.0 << int(Band::FrequencyExact);
    QTest::newRow("between raster points") << true << 100012000.0 << int(Band::FrequencyInBetween);
    QTest::newRow("4 µHz above a point counts as on it")
        << true << 100000000.000004 << int(Band::FrequencyExact);
    QTest::newRow("4 µHz below a point counts as on it")
        << true << 99999999.999996 << int(Band::FrequencyExact);
    QTest::newRow("NaN is off the raster") << true << qQNaN() << int(Band::FrequencyInBetween);
}

void TestBand::findFrequency()
{
    QFETCH(bool, useRaster);
    QFETCH(double, frequency);
    QFETCH(int, found);
    Band band(QStringLiteral("plain"), 25000.0, 0.0, useRaster);
    unsigned long channel = 42;
    QCOMPARE(int(band.FindFrequency(frequency, channel)), found);
    QCOMPARE(channel, 42ul);
}

void TestBand::findChannel()
{
    Band egsm = GSM().GetBand(GSM::GSM900Up);
    unsigned long channel = 42;
    QCOMPARE(egsm.FindFrequency(1e9, channel), Band::FrequencyOutside);
    QCOMPARE(channel, 42ul);
    QCOMPARE(egsm.FindFrequency(890200000.0, channel), Band::FrequencyExact);
    QCOMPARE(channel, 1ul);
    QCOMPARE(egsm.FindFrequency(880200000.0, channel), Band::FrequencyExact);
    QCOMPARE(channel, 975ul);
    QCOMPARE(egsm.GetChannelValue(), 975ul);
    QCOMPARE(egsm.FindFrequency(890390000.0, channel), Band::FrequencyInBetween);
    QCOMPARE(channel, 1ul);
    QCOMPARE(egsm.FindFrequency(qQNaN(), channel), Band::FrequencyOutside);
    // The frequency argument does not matter to a channel band.
    QCOMPARE(egsm.GetFrequency(2, 1.0), 890400000.0);
}

void TestBand::stepping()
{
    bool moreAbove = false;
    bool moreBelow = false;
    Band plain(QStringLiteral("plain"), 25000.0, 0.0, true);
    QCOMPARE(plain.GetNextFrequency(true, moreAbove, moreBelow, 100.95e6, 100e6, 101e6), 100.975e6);
    QVERIFY(moreAbove && moreBelow);
    QCOMPARE(plain.GetNextFrequency(true, moreAbove, moreBelow, 100.975e6, 100e6, 101e6), 101e6);
    QVERIFY(!moreAbove && moreBelow);
    QCOMPARE(plain.GetNextFrequency(false, moreAbove, moreBelow, 100.03e6, 100e6, 101e6), 100e6);
    QVERIFY(moreAbove && !moreBelow);

    // Channel bands step from their cursor, jumping the E-GSM gap in the direction of travel.
    Band egsm = GSM().GetBand(GSM::GSM900Up);
    unsigned long channel = 0;
    egsm.FindFrequency(914.8e6, channel);
    QCOMPARE(egsm.GetNextFrequency(true, moreAbove, moreBelow, 0.0, 0.0, 2e9), 876.2e6);
    QCOMPARE(egsm.GetChannelValue(), 955ul);
    QVERIFY(moreAbove && moreBelow);
    QCOMPARE(egsm.GetNextFrequency(false, moreAbove, moreBelow, 0.0, 0.0, 2e9), 914.8e6);
    QCOMPARE(egsm.GetChannelValue(), 124ul);
    egsm.FindFrequency(889.8e6, channel);
    QCOMPARE(egsm.GetNextFrequency(true, moreAbove, moreBelow, 0.0, 0.0, 2e9), 889.8e6);
    QVERIFY(!moreAbove && moreBelow);
    // Below channel 0 the 32-bit cursor wraps and is clamped to the top channel.
    egsm.FindFrequency(890e6, channel);
    QCOMPARE(egsm.GetNextFrequency(false, moreAbove, moreBelow, 0.0, 0.0, 2e9), 889.8e6);
    QCOMPARE(egsm.GetChannelValue(), 1023ul);

    // Channel 611 is the last one at or below 1730 MHz.
    Band dcs = GSM().GetBand(GSM::GSM1800Up);
    dcs.FindFrequency(1729.8e6, channel);
    QCOMPARE(dcs.GetNextFrequency(true, moreAbove, moreBelow, 0.0, 1720e6, 1730e6), 1730e6);
    QVERIFY(!moreAbove && moreBelow);
}

void TestBand::saveWritesTheDocumentedElements()
{
    Band system = GSM().GetBand(GSM::GSM900Up);
    QCOMPARE(saved(system), QStringLiteral("<Band><Name>GSM900 Up</Name></Band>"));

    Band gsm(QStringLiteral("Private 1800"), 200000.0, 1710200000.0, 512, 885, 512, false);
    QCOMPARE(saved(gsm),
             QStringLiteral("<Band><Name>Private 1800</Name><Channelspacing>200000</Channelspacing>"
                            "<Type>GSM</Type><StartChannel>512</StartChannel>"
                            "<StopChannel>885</StopChannel>"
                            "<StartFrequency>1710200000.000000</StartFrequency></Band>"));

    // 20 significant digits for the spacing, six for the offset.
    Band plain(QStringLiteral("Air"), 25000.0 / 3, 1234567.0, false);
    QCOMPARE(saved(plain), QStringLiteral("<Band><Name>Air</Name><Channelspacing>8333.3333333333339397"
                                          "</Channelspacing><Type>Simple</Type><Offset>1.23457e+06</Offset>"
                                          "<UseRaster>0</UseRaster></Band>"));

    OddBand odd;
    QCOMPARE(saved(odd), QStringLiteral("<Band><Name>odd</Name><Channelspacing>1000</Channelspacing><Type/>"
                                        "<Offset>0</Offset><UseRaster>1</UseRaster></Band>"));
}

void TestBand::saveReadRoundTrip()
{
    std::vector<Band> bands;
    bands.emplace_back(QStringLiteral("<&>\"' Ünïcödé ☂"), 12500.5, -2500.25, true);
    bands.emplace_back(QStringLiteral("Private 900"), 200000.0, 890000000.0, 0, 124, 0, false);
    bands.emplace_back(QStringLiteral("odd numbers"), 0.1, 0.0, 4294967295ul, 4294967295ul, 4294967295ul,
                       false);
    for (Band& original : bands) {
        const QString xml = saved(original);
        Band copy;
        readInto(copy, xml.mid(6, xml.size() - 13));
        QCOMPARE(saved(copy), xml);
        QCOMPARE(copy.GetName(), original.GetName());
        QCOMPARE(copy.GetStepWidth(), original.GetStepWidth());
        QCOMPARE(copy.GetType(), original.GetType());
        QCOMPARE(copy.GetUseRaster(), original.GetUseRaster());
        if (original.GetGSM()) {
            QCOMPARE(copy.GetStartChannel(), original.GetStartChannel());
            QCOMPARE(copy.GetChannelCalculationFactor(), original.GetStartChannel());
            QCOMPARE(copy.GetStopChannel(), original.GetStopChannel());
            QCOMPARE(copy.GetStartFreq(), original.GetStartFreq());
        } else {
            QCOMPARE(copy.GetOffset(), original.GetOffset());
        }
    }
}

void TestBand::read_data()
{
    QTest::addColumn<bool>("fromGsm");
    QTest::addColumn<QString>("children");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QVariant>("value");

    const QVariant zero = qulonglong(0);
    QTest::newRow("Type Simple makes a plain band") << true << "<Type>Simple</Type>"
                                                    << "type" << QVariant(0);
    QTest::newRow("Type is case sensitive") << false << "<Type>simple</Type>"
                                            << "type" << QVariant(1);
    QTest::newRow("an empty Type means GSM") << false << "<Type/>"
                                             << "type" << QVariant(1);
    QTest::newRow("spacing 0 means 10 kHz") << true << "<Channelspacing>0</Channelspacing>"
                                            << "step" << QVariant(10000.0);
    QTest::newRow("a decimal comma is malformed") << true << "<Channelspacing>12,5</Channelspacing>"
                                                  << "step" << QVariant(10000.0);
    QTest::newRow("an overflowing spacing reads as infinity")
        << true << "<Channelspacing>1e400</Channelspacing>"
        << "step" << QVariant(qInf());
    QTest::newRow("StartChannel sets the factor too") << true << "<StartChannel>600</StartChannel>"
                                                      << "factor" << QVariant(qulonglong(600));
    QTest::newRow("the largest 32-bit channel") << true << "<StopChannel>4294967295</StopChannel>"
                                                << "stop" << QVariant(qulonglong(4294967295u));
    QTest::newRow("a channel beyond 32 bits reads as 0") << true << "<StopChannel>4294967296</StopChannel>"
                                                         << "stop" << zero;
    QTest::newRow("an unparsable start frequency reads as 0")
        << true << "<StartFrequency>abc</StartFrequency>"
        << "startFreq" << QVariant(0.0);
    QTest::newRow("UseRaster must be exactly 1") << true << "<UseRaster>true</UseRaster>"
                                                 << "raster" << QVariant(false);
    QTest::newRow("unknown tags are skipped") << true << "<Foo>1</Foo><Name>n</Name>"
                                              << "name" << QVariant("n");
    QTest::newRow("absent elements leave the field") << true << "<Name>n</Name>"
                                                     << "startFreq" << QVariant(1e9);
    QTest::newRow("elements in any order")
        << true << "<StopChannel>20</StopChannel><StartChannel>10</StartChannel>"
        << "stop" << QVariant(qulonglong(20));
    QTest::newRow("a comment stops the reading")
        << true << "<Name>a</Name><!--x--><StopChannel>20</StopChannel>"
        << "stop" << QVariant(qulonglong(2));
    QTest::newRow("a leading text stops the reading") << true << "text<Name>a</Name>"
                                                      << "name" << QVariant("seed");
    QTest::newRow("CDATA stops the reading") << true << "<![CDATA[x]]><Name>a</Name>"
                                             << "name" << QVariant("seed");
}

void TestBand::read()
{
    QFETCH(bool, fromGsm);
    QFETCH(QString, children);
    QFETCH(QString, field);
    QFETCH(QVariant, value);

    Band band = fromGsm ? gsmSeed() : Band(QStringLiteral("seed"), 1000.0, 0.0, true);
    readInto(band, children);
    QCOMPARE(fields(band).value(field), value);

    // Whatever was read, the arithmetic stays defined.
    unsigned long channel = 0;
    bool moreAbove = false;
    bool moreBelow = false;
    band.FindFrequency(band.GetStartFreq(), channel);
    band.GetNextFrequency(true, moreAbove, moreBelow, 1e9, 0.0, 2e9);
    band.GetNextFrequency(false, moreAbove, moreBelow, 1e9, 0.0, 2e9);
}

void TestBand::readTracesNonElements()
{
    ErrorHandler& handler = ErrorHandler::Instance();
    const auto newest = [&handler] {
        const auto& list = handler.GetMessages()->GetList();
        return list.empty() ? QString() : list.front()->GetText();
    };
    const QString trace = QStringLiteral("3@error loading job.@basetypes\\band@321@Band@Read@");

    // Earlier tests may have queued traces of their own: start after a marker.
    handler.ProtocolMessage(QStringLiteral("marker"), QString(), QString(), QString(), 1, 255);
    QTRY_VERIFY(newest().startsWith(QStringLiteral("@marker@")));

    Band band;
    QDomDocument doc;
    QDomElement none;
    band.Read(doc, none);
    readInto(band, QStringLiteral("<Name>a</Name><Channelspacing>5</Channelspacing>"));
    QCoreApplication::processEvents();
    QVERIFY(newest().startsWith(QStringLiteral("@marker@")));

    readInto(band, QStringLiteral("<Name>b</Name><!--x-->"));
    QCOMPARE(band.GetName(), QStringLiteral("b"));
    QTRY_VERIFY(newest().startsWith(trace));

    const unsigned int mask = handler.GetMessageMask();
    handler.SetMessageMask(ErrorHandler::TraceMask, false);
    readInto(band, QStringLiteral("<!--x-->"));
    handler.ProtocolMessage(QStringLiteral("second marker"), QString(), QString(), QString(), 1, 255);
    QTRY_VERIFY(newest().startsWith(QStringLiteral("@second marker@")));
    handler.SetMessageMask(mask);
    QCOMPARE(handler.GetMessages()->GetList().at(1)->GetText().startsWith(trace), true);
}

QTEST_GUILESS_MAIN(TestBand)
#include "tst_band.moc"
