#include "coord/maskconverter.h"
#include "errorhandling/errorhandler.h"

#include <QtTest>

class tst_MaskConverter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setText_data();
    void setText();
    void getTextSkipsLiterals_data();
    void getTextSkipsLiterals();
    void isMaskChar();
    void replacementChar_data();
    void replacementChar();
    void placeHolderAndCopies();
    void positionOutsideMaskTextIsReported_data();
    void positionOutsideMaskTextIsReported();
};

void tst_MaskConverter::setText_data()
{
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("formatted");

    QTest::newRow("literals are copied between the input positions")
        << QStringLiteral("##?-?\?-#####") << QStringLiteral("33VUE12345") << QStringLiteral("33V-UE-12345");
    QTest::newRow("a short raw text is padded with the placeholder")
        << QStringLiteral("E###.## N##") << QStringLiteral("E01") << QStringLiteral("E01_.__ ___");
    QTest::newRow("surplus raw characters are dropped")
        << QStringLiteral("??##") << QStringLiteral("FN31PR") << QStringLiteral("FN31");
    QTest::newRow("raw characters are not checked against their positions")
        << QStringLiteral("X##.# Y#") << QStringLiteral("ab?!c") << QStringLiteral("ab?.! c_");
    QTest::newRow("non-ASCII raw characters are kept")
        << QStringLiteral("##") << QString::fromUtf8("\xc3\xa9\xe2\x82\xac")
        << QString::fromUtf8("\xc3\xa9\xe2\x82\xac");
    QTest::newRow("an empty raw text gives the bare mask")
        << QStringLiteral("N##-E") << QString() << QStringLiteral("___-_");
    QTest::newRow("an empty mask gives an empty text") << QString() << QStringLiteral("123") << QString();
}

void tst_MaskConverter::setText()
{
    QFETCH(QString, mask);
    QFETCH(QString, raw);
    QFETCH(QString, formatted);

    MaskConverter converter;
    converter.SetMask(mask, '_');
    converter.SetText(raw);
    QCOMPARE(converter.GetFormattedText(), formatted);
    QCOMPARE(converter.GetMaskText(), formatted);
    QCOMPARE(converter.GetMask(), mask);
}

void tst_MaskConverter::getTextSkipsLiterals_data()
{
    QTest::addColumn<QString>("formatted");
    QTest::addColumn<QString>("raw");

    QTest::newRow("a full text yields its input characters")
        << QStringLiteral("33V-UE-12345") << QStringLiteral("33VUE12345");
    QTest::newRow("placeholders are read back as they stand")
        << QStringLiteral("3_V-UE-1____") << QStringLiteral("3_VUE1____");
    QTest::newRow("a text shorter than the mask yields what it has")
        << QStringLiteral("33V-U") << QStringLiteral("33VU");
    QTest::newRow("a text longer than the mask ends with the mask")
        << QStringLiteral("33V-UE-1234567") << QStringLiteral("33VUE12345");
    QTest::newRow("literals of the text are not compared with the mask")
        << QStringLiteral("33V+UE+12345") << QStringLiteral("33VUE12345");
}

void tst_MaskConverter::getTextSkipsLiterals()
{
    QFETCH(QString, formatted);
    QFETCH(QString, raw);

    MaskConverter converter;
    converter.SetMask(QStringLiteral("##?-?\?-#####"), '_');
    converter.SetFormattedText(formatted);
    QCOMPARE(converter.GetFormattedText(), formatted);
    QCOMPARE(converter.GetText(), raw);
}

void tst_MaskConverter::isMaskChar()
{
    MaskConverter converter;
    converter.SetMask(QString::fromLatin1("E#\xB0?N-XY."), '*');
    converter.SetText(QString());
    const bool expected[] = {false, false, true, false, false, true, false, false, true};
    for (unsigned int i = 0; i < sizeof(expected) / sizeof(expected[0]); ++i)
        QVERIFY2(converter.IsMaskChar(i) == expected[i], qPrintable(QString::number(i)));
}

