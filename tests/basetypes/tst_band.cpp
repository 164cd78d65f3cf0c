#include "basetypes/gsm.h"
#include "errorhandling/errorhandler.h"

#include <QDomDocument>
#include <QRandomGenerator>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

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

// One step as "frequency moreAbove moreBelow".
QString step(Band& band, bool up, double current, double lowFreq, double highFreq)
{
    bool moreAbove = false, moreBelow = false;
    const double next = band.GetNextFrequency(up, moreAbove, moreBelow, current, lowFreq, highFreq);
    return QStringLiteral("%1 %2 %3").arg(next, 0, 'f', 0).arg(int(moreAbove)).arg(int(moreBelow));
}

} // namespace

class TestBand : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standardChannelNumbering_data();
    void standardChannelNumbering();
    void tableFallbacks();
    void rowsRememberTheLastChannel();
    void channelArithmetic();
    void envelopeAndEquality();
    void plainBand_data();
    void plainBand();
    void channelBand();
    void save();
    void savedNumbersReadBackExactly_data();
    void savedNumbersReadBackExactly();
    void read_data();
    void read();
    void readTracesNonElements();
};

void TestBand::standardChannelNumbering_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("baseKHz");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    // 3GPP TS 45.005 clause 2: channel n of first..last lies at base + 0.2 MHz · (n − first);
    // R-GSM 900 adds 955..1023 at 890 MHz + 0.2 MHz · (n − 1024). Downlink = uplink + duplex distance.
    QTest::newRow("R-GSM 900 uplink") << 0 << "GSM900 Up" << 890000 << 0 << 124;
    QTest::newRow("R-GSM 900 downlink") << 1 << "GSM900 Down" << 890000 + 45000 << 0 << 124;
    QTest::newRow("DCS 1800 uplink") << 2 << "GSM1800 Up" << 1710200 << 512 << 885;
    QTest::newRow("DCS 1800 downlink") << 3 << "GSM1800 Down" << 1710200 + 95000 << 512 << 885;
    QTest::newRow("PCS 1900 uplink") << 4 << "GSM1900 Up" << 1850200 << 512 << 810;
    QTest::newRow("PCS 1900 downlink") << 5 << "GSM1900 Down" << 1850200 + 80000 << 512 << 810;
    QTest::newRow("GSM 450 uplink") << 6 << "GSM450 Up" << 450600 << 259 << 293;
    QTest::newRow("GSM 450 downlink") << 7 << "GSM450 Down" << 450600 + 10000 << 259 << 293;
    QTest::newRow("GSM 480 uplink") << 8 << "GSM480 Up" << 479000 << 306 << 340;
    QTest::newRow("GSM 480 downlink") << 9 << "GSM480 Down" << 479000 + 10000 << 306 << 340;
    QTest::newRow("GSM 850 uplink") << 10 << "GSM850 Up" << 824200 << 128 << 251;
    QTest::newRow("GSM 850 downlink") << 11 << "GSM850 Down" << 824200 + 45000 << 128 << 251;
}

// Every channel number up to beyond 1023: valid exactly where the standard
// defines it, at the standard's frequency, and back from that frequency.
void TestBand::standardChannelNumbering()
{
    QFETCH(int, band);
    QFETCH(QString, name);
    QFETCH(int, baseKHz);
    QFETCH(int, first);
    QFETCH(int, last);
    GSM gsm;
    const Band row = gsm.GetBand(band);
    QVERIFY(row.isSystem() && row.isVisible() && row.GetUseRaster() && row.GetGSM());
    for (int n = 0; n <= 1200; ++n) {
        const bool eGsm = band < 2 && n >= 955 && n <= 1023;
        QCOMPARE(row.IsValidChannel(n), eGsm || (first <= n && n <= last));
        if (!eGsm && (n < first || n > last))
            continue;
        const double hz = (baseKHz + 200.0 * (n - (eGsm ? 1024 : first))) * 1000.0;
        QCOMPARE(gsm.Channel2Frequency(n, GSM::EGSMBand(band)), hz);
        QCOMPARE(row.GetChannelForFrequency(hz), (unsigned long)n);
    }
    QCOMPARE(row.GetName(), name);
}

