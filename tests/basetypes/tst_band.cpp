#include "basetypes/gsm.h"
#include "errorhandling/errorhandler.h"

#include "kvtest.h"

#include <QDomDocument>
#include <QRandomGenerator>

#include <cmath>
#include <cstring>
#include <limits>

using KvTest::field;

class TestBand : public QObject
{
    Q_OBJECT

    static QString saved(Band& band)
    {
        QDomDocument doc;
        QDomElement element = doc.createElement(QString("Band"));
        doc.appendChild(element);
        band.Save(doc, element);
        return doc.toString(-1).trimmed();
    }
    // Reads the children given as XML text into `band`.
    static void readInto(Band& band, const QString& children)
    {
        QDomDocument doc;
        doc.setContent(QString("<Band>%1</Band>").arg(children));
        QDomElement element = doc.documentElement();
        band.Read(doc, element);
    }
    // One step as "frequency moreAbove moreBelow".
    static QString step(Band& band, bool up, double current, double lowFreq, double highFreq)
    {
        bool moreAbove = false, moreBelow = false;
        const double next = band.GetNextFrequency(up, moreAbove, moreBelow, current, lowFreq, highFreq);
        return QString("%1 %2 %3").arg(next, 0, 'f', 0).arg(int(moreAbove)).arg(int(moreBelow));
    }

    // The bands of tests/data/basetypes/channels.txt.
    static BandGSM namedBand(const QString& name)
    {
        BandGSM band = GSM().GetBand(name.startsWith("GSM1800") ? GSM::GSM1800Up : GSM::GSM900Up);
        if (name == "kilo")
            band = BandGSM(name, 1000.0, 1e6, 0, 100, 0);
        else if (name == "offset")
            band = BandGSM(name, 1000.0, 1e6, 10, 100, 5);
        else if (name == "gap of 9")
            band = BandGSM(name, 1000.0, 1e6, 0, 10, 0), band.AddSubBand(1000.0, 1e6, 20, 30, 0);
        else if (name == "plain")
            band = Band();
        else if (name.endsWith("in 100 kHz steps"))
            band.SetStepWidth(100000.0);
        else if (name.endsWith("up to 5000"))
            band.SetStopChannel(5000);
        return band;
    }

private Q_SLOTS:
    void initTestCase() { KvTest::pinLocaleAndZone(); }

    void standardChannelNumbering_data()
    {
        KvTest::addRows("basetypes/gsmbands.txt", "band name firstKHz first last");
    }

    // Every channel number up to beyond 1023: valid exactly where the standard
    // defines it, at the standard's frequency, and back from that frequency.
    void standardChannelNumbering()
    {
        GSM gsm;
        const Band row = gsm.GetBand(field("band").toUInt());
        QCOMPARE(row.GetName(), field("name"));
        QCOMPARE(QString("system %1, visible %2, raster %3")
                     .arg(row.isSystem())
                     .arg(row.isVisible())
                     .arg(row.GetUseRaster()),
                 QString("system 1, visible 1, raster 1"));
        for (unsigned long n = 0; n <= 1200; ++n) {
            const bool eGsm = field("band").toInt() < 2 && n >= 955 && n <= 1023;
            const bool valid = eGsm || (field("first").toULong() <= n && n <= field("last").toULong());
            QVERIFY2(row.IsValidChannel(n) == valid, qPrintable(QString("channel %1").arg(n)));
            const double hz =
                (field("firstKHz").toDouble() + 200.0 * (long(n) - (eGsm ? 1024 : field("first").toLong()))) *
                1000.0;
            if (valid) {
                QCOMPARE(gsm.Channel2Frequency(n, GSM::EGSMBand(field("band").toInt())), hz);
                QCOMPARE(row.GetChannelForFrequency(hz), n);
            }
        }
    }

    void tableFallbacks()
    {
        GSM gsm;
        QCOMPARE(gsm.GetBand(12), gsm.GetBand(0));
        QCOMPARE(gsm.Channel2Frequency(1, GSM::EGSMBand(12)), -1.0);
        QCOMPARE(gsm.Channel2Frequency(1, GSM::EGSMBand(-1)), -1.0);
        BandGSM out(QString("untouched"), 1.0, 2.0, 3, 4, 5);
        QVERIFY2(!gsm.GetDefinition(12, out), "a definition past the table");
        QCOMPARE(out.GetName(), QString("untouched"));
        QVERIFY2(gsm.GetDefinition(GSM::GSM1800Down, out), "no definition of GSM1800 Down");
        QCOMPARE(out, static_cast<const BandGSM&>(gsm.GetBand(GSM::GSM1800Down)));
        QString name;
        double step = 0.0;
        unsigned long first = 7, last = 7;
        QVERIFY2(!gsm.GetDefinition(12, name, step, step, first, last), "a definition past the table");
        QCOMPARE(first, 7ul);
        QVERIFY2(gsm.GetDefinition(0, name, step, step, first, last), "no definition of GSM900 Up");
        QCOMPARE(QString("%1 %2-%3").arg(name).arg(first).arg(last), QString("GSM900 Up 0-1023"));
        // Hiding ignores its flag and indices past the table.
        gsm.setVisible(3, true);
        gsm.setVisible(12, true);
        QVERIFY2(!gsm.GetBand(3).isVisible(), "setVisible(true) showed the band");
        QVERIFY2(gsm.GetBand(2).isVisible(), "another band was hidden");
        // BCCH carriers: downlinks themselves, uplinks 2..10 their downlink, anything else GSM900 Down.
        for (const auto& pair : QVector<QPair<int, int>>{{0, 1}, {4, 5}, {5, 5}, {11, 11}, {12, 1}, {-1, 1}})
            QCOMPARE(qMakePair(pair.first, GSM::GetBcchBandForBand(pair.first)), pair);
    }

