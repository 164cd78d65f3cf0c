#include "errorhandling/errorhandler.h"
#include "errorhandling/quality.h"
#include "errorhandling/timedcall.h"

#include <QRegularExpression>
#include <QTest>
#include <QThread>

namespace {

ErrorHandler& handler()
{
    return ErrorHandler::Instance();
}

// Runs fn and returns the messages it recorded, oldest first, as
// "level|reason|file|line".
template <typename Fn>
QStringList recorded(Fn fn, int expected)
{
    MessageList* list = handler().GetMessages();
    list->DeleteMessageList();
    fn();
    if (!QTest::qWaitFor([&] { return static_cast<int>(list->GetList().size()) >= expected; }, 5000))
        return QStringList(QStringLiteral("timed out"));
    QCoreApplication::processEvents();
    QStringList result;
    for (const auto& message : list->GetList()) {
        const QString text = message->GetText();
        result.prepend(QStringLiteral("%1|%2|%3|%4")
                           .arg(message->GetWarningLevel())
                           .arg(text.section(QLatin1Char('@'), 1, 1), text.section(QLatin1Char('@'), 2, 2),
                                text.section(QLatin1Char('@'), 3, 3)));
    }
    return result;
}

QString digits(int length)
{
    QString text;
    for (int i = 0; i < length; ++i)
        text += QLatin1Char(static_cast<char>('0' + i % 10));
    return text;
}

} // namespace

class TestTracing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void shortTraceIsOneMessage();
    void longTraceIsSplitIntoOverlappingPieces();
    void longTracesAreCutAfterFivePieces();
    void chunkHasAFloorOf200();
    void blockTraceIndentsNestedBlocks();
    void blockTraceCountsWhileSilent();
    void timedCallTraceFollowsTheMask();
};

void TestTracing::initTestCase()
{
    handler().GetMessages()->SetMaxNumber(0);
}

void TestTracing::shortTraceIsOneMessage()
{
    const QString text = digits(400);
    QCOMPARE(recorded([&] { _Q_Trace(text, QStringLiteral("file"), 7); }, 1),
             QStringList(QStringLiteral("3|%1|file|7").arg(text)));
}

void TestTracing::longTraceIsSplitIntoOverlappingPieces()
{
    // A ten-character file name and a two-digit line leave 328 characters per chunk.
    const QString text = digits(1000);
    const QString file = QStringLiteral("0123456789");
    const QStringList messages = recorded([&] { _Q_Trace(text, file, 42); }, 4);
    QCOMPARE(messages.size(), 4);
    const QStringList markers = {
        QStringLiteral(" [to be continued; part: 1/4]"), QStringLiteral(" [message part: 2/4]"),
        QStringLiteral(" [message part: 3/4]"), QStringLiteral(" [message end; part: 4/4]")};
    const int starts[] = {0, 328, 656, 984};
    const int lengths[] = {328, 400, 344, 16};
    for (int k = 0; k < 4; ++k) {
        QCOMPARE(messages.at(k),
                 QStringLiteral("3|%1|%2|42").arg(text.mid(starts[k], lengths[k]) + markers.at(k), file));
    }

    const QStringList justOver = recorded([] { _Q_Trace(digits(401), QStringLiteral("f"), 1); }, 2);
    QCOMPARE(justOver.size(), 2);
    QVERIFY(justOver.at(0).contains(QLatin1String(" [to be continued; part: 1/2]")));
    QVERIFY(justOver.at(1).contains(QLatin1String(" [message end; part: 2/2]")));
}

