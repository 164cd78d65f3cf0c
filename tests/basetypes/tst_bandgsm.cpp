#include "basetypes/gsm.h"

#include <QtTest>

#include <limits>

namespace {

// One stretch of a band plan as 3GPP TS 45.005 numbers it: channel n of the
// stretch lies at base + 0.2 MHz · (n − reference).
struct ChannelStretch
{
    unsigned long first;
    unsigned long last;
    long reference;
};

using Stretches = QVector<ChannelStretch>;

// Lets the tests give a band a type its constructors never make.
class TypedBand : public BandGSM
{
public:
    using BandGSM::BandGSM;
    void setType(BandType type) { m_eType = type; }
};

} // namespace

Q_DECLARE_METATYPE(Stretches)

class TestBandGSM : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void standardChannelNumbering_data();
    void standardChannelNumbering();
    void tableFallbacks();
    void bcchBand_data();
    void bcchBand();
    void channelForFrequencyRounding_data();
    void channelForFrequencyRounding();
    void storedChannelValue();
    void nextValidChannel_data();
    void nextValidChannel();
    void channelRangeWithinFreqRange();
    void channelsWithinFreqRange_data();
    void channelsWithinFreqRange();
    void subBandsWidenTheEnvelope();
    void equality();
};

void TestBandGSM::standardChannelNumbering_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint64>("baseKHz");
    QTest::addColumn<Stretches>("stretches");

    // TS 45.005 clause 2: R-GSM 900 (which contains P- and E-GSM), DCS 1800,
    // PCS 1900, GSM 450, GSM 480, GSM 850; downlink = uplink + duplex distance.
    const Stretches gsm900{{0, 124, 0}, {955, 1023, 1024}};
    const Stretches dcs1800{{512, 885, 512}};
    const Stretches pcs1900{{512, 810, 512}};
    const Stretches gsm450{{259, 293, 259}};
    const Stretches gsm480{{306, 340, 306}};
    const Stretches gsm850{{128, 251, 128}};
    QTest::newRow("R-GSM 900 uplink") << 0 << "GSM900 Up" << qint64(890000) << gsm900;
    QTest::newRow("R-GSM 900 downlink") << 1 << "GSM900 Down" << qint64(890000 + 45000) << gsm900;
    QTest::newRow("DCS 1800 uplink") << 2 << "GSM1800 Up" << qint64(1710200) << dcs1800;
    QTest::newRow("DCS 1800 downlink") << 3 << "GSM1800 Down" << qint64(1710200 + 95000) << dcs1800;
    QTest::newRow("PCS 1900 uplink") << 4 << "GSM1900 Up" << qint64(1850200) << pcs1900;
    QTest::newRow("PCS 1900 downlink") << 5 << "GSM1900 Down" << qint64(1850200 + 80000) << pcs1900;
    QTest::newRow("GSM 450 uplink") << 6 << "GSM450 Up" << qint64(450600) << gsm450;
    QTest::newRow("GSM 450 downlink") << 7 << "GSM450 Down" << qint64(450600 + 10000) << gsm450;
    QTest::newRow("GSM 480 uplink") << 8 << "GSM480 Up" << qint64(479000) << gsm480;
    QTest::newRow("GSM 480 downlink") << 9 << "GSM480 Down" << qint64(479000 + 10000) << gsm480;
    QTest::newRow("GSM 850 uplink") << 10 << "GSM850 Up" << qint64(824200) << gsm850;
    QTest::newRow("GSM 850 downlink") << 11 << "GSM850 Down" << qint64(824200 + 45000) << gsm850;
}