void TestBand::tableFallbacks()
{
    GSM gsm;
    QVERIFY(gsm.GetBand(12) == gsm.GetBand(0));
    QVERIFY(gsm.Channel2Frequency(1, GSM::EGSMBand(12)) == -1.0 &&
            gsm.Channel2Frequency(1, GSM::EGSMBand(-1)) == -1.0);
    BandGSM out(QStringLiteral("untouched"), 1.0, 2.0, 3, 4, 5);
    QVERIFY(!gsm.GetDefinition(12, out) && out.GetName() == "untouched");
    QVERIFY(gsm.GetDefinition(GSM::GSM1800Down, out) && out == gsm.GetBand(GSM::GSM1800Down));
    QString name;
    double step = 0.0;
    unsigned long first = 7, last = 7;
    QVERIFY(!gsm.GetDefinition(12, name, step, step, first, last) && first == 7);
    QVERIFY(gsm.GetDefinition(0, name, step, step, first, last) && name == "GSM900 Up" && last == 1023);
    gsm.setVisible(3, true);
    gsm.setVisible(12, true);
    QVERIFY(!gsm.GetBand(3).isVisible() && gsm.GetBand(2).isVisible() && gsm.GetBand(0).isVisible());
    // BCCH carriers: downlinks themselves, uplinks 2..10 their downlink, anything else GSM900 Down.
    for (const auto& pair : QVector<QPair<int, int>>{{0, 1}, {4, 5}, {5, 5}, {11, 11}, {12, 1}, {-1, 1}})
        QCOMPARE(qMakePair(pair.first, GSM::GetBcchBandForBand(pair.first)), pair);
}

// A row converts on itself: a channel below a single-part row's start channel
// answers with the frequency of the last channel the row accepted.
void TestBand::rowsRememberTheLastChannel()
{
    GSM gsm;
    QCOMPARE(gsm.Channel2Frequency(600, GSM::GSM1800Up), 1727800000.0);
    QCOMPARE(gsm.Channel2Frequency(3, GSM::GSM1800Up), 1727800000.0);
    QCOMPARE(gsm.GetBand(GSM::GSM1800Up).GetChannelValue(), 600ul);
    BandGSM undefined;
    QVERIFY(undefined.GetFrequency(5) == 0.0 && undefined.GetStepWidth() == 10000.0);
}

void TestBand::channelArithmetic()
{
    const BandGSM egsm = GSM().GetBand(GSM::GSM900Up);
    const BandGSM dcs = GSM().GetBand(GSM::GSM1800Up);
    // Channel n at 1 MHz + n kHz.
    const BandGSM kilo(QStringLiteral("kilo"), 1000.0, 1e6, 0, 100, 0);
    BandGSM finer = egsm;
    finer.SetStepWidth(100000.0);

    QCOMPARE(dcs.GetChannelForFrequency(1710300000.0), 513ul);     // one part rounds half up
    QCOMPARE(egsm.GetChannelForFrequency(890399999.0), 1ul);       // several parts truncate
    QCOMPARE(egsm.GetChannelForFrequency(889.9e6), 0ul);           // ... and give 0 in a gap
    QCOMPARE(finer.GetChannelForFrequency(880.2e6), 0ul);          // lower edge: the band's step width
    QCOMPARE(finer.GetChannelForFrequency(889.85e6), 0ul);         // upper edge: the sub-band's own
    QCOMPARE(kilo.GetChannelForFrequency(999500.0), 0ul);          // -0.5 channels rounds up to 0
    QCOMPARE(kilo.GetChannelForFrequency(998400.0), 4294967294ul); // -1.6 rounds to -2, 32-bit wrapped
    QCOMPARE(kilo.GetChannelForFrequency(qQNaN()), 0ul);

    BandGSM even(QStringLiteral("gap of 9"), 1000.0, 1e6, 0, 10, 0);
    even.AddSubBand(1000.0, 1e6, 20, 30, 0);
    BandGSM overreaching = egsm;
    overreaching.SetStopChannel(5000);
    QCOMPARE(dcs.GetNextValidChannel(5, false, true), 512ul);           // below the band: its start
    QCOMPARE(dcs.GetNextValidChannel(2000, true, false), 885ul);        // above the band: its stop
    QCOMPARE(egsm.GetNextValidChannel(500, true, false), 955ul);        // up jumps the E-GSM gap
    QCOMPARE(egsm.GetNextValidChannel(500, false, true), 124ul);        // down jumps it
    QCOMPARE(egsm.GetNextValidChannel(500, false, false), 124ul);       // neither: the nearest edge
    QCOMPARE(even.GetNextValidChannel(15, false, false), 20ul);         // a tie goes up
    QCOMPARE(overreaching.GetNextValidChannel(2000, true, false), 0ul); // up past the top wraps

    QVERIFY(egsm.HasChannelsWithinFreqRange(880e6, 881e6));       // E-GSM channels count
    QVERIFY(!egsm.HasChannelsWithinFreqRange(889.9e6, 889.95e6)); // the gap has none
    QVERIFY(egsm.HasChannelsWithinFreqRange(920e6, 914.8e6));     // touching counts, either order
    QVERIFY(!dcs.HasChannelsWithinFreqRange(qQNaN(), qQNaN()));
    QVERIFY(Band().HasChannelsWithinFreqRange(-1.0, -2.0)); // a plain band has everything

    const auto range = [](const BandGSM& band, double low, double high) {
        int first = 0, last = 0;
        band.GetChannelRangeWithinFreqRange(first, last, low, high);
        return qMakePair(first, last);
    };
    QCOMPARE(range(dcs, 1720e6, 1730e6), qMakePair(561, 611)); // 1720.0 and 1730.0 MHz
    // Counted from the start channel, not from the factor: 1.010 MHz is channel 15.
    QCOMPARE(range(BandGSM(QStringLiteral("offset"), 1000.0, 1e6, 10, 100, 5), 1.010e6, 2e6),
             qMakePair(20, 100));
}