    // A row converts on itself: a channel below a single-part row's start channel
    // answers with the frequency of the last channel the row accepted.
    void rowsRememberTheLastChannel()
    {
        GSM gsm;
        QCOMPARE(gsm.Channel2Frequency(600, GSM::GSM1800Up), 1727800000.0);
        QCOMPARE(gsm.Channel2Frequency(3, GSM::GSM1800Up), 1727800000.0);
        QCOMPARE(gsm.GetBand(GSM::GSM1800Up).GetChannelValue(), 600ul);
        BandGSM undefined;
        QCOMPARE(undefined.GetFrequency(5), 0.0);
        QCOMPARE(undefined.GetStepWidth(), 10000.0);
    }

    void channelArithmetic_data() { KvTest::addRows("basetypes/channels.txt", "band call arguments result"); }

    void channelArithmetic()
    {
        const BandGSM band = namedBand(field("band"));
        const QStringList args = field("arguments").split(' ');
        const double a = args.value(0).toDouble(), b = args.value(1).toDouble();
        int first = 0, last = 0;
        QString result;
        if (field("call") == "channel")
            result = QString::number(band.GetChannelForFrequency(a));
        else if (field("call") == "has")
            result = band.HasChannelsWithinFreqRange(a, b) ? "yes" : "no";
        else if (field("call") == "range" && band.GetChannelRangeWithinFreqRange(first, last, a, b))
            result = QString("%1 %2").arg(first).arg(last);
        else
            result = QString::number(band.GetNextValidChannel(args.value(0).toULong(), field("call") == "up",
                                                              field("call") == "down"));
        QCOMPARE(result, field("result"));
    }

    void envelopeAndEquality()
    {
        // Sub-bands widen the start frequency and channel range, never the factor or step.
        BandGSM band(QString("pieces"), 1000.0, 5e6, 100, 200, 100);
        band.AddSubBand(500.0, 2e6, 50, 80, 50);
        // Compared as signed 32-bit numbers, a channel of 2^31 or more is negative.
        band.AddSubBand(500.0, 1e6, 0x90000000ul, 0x90000010ul, 0);
        QCOMPARE(QString("%1 Hz, %2-%3, factor %4, step %5")
                     .arg(band.GetStartFreq())
                     .arg(band.GetStartChannel())
                     .arg(band.GetStopChannel())
                     .arg(band.GetChannelCalculationFactor())
                     .arg(band.GetStepWidth()),
                 QString("1e+06 Hz, 50-200, factor 100, step 1000"));
        // Equal bands: the cursor counts, NaN never matches, and only Band compares the type.
        BandGSM moved = GSM().GetBand(GSM::GSM900Up);
        moved.GetFrequency(3);
        QVERIFY2(moved != GSM().GetBand(GSM::GSM900Up), "the channel cursor does not count");
        moved.SetOffset(qQNaN());
        QVERIFY2(moved != moved, "a NaN offset equals itself");
        const Band plain(QString("x"), 1000.0, 0.0, true);
        const Band channels(QString("x"), 1000.0, 0.0, 0, 0, 0, false);
        QVERIFY2(static_cast<const BandGSM&>(plain) == channels, "BandGSM compares the type");
        QVERIFY2(plain != channels, "Band ignores the type");
        // Bands order by step width alone.
        QVERIFY2(Band(QString("y"), 999.0, 5.0, false) < channels, "a smaller step does not order first");
        QVERIFY2(!(channels < plain), "equal steps order");
    }

    void plainBand_data() { KvTest::addRows("basetypes/rasters.txt", "step offset frequency snapped found"); }

    void plainBand()
    {
        Band band(QString("plain"), field("step").toDouble(), field("offset").toDouble(), true);
        unsigned long channel = 42;
        QCOMPARE(band.GetFrequency(77, field("frequency").toDouble()), field("snapped").toDouble());
        QCOMPARE(int(band.FindFrequency(field("frequency").toDouble(), channel)), field("found").toInt());
        QCOMPARE(channel, 42ul);
    }