// Every channel number from 0 to beyond 1023: valid exactly where the standard
// defines it, at the standard's frequency, and back from that frequency.
void TestBandGSM::standardChannelNumbering()
{
    QFETCH(int, band);
    QFETCH(QString, name);
    QFETCH(qint64, baseKHz);
    QFETCH(Stretches, stretches);

    GSM gsm;
    const auto plan = static_cast<GSM::EGSMBand>(band);
    const Band row = gsm.GetBand(band);
    QCOMPARE(row.GetName(), name);
    QVERIFY(row.isSystem() && row.isVisible() && row.GetUseRaster() && row.GetGSM());
    QCOMPARE(row.GetStepWidth(), 200000.0);
    QCOMPARE(row.GetOffset(), 0.0);

    for (unsigned long n = 0; n <= 1200; ++n) {
        const ChannelStretch* stretch = nullptr;
        for (const ChannelStretch& s : stretches) {
            if (s.first <= n && n <= s.last)
                stretch = &s;
        }
        QCOMPARE(row.IsValidChannel(n), stretch != nullptr);
        if (!stretch)
            continue;
        const double hz = (baseKHz + 200 * (static_cast<long>(n) - stretch->reference)) * 1000.0;
        QCOMPARE(gsm.Channel2Frequency(n, plan), hz);
        QCOMPARE(row.GetChannelForFrequency(hz), n);
        // Single-part bands round to the nearest channel.
        if (stretches.size() == 1) {
            QCOMPARE(row.GetChannelForFrequency(hz + 99000.0), n);
            QCOMPARE(row.GetChannelForFrequency(hz - 99000.0), n);
        }
    }

    QString defName;
    double step = 0.0;
    double start = 0.0;
    unsigned long first = 99;
    unsigned long last = 99;
    QVERIFY(gsm.GetDefinition(band, defName, step, start, first, last));
    QCOMPARE(defName, name);
    QCOMPARE(first, stretches.constFirst().first);
    QCOMPARE(last, stretches.constLast().last);
    QCOMPARE(start, (baseKHz + 200 * (static_cast<long>(first) - stretches.constFirst().reference)) * 1000.0);
}

void TestBandGSM::tableFallbacks()
{
    GSM gsm;
    QCOMPARE(gsm.GetCount(), 12u);
    QVERIFY(gsm.GetBand(12) == gsm.GetBand(0));
    QCOMPARE(gsm.Channel2Frequency(1, static_cast<GSM::EGSMBand>(12)), -1.0);
    QCOMPARE(gsm.Channel2Frequency(1, static_cast<GSM::EGSMBand>(-1)), -1.0);
    QCOMPARE(gsm.Channel2Frequency(500, GSM::GSM900Up), 0.0);

    BandGSM out(QStringLiteral("untouched"), 1.0, 2.0, 3, 4, 5);
    const BandGSM before = out;
    QVERIFY(!gsm.GetDefinition(12, out));
    QVERIFY(out == before);
    QVERIFY(gsm.GetDefinition(GSM::GSM1800Down, out));
    QVERIFY(out == gsm.GetBand(GSM::GSM1800Down));
    QString name;
    double step = 0.0;
    double start = 0.0;
    unsigned long first = 7;
    unsigned long last = 7;
    QVERIFY(!gsm.GetDefinition(12, name, step, start, first, last));
    QCOMPARE(first, 7ul);

    gsm.setVisible(3, true);
    QVERIFY(!gsm.GetBand(3).isVisible());
    QVERIFY(gsm.GetBand(2).isVisible());
    gsm.setVisible(12, false);
    QVERIFY(gsm.GetBand(0).isVisible());
}

void TestBandGSM::bcchBand_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<int>("bcch");
    QTest::newRow("GSM900 Up falls back to GSM900 Down") << 0 << 1;
    QTest::newRow("a downlink carries its own BCCH") << 5 << 5;
    QTest::newRow("GSM1900 Up uses GSM1900 Down") << 4 << 5;
    QTest::newRow("index 12 falls back") << 12 << 1;
    QTest::newRow("a negative index falls back") << -1 << 1;
    QTest::newRow("the most negative index falls back") << std::numeric_limits<int>::min() << 1;
}

void TestBandGSM::bcchBand()
{
    QFETCH(int, band);
    QFETCH(int, bcch);
    QCOMPARE(GSM::GetBcchBandForBand(band), bcch);
}