void TestBand::envelopeAndEquality()
{
    // Sub-bands widen the start frequency and channel range, never the factor or step.
    BandGSM band(QStringLiteral("pieces"), 1000.0, 5e6, 100, 200, 100);
    band.AddSubBand(500.0, 2e6, 50, 80, 50);
    QVERIFY(band.GetStartFreq() == 2e6 && band.GetStartChannel() == 50 && band.GetStopChannel() == 200);
    QVERIFY(band.GetChannelCalculationFactor() == 100 && band.GetStepWidth() == 1000.0);
    // Compared as signed 32-bit numbers, a channel of 2^31 or more is negative.
    band.AddSubBand(500.0, 1e6, 0x90000000ul, 0x90000010ul, 0);
    QCOMPARE(band.GetStopChannel(), 200ul);

    // Equal bands: the cursor counts, NaN never matches, and only Band compares the type.
    BandGSM moved = GSM().GetBand(GSM::GSM900Up);
    moved.GetFrequency(3);
    QVERIFY(moved != GSM().GetBand(GSM::GSM900Up));
    moved.SetOffset(qQNaN());
    QVERIFY(moved != moved);
    const Band plain(QStringLiteral("x"), 1000.0, 0.0, true);
    const Band channels(QStringLiteral("x"), 1000.0, 0.0, 0, 0, 0, false);
    QVERIFY(static_cast<const BandGSM&>(plain) == channels && plain != channels);
    // Bands order by step width alone.
    QVERIFY(Band(QStringLiteral("y"), 999.0, 5.0, false) < channels && !(channels < plain));
}

void TestBand::plainBand_data()
{
    QTest::addColumn<double>("step");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<double>("snapped");
    QTest::addColumn<int>("found");
    const int exact = Band::FrequencyExact;
    const int between = Band::FrequencyInBetween;
    QTest::newRow("a whole-hertz step snaps down") << 25e3 << 0.0 << 100012e3 << 1e8 << between;
    QTest::newRow("the offset shifts the raster") << 25e3 << 5e3 << 100012e3 << 100005e3 << between;
    QTest::newRow("fractional steps snap to the nearest")
        << 12500.5 << 0.0 << 100012e3 << 8001 * 12500.5 << between;
    QTest::newRow("4 µHz above a point is on it") << 25e3 << 0.0 << 100000000.000004 << 1e8 << exact;
    QTest::newRow("4 µHz below a point is on it") << 25e3 << 0.0 << 99999999.999996 << 99975e3 << exact;
    QTest::newRow("a zero step width means 10 kHz") << 0.0 << 0.0 << 123456.0 << 12e4 << between;
    QTest::newRow("NaN is off the raster") << 25e3 << 0.0 << qQNaN() << qQNaN() << between;
}

void TestBand::plainBand()
{
    QFETCH(double, step);
    QFETCH(double, offset);
    QFETCH(double, frequency);
    QFETCH(double, snapped);
    QFETCH(int, found);
    Band band(QStringLiteral("plain"), step, offset, true);
    unsigned long channel = 42;
    QCOMPARE(band.GetFrequency(77, frequency), snapped);
    QCOMPARE(int(band.FindFrequency(frequency, channel)), found);
    QCOMPARE(channel, 42ul);
}

