#include "coord/maskconverter.h"
#include "errorhandling/errorhandler.h"

#include <QtTest>

class tst_MaskConverter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Mask, raw text, the formatted text SetText makes of it, and what GetText reads back
    // out of that: literals copied between input positions; a short raw text padded with
    // the placeholder; surplus raw characters dropped; raw characters not checked.
    void texts()
    {
        const char* const rows[][4] = {{"##?-?\?-###", "33VUE123", "33V-UE-123", "33VUE123"},
                                       {"E###.## N##", "E01", "E01_.__ ___", "E01______"},
                                       {"??##", "FN31PR", "FN31", "FN31"},
                                       {"X##.# Y#", "ab?!c", "ab?.! c_", "ab?!c_"}};
        for (const auto& r : rows) {
            MaskConverter converter;
            converter.SetMask(QLatin1String(r[0]), '_');
            converter.SetText(QLatin1String(r[1]));
            QCOMPARE(converter.GetFormattedText(), QLatin1String(r[2]));
            converter.SetFormattedText(QLatin1String(r[2]));
            QCOMPARE(converter.GetText(), QLatin1String(r[3]));
        }
    }

    // Typed character, the character stored at each of the mask characters "#?ENXY."
    // (0: refused).
    void replacementChar()
    {
        const char* const mask = "#?ENXY.";
        const char rows[][8] = {
            {'7', '7', 0, 0, 0, 0, 0, 0},   {'q', 0, 'Q', 0, 0, 0, 0, 0},   {char(0xE9), 0, 0, 0, 0, 0, 0, 0},
            {'w', 0, 'W', 'W', 0, 0, 0, 0}, {'s', 0, 'S', 0, 'S', 0, 0, 0}, {'N', 0, 'N', 0, 'N', 0, 0, 0},
            {'x', 0, 'X', 0, 0, 'X', 0, 0}, {'Y', 0, 'Y', 0, 0, 0, 'Y', 0}, {'.', 0, 0, 0, 0, 0, 0, 0}};
        MaskConverter converter;
        converter.SetMask(QLatin1String(mask), '_');
        converter.SetText(QString());
        for (const auto& r : rows)
            for (unsigned int pos = 0; pos < 7; ++pos) {
                char out = 0;
                QCOMPARE(converter.GetReplacementChar(pos, r[0], out), r[pos + 1] != 0);
                QCOMPARE(out, r[pos + 1]);
                QCOMPARE(converter.IsMaskChar(pos), pos == 6);
            }
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

QTEST_GUILESS_MAIN(tst_MaskConverter)
#include "tst_maskconverter.moc"