void TestBandGSM::channelForFrequencyRounding_data()
{
    QTest::addColumn<BandGSM>("band");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<unsigned long>("channel");

    GSM gsm;
    const BandGSM dcs = gsm.GetBand(GSM::GSM1800Up);
    const BandGSM egsm = gsm.GetBand(GSM::GSM900Up);
    BandGSM finer = egsm;
    finer.SetStepWidth(100000.0);
    // Channel n at 1 MHz + n kHz, channels 0..100.
    const BandGSM kilo(QStringLiteral("kilo"), 1000.0, 1e6, 0, 100, 0);
    const double inf = qInf();

    QTest::newRow("single part rounds half up") << dcs << 1710300000.0 << 513ul;
    QTest::newRow("single part rounds down below half") << dcs << 1710299999.0 << 512ul;
    QTest::newRow("multi part truncates instead of rounding") << egsm << 890399999.0 << 1ul;
    QTest::newRow("a sub-band's lower edge uses the band's step width") << finer << 880.2e6 << 0ul;
    QTest::newRow("a sub-band's upper edge uses its own step width") << finer << 889.85e6 << 0ul;
    QTest::newRow("multi part gives 0 in its gap") << egsm << 889900000.0 << 0ul;
    QTest::newRow("multi part gives 0 above it") << egsm << 915000000.0 << 0ul;
    QTest::newRow("single part is not range checked") << dcs << 1900000000.0 << 1461ul;
    QTest::newRow("-0.5 channels rounds up to 0") << kilo << 999500.0 << 0ul;
    QTest::newRow("-1.4 channels wraps to 2^32 - 1") << kilo << 998600.0 << 4294967295ul;
    QTest::newRow("-1.6 channels wraps to 2^32 - 2") << kilo << 998400.0 << 4294967294ul;
    QTest::newRow("NaN gives 0") << kilo << qQNaN() << 0ul;
    QTest::newRow("infinity saturates at 2^32 - 1") << kilo << inf << 4294967295ul;
    QTest::newRow("minus infinity saturates at 2^31") << kilo << -inf << 2147483648ul;
}

void TestBandGSM::channelForFrequencyRounding()
{
    QFETCH(BandGSM, band);
    QFETCH(double, frequency);
    QFETCH(unsigned long, channel);
    QCOMPARE(band.GetChannelForFrequency(frequency), channel);
}

// GetFrequency remembers the last accepted channel and answers for it when
// asked for a channel below a single-part band.
void TestBandGSM::storedChannelValue()
{
    BandGSM dcs = GSM().GetBand(GSM::GSM1800Up);
    QCOMPARE(dcs.GetChannelValue(), 0ul);
    QCOMPARE(dcs.GetFrequency(600), 1727800000.0);
    QCOMPARE(dcs.GetFrequency(3), 1727800000.0);
    QCOMPARE(dcs.GetChannelValue(), 600ul);

    // The table's own rows remember the last converted channel too.
    GSM gsm;
    QCOMPARE(gsm.Channel2Frequency(3, GSM::GSM1800Up), 1710200000.0 - 512 * 200000.0);
    QCOMPARE(gsm.Channel2Frequency(600, GSM::GSM1800Up), 1727800000.0);
    QCOMPARE(gsm.Channel2Frequency(3, GSM::GSM1800Up), 1727800000.0);
    QCOMPARE(gsm.GetBand(GSM::GSM1800Up).GetChannelValue(), 600ul);
    QCOMPARE(GSM().GetBand(GSM::GSM1800Up).GetChannelValue(), 0ul);

    BandGSM egsm = gsm.GetBand(GSM::GSM900Up);
    QCOMPARE(egsm.GetFrequency(1023), 889800000.0);
    QCOMPARE(egsm.GetFrequency(500), 0.0);
    QCOMPARE(egsm.GetChannelValue(), 1023ul);

    BandGSM undefined;
    QCOMPARE(undefined.GetName(), QStringLiteral("not defined"));
    QCOMPARE(undefined.GetStepWidth(), 0.0);
    QCOMPARE(undefined.GetFrequency(5), 0.0);
    QCOMPARE(undefined.GetStepWidth(), 10000.0);
}