void TestBand::channelBand()
{
    Band egsm = GSM().GetBand(GSM::GSM900Up);
    unsigned long channel = 42;
    QCOMPARE(egsm.FindFrequency(1e9, channel), Band::FrequencyOutside);
    QCOMPARE(egsm.FindFrequency(qQNaN(), channel), Band::FrequencyOutside);
    QCOMPARE(egsm.FindFrequency(890.39e6, channel), Band::FrequencyInBetween);
    QCOMPARE(channel, 1ul);
    QCOMPARE(egsm.FindFrequency(880.2e6, channel), Band::FrequencyExact);
    QCOMPARE(egsm.GetChannelValue(), 975ul);

    // Stepping starts from the cursor and jumps the E-GSM gap in the direction of travel.
    egsm.FindFrequency(914.8e6, channel);
    QCOMPARE(step(egsm, true, 0.0, 0.0, 2e9), QStringLiteral("876200000 1 1"));
    QCOMPARE(step(egsm, false, 0.0, 0.0, 2e9), QStringLiteral("914800000 1 1"));
    // Below channel 0 the 32-bit cursor wraps and is clamped to the top channel.
    egsm.FindFrequency(890e6, channel);
    QCOMPARE(step(egsm, false, 0.0, 0.0, 2e9), QStringLiteral("889800000 0 1"));
    Band plain(QStringLiteral("plain"), 25000.0, 0.0, false);
    QCOMPARE(plain.GetFrequency(0, 100012e3), 100012e3); // without raster anything goes
    QCOMPARE(plain.FindFrequency(100012e3, channel), Band::FrequencyNoRaster);
    plain.SetUseRaster(true);
    QCOMPARE(step(plain, true, 100.975e6, 100e6, 101e6), QStringLiteral("101000000 0 1"));
    QCOMPARE(step(plain, false, 100.03e6, 100e6, 101e6), QStringLiteral("100000000 1 0"));
}

void TestBand::save()
{
    Band system = GSM().GetBand(GSM::GSM900Up);
    QCOMPARE(saved(system), QStringLiteral("<Band><Name>GSM900 Up</Name></Band>"));
    Band gsm(QStringLiteral("Private 1800"), 200000.0, 1710200000.0, 512, 885, 512, false);
    QCOMPARE(saved(gsm),
             QStringLiteral("<Band><Name>Private 1800</Name><Channelspacing>200000</Channelspacing>"
                            "<Type>GSM</Type><StartChannel>512</StartChannel><StopChannel>885</StopChannel>"
                            "<StartFrequency>1710200000.000000</StartFrequency></Band>"));
    // 20 significant digits for the spacing; the offset as short as reads back exactly.
    Band plain(QStringLiteral("Air"), 25000.0 / 3, 12345678.9, false);
    QCOMPARE(saved(plain), QStringLiteral("<Band><Name>Air</Name><Channelspacing>8333.3333333333339397"
                                          "</Channelspacing><Type>Simple</Type><Offset>12345678.9</Offset>"
                                          "<UseRaster>0</UseRaster></Band>"));
    // A type no constructor makes (read from a future version, say) writes an empty Type.
    struct OddBand : Band
    {
        OddBand() : Band(QStringLiteral("odd"), 1000.0, 0.0, true) { m_eType = BandType(7); }
    } odd;
    QCOMPARE(saved(odd), QStringLiteral("<Band><Name>odd</Name><Channelspacing>1000</Channelspacing><Type/>"
                                        "<Offset>0</Offset><UseRaster>1</UseRaster></Band>"));

    for (Band original : {Band(QStringLiteral("<&>\"' Ünïcödé ☂"), 12500.5, -2500.25, true),
                          Band(QStringLiteral("extremes"), 0.1, 0.0, 4294967295ul, 4294967295ul, 0, false)}) {
        const QString xml = saved(original);
        Band copy;
        readInto(copy, xml.mid(6, xml.size() - 13));
        QCOMPARE(saved(copy), xml);
        QCOMPARE(copy.GetChannelCalculationFactor(), original.GetStartChannel());
    }
}

// Offsets and start frequencies of every magnitude survive Save and Read bit for bit.
void TestBand::savedNumbersReadBackExactly_data()
{
    QTest::addColumn<bool>("channelBand");
    QTest::newRow("offset of a plain band") << false;
    QTest::newRow("start frequency of a channel band") << true;
}