void TestTracing::longTracesAreCutAfterFivePieces()
{
    const QStringList messages = recorded([] { _Q_Trace(digits(5000), QStringLiteral("f"), 1); }, 5);
    QCOMPARE(messages.size(), 5);
    // chunk = 340 - 1 - 1 = 338, so 15 parts; the fifth is always marked truncated.
    QVERIFY(messages.at(3).contains(QLatin1String(" [message part: 4/15]")));
    QVERIFY(messages.at(4).contains(QLatin1String(" [message end (truncated); part: 5/15]")));

    // Exactly five parts: the last one ends the text, yet counts as truncated.
    const QStringList five = recorded([] { _Q_Trace(digits(5 * 338), QStringLiteral("f"), 1); }, 5);
    QCOMPARE(five.size(), 5);
    QVERIFY(five.at(4).contains(QLatin1String(" [message end (truncated); part: 5/5]")));
}

void TestTracing::chunkHasAFloorOf200()
{
    const QString longName(200, QLatin1Char('n'));
    const QStringList messages = recorded([&] { _Q_Trace(digits(500), longName, 65535); }, 3);
    QCOMPARE(messages.size(), 3);
    QVERIFY(messages.at(0).startsWith(QLatin1String("3|") + digits(200) +
                                      QLatin1String(" [to be continued; part: 1/3]")));
    QVERIFY(messages.at(2).contains(QLatin1String(" [message end; part: 3/3]")));
}

void TestTracing::blockTraceIndentsNestedBlocks()
{
    const QStringList messages = recorded(
        [] {
            BLOCK_TRACE outer(QStringLiteral("outer"));
            {
                BLOCK_TRACE middle(QStringLiteral("middle"));
                KV_BLOCK_TRACE(QStringLiteral("inner"));
            }
        },
        6);
    QCOMPARE(messages,
             QStringList({"3|*outer {|errorhandling\\quality|129", "3|* middle {|errorhandling\\quality|129",
                          "3|*  inner {|errorhandling\\quality|129", "3|*  }|errorhandling\\quality|136",
                          "3|* }|errorhandling\\quality|136", "3|*}|errorhandling\\quality|136"}));
    QCOMPARE(BLOCK_TRACE::GetIndent(), QStringLiteral("*"));
}

void TestTracing::blockTraceCountsWhileSilent()
{
    handler().SetMessageMask(0x20, false);
    {
        BLOCK_TRACE silent(QStringLiteral("silent"));
        QCOMPARE(BLOCK_TRACE::GetIndent(), QStringLiteral("* "));
    }
    handler().SetMessageMask(0x20, true);
    QCOMPARE(BLOCK_TRACE::GetIndent(), QStringLiteral("*"));
}

void TestTracing::timedCallTraceFollowsTheMask()
{
    TimedCall call;
    QThread::msleep(2);
    QVERIFY(call.GetTime() >= 2.0);

    const QStringList slow = recorded([&] { call.Evaluate(QStringLiteral("load"), 1.0); }, 1);
    QCOMPARE(slow.size(), 1);
    QVERIFY2(QRegularExpression(QStringLiteral("^3\\|load [0-9.e+]+ ms\\|errorhandling\\\\quality\\|306$"))
                 .match(slow.at(0))
                 .hasMatch(),
             qPrintable(slow.at(0)));

    // Below the threshold nothing is traced; with the trace bit off neither.
    handler().GetMessages()->DeleteMessageList();
    call.Evaluate(QStringLiteral("fast"), 1e9);
    handler().SetMessageMask(0x20, false);
    call.Evaluate(QStringLiteral("masked"), 0.0);
    {
        AutoTimedCall automatic(QStringLiteral("masked auto"));
    }
    handler().SetMessageMask(0x20, true);
    QCoreApplication::processEvents();
    QVERIFY(handler().GetMessages()->GetList().empty());

    // An automatic call reports every time while tracing is on.
    const QStringList automatic = recorded([] { KV_AUTO_TIMED_CALL(QStringLiteral("auto")); }, 1);
    QCOMPARE(automatic.size(), 1);
    QVERIFY(automatic.at(0).startsWith(QLatin1String("3|auto ")));
}

QTEST_GUILESS_MAIN(TestTracing)
#include "tst_tracing.moc"