void TestBandGSM::nextValidChannel_data()
{
    QTest::addColumn<BandGSM>("band");
    QTest::addColumn<unsigned long>("channel");
    QTest::addColumn<bool>("up");
    QTest::addColumn<bool>("down");
    QTest::addColumn<unsigned long>("next");

    GSM gsm;
    const BandGSM egsm = gsm.GetBand(GSM::GSM900Up);
    const BandGSM dcs = gsm.GetBand(GSM::GSM1800Up);
    BandGSM even(QStringLiteral("gap of 9"), 1000.0, 1e6, 0, 10, 0);
    even.AddSubBand(1000.0, 1e6, 20, 30, 0);
    BandGSM overreaching = egsm;
    overreaching.SetStopChannel(5000);

    QTest::newRow("a valid channel stays") << egsm << 17ul << true << false << 17ul;
    QTest::newRow("below the band gives the start channel") << dcs << 5ul << false << true << 512ul;
    QTest::newRow("above the band gives the stop channel") << dcs << 2000ul << true << false << 885ul;
    QTest::newRow("up jumps the E-GSM gap") << egsm << 500ul << true << false << 955ul;
    QTest::newRow("down jumps the E-GSM gap") << egsm << 500ul << false << true << 124ul;
    QTest::newRow("up wins over down") << egsm << 500ul << true << true << 955ul;
    QTest::newRow("nearest below") << egsm << 500ul << false << false << 124ul;
    QTest::newRow("nearest above") << egsm << 600ul << false << false << 955ul;
    QTest::newRow("a tie goes to the higher channel") << even << 15ul << false << false << 20ul;
    QTest::newRow("up past the last sub-band wraps to the lowest")
        << overreaching << 2000ul << true << false << 0ul;
    QTest::newRow("down stays below when it can") << overreaching << 2000ul << false << true << 1023ul;
}

void TestBandGSM::nextValidChannel()
{
    QFETCH(BandGSM, band);
    QFETCH(unsigned long, channel);
    QFETCH(bool, up);
    QFETCH(bool, down);
    QFETCH(unsigned long, next);
    QCOMPARE(band.GetNextValidChannel(channel, up, down), next);
}

void TestBandGSM::channelRangeWithinFreqRange()
{
    const BandGSM dcs = GSM().GetBand(GSM::GSM1800Up);
    int first = 0;
    int last = 0;
    QVERIFY(dcs.GetChannelRange(first, last));
    QCOMPARE(first, 512);
    QCOMPARE(last, 885);
    // Channel 561 is at 1720.0 MHz and 611 at 1730.0 MHz.
    QVERIFY(dcs.GetChannelRangeWithinFreqRange(first, last, 1720e6, 1730e6));
    QCOMPARE(first, 561);
    QCOMPARE(last, 611);
    QVERIFY(dcs.GetChannelRangeWithinFreqRange(first, last, 1e9, 3e9));
    QCOMPARE(first, 512);
    QCOMPARE(last, 885);

    // Counted from the start channel, not from the factor: 1.010 MHz is channel
    // 15 of this band, yet the range starts at 20.
    const BandGSM offset(QStringLiteral("offset"), 1000.0, 1e6, 10, 100, 5);
    QVERIFY(offset.GetChannelRangeWithinFreqRange(first, last, 1.010e6, 2e6));
    QCOMPARE(first, 20);
    QCOMPARE(last, 100);

    TypedBand plain(QStringLiteral("plain"), 1000.0, 1e6, 10, 100, 10);
    plain.setType(BandGSM::FrequencyBand);
    QVERIFY(plain.GetChannelRangeWithinFreqRange(first, last, 1.05e6, 1.06e6));
    QCOMPARE(first, 10);
    QCOMPARE(last, 100);
}