void tst_MaskConverter::replacementChar_data()
{
    QTest::addColumn<QChar>("maskChar");
    QTest::addColumn<char>("typed");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<char>("stored");

    QTest::newRow("a digit is accepted at #") << QChar('#') << '7' << true << '7';
    QTest::newRow("a letter is refused at #") << QChar('#') << 'a' << false << '\0';
    QTest::newRow("a letter is stored upper-cased at ?") << QChar('?') << 'q' << true << 'Q';
    QTest::newRow("a digit is refused at ?") << QChar('?') << '5' << false << '\0';
    QTest::newRow("a Latin-1 letter is refused at ?") << QChar('?') << char(0xE9) << false << '\0';
    QTest::newRow("west is accepted in lower case at E") << QChar('E') << 'w' << true << 'W';
    QTest::newRow("north is refused at E") << QChar('E') << 'N' << false << '\0';
    QTest::newRow("south is accepted in lower case at N") << QChar('N') << 's' << true << 'S';
    QTest::newRow("the axis letter is accepted at X") << QChar('X') << 'x' << true << 'X';
    QTest::newRow("the other axis letter is refused at X") << QChar('X') << 'Y' << false << '\0';
    QTest::newRow("nothing is accepted at a literal") << QChar('.') << '.' << false << '\0';
}

void tst_MaskConverter::replacementChar()
{
    QFETCH(QChar, maskChar);
    QFETCH(char, typed);
    QFETCH(bool, accepted);
    QFETCH(char, stored);

    MaskConverter converter;
    converter.SetMask(QStringLiteral("-") + maskChar, '_');
    converter.SetText(QString());
    char out = '\0';
    QCOMPARE(converter.GetReplacementChar(1, typed, out), accepted);
    QCOMPARE(out, stored);
}

void tst_MaskConverter::placeHolderAndCopies()
{
    MaskConverter converter;
    converter.SetMask(QStringLiteral("##"), '#');
    QCOMPARE(converter.GetPlaceHolder(), QStringLiteral("#"));
    converter.SetText(QStringLiteral("1"));
    QCOMPARE(converter.GetFormattedText(), QStringLiteral("1#"));

    MaskConverter copy(converter);
    converter.SetText(QStringLiteral("23"));
    QCOMPARE(copy.GetFormattedText(), QStringLiteral("1#"));
    copy = converter;
    QCOMPARE(copy.GetText(), QStringLiteral("23"));
}

void tst_MaskConverter::positionOutsideMaskTextIsReported_data()
{
    QTest::addColumn<QString>("formatted");
    QTest::addColumn<unsigned int>("position");
    QTest::addColumn<bool>("replacement");

    QTest::newRow("IsMaskChar at the largest position") << QStringLiteral("12.3") << 0xFFFFFFFFu << false;
    QTest::newRow("IsMaskChar before any text was set") << QString() << 0u << false;
    QTest::newRow("GetReplacementChar before any text was set") << QString() << 1u << true;
}

void tst_MaskConverter::positionOutsideMaskTextIsReported()
{
    QFETCH(QString, formatted);
    QFETCH(unsigned int, position);
    QFETCH(bool, replacement);

    MessageList* messages = ErrorHandler::Instance().GetMessages();
    QVERIFY(messages);
    const std::shared_ptr<Message> before =
        messages->GetList().empty() ? std::shared_ptr<Message>() : messages->GetList().front();

    MaskConverter converter;
    converter.SetMask(QStringLiteral("##.#"), '_');
    if (!formatted.isNull())
        converter.SetFormattedText(formatted);
    char out = 'z';
    if (replacement) {
        QVERIFY(!converter.GetReplacementChar(position, '1', out));
        QCOMPARE(out, 'z');
    } else {
        QVERIFY(!converter.IsMaskChar(position));
    }

    QTRY_VERIFY(!messages->GetList().empty() && messages->GetList().front() != before);
    const std::shared_ptr<Message> newest = messages->GetList().front();
    QVERIFY(newest);
    QVERIFY2(newest->GetText().startsWith(QStringLiteral(
                 "!@ASSERTION FAILED (nPos < unsigned int(m_strMaskText.length()))@coord\\maskconv@55@")),
             qPrintable(newest->GetText()));
    QCOMPARE(newest->GetWarningLevel(), (unsigned char)1);
}

QTEST_GUILESS_MAIN(tst_MaskConverter)
#include "tst_maskconverter.moc"