void TestBand::savedNumbersReadBackExactly()
{
    QFETCH(bool, channelBand);
    QRandomGenerator random(0x4b76);
    QVector<double> values = {-0.0,
                              qInf(),
                              -qInf(),
                              std::numeric_limits<double>::denorm_min(),
                              std::numeric_limits<double>::max(),
                              12345678.9,
                              890200000.0000001};
    for (int i = 0; i < 20000; ++i) {
        // Half any bit pattern, half frequencies with fractions of a hertz.
        const quint64 bits = random.generate64();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isnan(value))
            values << value;
        values << random.bounded(6e9);
    }
    for (const double value : qAsConst(values)) {
        Band band = channelBand ? Band(QStringLiteral("b"), 200000.0, value, 1, 2, 1, false)
                                : Band(QStringLiteral("b"), 25000.0, value, true);
        const QString xml = saved(band);
        Band copy;
        readInto(copy, xml.mid(6, xml.size() - 13));
        const double back = channelBand ? copy.GetStartFreq() : copy.GetOffset();
        QVERIFY2(std::memcmp(&back, &value, sizeof value) == 0, qPrintable(xml));
    }
}

// Children read into a GSM band, and a piece of what the band then saves.
void TestBand::read_data()
{
    QTest::addColumn<QString>("children");
    QTest::addColumn<QString>("saves");
    const char* const rows[][3] = {
        {"Type Simple makes a plain band", "<Type>Simple</Type>", "<Type>Simple</Type>"},
        {"Type is case sensitive", "<Type>simple</Type>", "<Type>GSM</Type>"},
        {"spacing 0 means 10 kHz", "<Channelspacing>0</Channelspacing>", "<Channelspacing>10000<"},
        {"an overflow is infinite", "<Channelspacing>1e400</Channelspacing>", "<Channelspacing>inf<"},
        {"beyond 32 bits reads as 0", "<StopChannel>4294967296</StopChannel>", "<StopChannel>0<"},
        {"UseRaster must be exactly 1", "<UseRaster>true</UseRaster><Type>Simple</Type>", "<UseRaster>0<"},
        {"unknown tags are skipped", "<Foo>1</Foo><Name>n</Name>", "<Name>n<"},
        {"absent elements leave the field", "<Name>n</Name>", "<StartFrequency>1000000000.000000<"},
        {"a six-digit offset keeps its text", "<Type>Simple</Type><Offset>1.23457e+07</Offset>",
         "<Offset>1.23457e+07<"},
        {"a six-decimal frequency keeps its text", "<StartFrequency>890200000.123457</StartFrequency>",
         "<StartFrequency>890200000.123457<"},
        {"a long frequency is read in full", "<StartFrequency>890200000.12345678</StartFrequency>",
         "<StartFrequency>890200000.1234568<"},
        {"a comment stops it", "<Name>a</Name><!--x--><StopChannel>20</StopChannel>", "<StopChannel>2<"},
        {"a leading text stops it at once", "text<Name>a</Name>", "<Name>seed<"},
    };
    for (const auto& row : rows)
        QTest::newRow(row[0]) << QString::fromUtf8(row[1]) << QString::fromUtf8(row[2]);
}

void TestBand::read()
{
    QFETCH(QString, children);
    QFETCH(QString, saves);
    Band band(QStringLiteral("seed"), 200000.0, 1e9, 1, 2, 1, false);
    readInto(band, children);
    QVERIFY2(saved(band).contains(saves), qPrintable(saved(band)));
}

void TestBand::readTracesNonElements()
{
    ErrorHandler& handler = ErrorHandler::Instance();
    const auto newest = [&handler] {
        QCoreApplication::processEvents(); // messages arrive queued
        const auto& list = handler.GetMessages()->GetList();
        return list.empty() ? QString() : list.front()->GetText();
    };
    Band band;
    handler.ProtocolMessage(QStringLiteral("marker"), QString(), QString(), QString(), 1, 255);
    readInto(band, QStringLiteral("<Name>b</Name><!--x-->"));
    QCOMPARE(band.GetName(), QStringLiteral("b"));
    QVERIFY(newest().startsWith(QStringLiteral("3@error loading job.@basetypes\\band@321@Band@Read@")));
    handler.SetMessageMask(ErrorHandler::TraceMask, false);
    handler.ProtocolMessage(QStringLiteral("marker"), QString(), QString(), QString(), 1, 255);
    readInto(band, QStringLiteral("<!--x-->"));
    QVERIFY(newest().startsWith(QStringLiteral("@marker@")));
    handler.SetMessageMask(ErrorHandler::TraceMask, true);
}

QTEST_GUILESS_MAIN(TestBand)
#include "tst_band.moc"