void TestBandGSM::channelsWithinFreqRange_data()
{
    QTest::addColumn<int>("band");
    QTest::addColumn<double>("freq1");
    QTest::addColumn<double>("freq2");
    QTest::addColumn<bool>("inside");
    QTest::newRow("E-GSM channels count") << 0 << 880e6 << 881e6 << true;
    QTest::newRow("the gap below channel 0 is empty") << 0 << 889.9e6 << 889.95e6 << false;
    QTest::newRow("touching the top channel counts") << 0 << 914.8e6 << 920e6 << true;
    QTest::newRow("the arguments may come in either order") << 0 << 920e6 << 914.8e6 << true;
    QTest::newRow("above the band") << 0 << 915e6 << 920e6 << false;
    QTest::newRow("below the E-GSM channels") << 0 << 870e6 << 876e6 << false;
    QTest::newRow("a range that encloses the band") << 2 << 1e9 << 3e9 << true;
    QTest::newRow("a single frequency inside") << 2 << 1750e6 << 1750e6 << true;
    QTest::newRow("a single frequency just below") << 2 << 1710.1e6 << 1710.1e6 << false;
    QTest::newRow("NaN is nowhere") << 2 << qQNaN() << qQNaN() << false;
}

void TestBandGSM::channelsWithinFreqRange()
{
    QFETCH(int, band);
    QFETCH(double, freq1);
    QFETCH(double, freq2);
    QFETCH(bool, inside);
    QCOMPARE(GSM().GetBand(band).HasChannelsWithinFreqRange(freq1, freq2), inside);
}

void TestBandGSM::subBandsWidenTheEnvelope()
{
    BandGSM band(QStringLiteral("pieces"), 1000.0, 5e6, 100, 200, 100);
    band.AddSubBand(500.0, 2e6, 50, 80, 50);
    QCOMPARE(band.GetStartFreq(), 2e6);
    QCOMPARE(band.GetStartChannel(), 50ul);
    QCOMPARE(band.GetStopChannel(), 200ul);
    QCOMPARE(band.GetChannelCalculationFactor(), 100ul);
    QCOMPARE(band.GetStepWidth(), 1000.0);
    QCOMPARE(band.GetSubBands().size(), 2);
    QVERIFY(band.GetSubBands().at(1).GetName().isEmpty());
    QCOMPARE(band.GetSubBands().at(1).GetType(), BandGSM::ChannelBand);
    // Channels are compared as signed 32-bit numbers here: one of 2^31 or more
    // counts as negative, is the smallest, and so leaves the start channel alone.
    band.AddSubBand(500.0, 0.0, 0x90000000ul, 0x90000010ul, 0);
    QCOMPARE(band.GetStartChannel(), 50ul);
    QCOMPARE(band.GetStopChannel(), 200ul);
    QCOMPARE(band.GetStartFreq(), 2e6);
}

void TestBandGSM::equality()
{
    GSM gsm;
    BandGSM a = gsm.GetBand(GSM::GSM900Up);
    TypedBand b(QStringLiteral("GSM900 Up"), 200000.0, 890e6, 0, 124, 0);
    b.AddSubBand(200000.0, 890e6, 955, 1023, 1024);
    QVERIFY(a == b);
    b.setType(BandGSM::FrequencyBand);
    QVERIFY(a == b);
    b.GetFrequency(3);
    QVERIFY(a != b);
    BandGSM single(QStringLiteral("GSM900 Up"), 200000.0, 890e6, 0, 1023, 0);
    QVERIFY(a != single);
    BandGSM nan = a;
    nan.SetOffset(qQNaN());
    QVERIFY(nan != nan);
    QVERIFY(a != gsm.GetBand(GSM::GSM900Down));
}

QTEST_GUILESS_MAIN(TestBandGSM)
#include "tst_bandgsm.moc"
