#include "coord/coord.h"
#include "coord/maskconverter.h"
#include "errorhandling/errorhandler.h"

#include "referencedata.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

// Distance of two nearby positions in metres (flat earth, enough to judge a notation's resolution).
double metresBetween(const Coord& a, const Coord& b)
{
    const double dLon = (a.GetLongitude() - b.GetLongitude()) * std::cos(a.GetLatitude() * M_PI / 180.0);
    return std::hypot(a.GetLatitude() - b.GetLatitude(), dLon) * 111320.0;
}

QVector<Coord> area(double minLat, double maxLat, double step, double minLon = -179.87, double maxLon = 180.0)
{
    QVector<Coord> positions;
    for (double lat = minLat; lat <= maxLat; lat += step)
        for (double lon = minLon; lon <= maxLon; lon += 2 * step)
            positions.append(Coord(lon, lat));
    return positions;
}

} // namespace

Q_DECLARE_METATYPE(CoordFormat)

class tst_Coord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { pinLocaleAndTimeZone(); }

    // Unknown notations have no text but borrow the "Geo long" masks. The SWEREF99
    // expression is the Geo long one with a seconds sign after each number group.
    void maskTables()
    {
        const Coord c(12.5, 55.25);
        const CoordFormat unknown = CoordFormat(8);
        QCOMPARE(QByteArray(c.GetFmt(unknown)), QByteArray(c.GetFmt(cfGeoLong)));
        QCOMPARE(c.GetMask(unknown), c.GetMask(cfGeoLong));
        QCOMPARE(Coord::getQtMask(unknown), Coord::getQtMask(cfGeoLong));
        QCOMPARE(Coord::getMaskRegExp(unknown), Coord::getMaskRegExp(cfGeoLong));
        QCOMPARE(getCoordFormatName(unknown), QString());
        const QString sweref = Coord::getMaskRegExp(cfSWEREF99);
        QCOMPARE(sweref.length(), 117);
        QVERIFY2(sweref.contains(QStringLiteral("00\\.00)\"\\s(N|S)")), qPrintable(sweref));
        QCOMPARE(QString(sweref).remove(QLatin1Char('"')), Coord::getMaskRegExp(cfGeoLong));
    }

    void knownTexts_data() { addCaseRows("coord_cases.txt", "texts"); }
    void knownTexts()
    {
        QFETCH(QStringList, ref);
        const Coord c(degrees(ref[1]), degrees(ref[2]));
        const CoordFormat format = CoordFormat(ref[0].toInt());
        QCOMPARE(c.GetText(format), ref[3]);
        if (!ref[4].isEmpty())
            QCOMPARE(c.GetString(format), ref[4]);
    }

    void setText_data() { addCaseRows("coord_cases.txt", "readings"); }
    void setText()
    {
        QFETCH(QStringList, ref);
        Coord c(1.0, 2.0);
        c.SetText(ref[1], CoordFormat(ref[0].toInt()));
        COMPARE_NEAR(c.GetLongitude(), degrees(ref[2]), 1e-9);
        COMPARE_NEAR(c.GetLatitude(), degrees(ref[3]), 1e-9);
    }

    // Bounds are inclusive; the midpoint is taken componentwise, not along a great circle.
    void validityAndMidpoint_data() { addCaseRows("coord_cases.txt", "valid"); }
    void validityAndMidpoint()
    {
        QFETCH(QStringList, ref);
        QCOMPARE(Coord(ref[0].toDouble(), ref[1].toDouble()).IsValid(), ref[2] == QLatin1String("1"));
        QCOMPARE(Coord(10.0, 20.0) |= Coord(20.0, 41.0), Coord(15.0, 30.5));
        QCOMPARE(Coord(170.0, 10.0) |= Coord(-170.0, 10.0), Coord(0.0, 10.0));
    }

    // Half a unit each way: millionths of a degree, hundredths and whole seconds, half a
    // sub-square (2.5 minutes of longitude, 1.25 of latitude), the metre. SWEREF99's
    // latitude seconds go out in thousandths and come back as hundredths.
    void roundTrips_data()
    {
        QTest::addColumn<CoordFormat>("format");
        QTest::addColumn<QVector<Coord>>("positions");
        QTest::addColumn<double>("metres");
        const QVector<Coord> world = area(-89.93, 89.99, 3.7), utmArea = area(-79.93, 83.9, 3.7);
        const QVector<Coord> sweden = area(55.41, 69.0, 0.37, 11.13, 24.0);
        QTest::newRow("Geo Decimal") << cfGeoDecimal << world << 0.08;
        QTest::newRow("Geo long") << cfGeoLong << world << 0.22;
        QTest::newRow("Geo short") << cfGeoShort << world << 22.0;
        QTest::newRow("Maidenhead") << cfQTHMaidenhead << world << 5200.0;
        QTest::newRow("UTM") << cfUTM << utmArea << 1.0;
        QTest::newRow("MGRS") << cfMGRS << utmArea << 2.5;
        QTest::newRow("RT90") << cfRT90 << sweden << 0.1;
        QTest::newRow("SWEREF99") << cfSWEREF99 << sweden << 31.0;
    }
    void roundTrips()
    {
        QFETCH(CoordFormat, format);
        QFETCH(QVector<Coord>, positions);
        QFETCH(double, metres);
        for (const Coord& position : positions) {
            Coord fromText(99.0, 9.0), fromString(99.0, 9.0);
            fromText.SetText(position.GetText(format), format);
            fromString.SetString(position.GetString(format), format);
            QVERIFY2(metresBetween(position, fromText) <= metres, qPrintable(position.GetString(format)));
            QVERIFY2(metresBetween(position, fromString) <= metres, qPrintable(position.GetString(format)));
        }
    }

    // Random texts in every notation (and beyond) read as valid positions; positions that
    // are not numbers or too large for any number field give no text.
    void badInputNormalises()
    {
        const QString alphabet =
            QString::fromUtf8("0123456789EWNSXYewnsxyAZaz.-;:_ '\"\u00b0\u00df\u20ac") + QChar(0xD800);
        QRandomGenerator random(20261121);
        for (int i = 0; i < 400; ++i) {
            QString text = i == 0 ? QString(5000, QLatin1Char('9')) : QString();
            for (int k = random.bounded(30); k > 0; --k)
                text.append(alphabet.at(random.bounded(alphabet.length())));
            for (int format = 0; format <= 8; ++format) {
                Coord c(1.0, 2.0), d(1.0, 2.0);
                c.SetText(text, CoordFormat(format));
                d.SetString(text, CoordFormat(format));
                QVERIFY2(c.IsValid(), qPrintable(text));
                QVERIFY2(d.IsValid(), qPrintable(text));
            }
        }
        for (int format = 0; format <= 7; ++format) {
            Coord back;
            back.SetText(Coord(1e6, -1e6).GetText(CoordFormat(format)), CoordFormat(format));
            QVERIFY(back.IsValid());
            QVERIFY(Coord(kNaN, 10.0).GetText(CoordFormat(format)).isEmpty());
            QVERIFY(Coord(1e300, 0.0).GetText(CoordFormat(format)).isEmpty());
        }
    }

    void maskConverterTexts_data() { addCaseRows("coord_cases.txt", "masktexts"); }
    void maskConverterTexts()
    {
        QFETCH(QStringList, ref);
        MaskConverter converter;
        converter.SetMask(ref[0], '_');
        converter.SetText(ref[1]);
        QCOMPARE(converter.GetFormattedText(), ref[2]);
        converter.SetFormattedText(ref[2]);
        QCOMPARE(converter.GetText(), ref[3]);
    }

    void replacementChar_data() { addCaseRows("coord_cases.txt", "typed"); }
    void replacementChar()
    {
        QFETCH(QStringList, ref);
        MaskConverter converter;
        converter.SetMask(QStringLiteral("#?ENXY."), '_');
        converter.SetText(QString());
        QString stored;
        for (unsigned int pos = 0; pos < 7; ++pos) {
            char out = '-';
            const bool accepted = converter.GetReplacementChar(pos, ref[0].at(0).toLatin1(), out);
            QCOMPARE(accepted, out != '-');
            QCOMPARE(converter.IsMaskChar(pos), pos == 6);
            stored.append(QLatin1Char(out));
        }
        QCOMPARE(stored, ref[1]);
    }

    // A position outside the mask text is refused and reported as an error, under the
    // check's own expression, file and line.
    void positionOutsideMaskTextIsReported()
    {
        const std::deque<std::shared_ptr<Message>>& messages =
            ErrorHandler::Instance().GetMessages()->GetList();
        MaskConverter converter;
        converter.SetMask(QStringLiteral("##.#"), '_');
        char out = 'z';
        for (int call = 0; call < 2; ++call) {
            const std::shared_ptr<Message> before = messages.empty() ? nullptr : messages.front();
            QVERIFY(call == 0 ? !converter.GetReplacementChar(1, '1', out)
                              : !converter.IsMaskChar(0xFFFFFFFFu));
            QTRY_VERIFY(!messages.empty() && messages.front() != before);
            QVERIFY2(
                messages.front()->GetText().startsWith(QStringLiteral(
                    "!@ASSERTION FAILED (nPos < unsigned int(m_strMaskText.length()))@coord\\maskconv@55@")),
                qPrintable(messages.front()->GetText()));
            QCOMPARE(messages.front()->GetWarningLevel(), (unsigned char)1);
            converter.SetFormattedText(QStringLiteral("12.3"));
        }
        QCOMPARE(out, 'z');
    }
};

QTEST_GUILESS_MAIN(tst_Coord)
#include "tst_coord.moc"