    void channelBand()
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
        QCOMPARE(step(egsm, true, 0.0, 0.0, 2e9), QString("876200000 1 1"));
        QCOMPARE(step(egsm, false, 0.0, 0.0, 2e9), QString("914800000 1 1"));
        // Below channel 0 the 32-bit cursor wraps and is clamped to the top channel.
        egsm.FindFrequency(890e6, channel);
        QCOMPARE(step(egsm, false, 0.0, 0.0, 2e9), QString("889800000 0 1"));
        Band plain(QString("plain"), 25000.0, 0.0, false);
        QCOMPARE(plain.GetFrequency(0, 100012e3), 100012e3); // without raster anything goes
        QCOMPARE(plain.FindFrequency(100012e3, channel), Band::FrequencyNoRaster);
        plain.SetUseRaster(true);
        QCOMPARE(step(plain, true, 100.975e6, 100e6, 101e6), QString("101000000 0 1"));
        QCOMPARE(step(plain, false, 100.03e6, 100e6, 101e6), QString("100000000 1 0"));
    }

    void save()
    {
        Band system = GSM().GetBand(GSM::GSM900Up);
        QCOMPARE(saved(system), QString("<Band><Name>GSM900 Up</Name></Band>"));
        Band gsm(QString("Private 1800"), 200000.0, 1710200000.0, 512, 885, 512, false);
        QCOMPARE(saved(gsm),
                 QString("<Band><Name>Private 1800</Name><Channelspacing>200000</Channelspacing>"
                         "<Type>GSM</Type><StartChannel>512</StartChannel><StopChannel>885</StopChannel>"
                         "<StartFrequency>1710200000.000000</StartFrequency></Band>"));
        // 20 significant digits for the spacing; the offset as short as reads back exactly.
        Band plain(QString("Air"), 25000.0 / 3, 12345678.9, false);
        QCOMPARE(saved(plain), QString("<Band><Name>Air</Name><Channelspacing>8333.3333333333339397"
                                       "</Channelspacing><Type>Simple</Type><Offset>12345678.9</Offset>"
                                       "<UseRaster>0</UseRaster></Band>"));
        // A type no constructor makes (read from a future version, say) writes an empty Type.
        struct OddBand : Band
        {
            OddBand() : Band(QString("odd"), 1000.0, 0.0, true) { m_eType = BandType(7); }
        } odd;
        QVERIFY2(saved(odd).contains(QLatin1String("<Type/><Offset>0</Offset><UseRaster>1</UseRaster>")),
                 qPrintable(saved(odd)));
        for (Band original : {Band(QString("<&>\"' Ünïcödé ☂"), 12500.5, -2500.25, true),
                              Band(QString("extremes"), 0.1, 0.0, 4294967295ul, 4294967295ul, 0, false)}) {
            const QString xml = saved(original);
            Band copy;
            readInto(copy, xml.mid(6, xml.size() - 13));
            QCOMPARE(saved(copy), xml);
            QCOMPARE(copy.GetChannelCalculationFactor(), original.GetStartChannel());
        }
    }

    // Offsets and start frequencies of every magnitude survive Save and Read bit for bit.
    void savedNumbersReadBackExactly_data()
    {
        QTest::addColumn<bool>("channelBand");
        QTest::newRow("offset of a plain band") << false;
        QTest::newRow("start frequency of a channel band") << true;
    }

    void savedNumbersReadBackExactly()
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
            Band band = channelBand ? Band(QString("b"), 200000.0, value, 1, 2, 1, false)
                                    : Band(QString("b"), 25000.0, value, true);
            const QString xml = saved(band);
            Band copy;
            readInto(copy, xml.mid(6, xml.size() - 13));
            const double back = channelBand ? copy.GetStartFreq() : copy.GetOffset();
            QVERIFY2(std::memcmp(&back, &value, sizeof value) == 0, qPrintable(xml));
        }
    }

    void read_data() { KvTest::addRows("basetypes/bandreading.txt", "children saves"); }

    void read()
    {
        Band band(QString("seed"), 200000.0, 1e9, 1, 2, 1, false);
        readInto(band, field("children"));
        QVERIFY2(saved(band).contains(field("saves")), qPrintable(saved(band)));
    }

    void readTracesNonElements()
    {
        ErrorHandler& handler = ErrorHandler::Instance();
        const auto newest = [&handler] {
            QCoreApplication::processEvents(); // messages arrive queued
            const auto& list = handler.GetMessages()->GetList();
            return list.empty() ? QString() : list.front()->GetText();
        };
        Band band;
        readInto(band, QString("<Name>b</Name><!--x-->"));
        QCOMPARE(band.GetName(), QString("b"));
        QCOMPARE(newest().section(QLatin1Char('@'), 0, 5),
                 QString("3@error loading job.@basetypes\\band@321@Band@Read"));
        handler.SetMessageMask(ErrorHandler::TraceMask, false);
        handler.ProtocolMessage(QString("marker"), QString(), QString(), QString(), 1, 255);
        readInto(band, QString("<!--x-->"));
        handler.SetMessageMask(ErrorHandler::TraceMask, true);
        QCOMPARE(newest().section(QLatin1Char('@'), 0, 1), QString("@marker"));
    }
};

QTEST_GUILESS_MAIN(TestBand)
#include "tst_band.moc"
