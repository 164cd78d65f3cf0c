#include "errorhandling/errorhandler.h"
#include "errorhandling/quality.h"
#include "errorhandling/timedcall.h"

#include "kvtest.h"

#include <QRegularExpression>
#include <QThread>

namespace {

// The messages `fn` sends through the error handler, oldest first, as level,
// text, file and line of their field list.
template <typename Fn>
QStringList recorded(Fn fn, int expected)
{
    MessageList* list = ErrorHandler::Instance().GetMessages();
    list->DeleteMessageList();
    fn();
    (void)QTest::qWaitFor([&] { return static_cast<int>(list->GetList().size()) >= expected; }, 5000);
    QCoreApplication::processEvents();
    QStringList result;
    for (const auto& message : list->GetList())
        result.prepend(message->GetText().section(QLatin1Char('@'), 0, 3));
    return result;
}

void setTracing(bool on)
{
    ErrorHandler::Instance().SetMessageMask(ErrorHandler::TraceMask, on);
}

} // namespace

class TestTracing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ErrorHandler::Instance().GetMessages()->SetMaxNumber(0); }

    void split_data() { KvTest::addRows("errorhandling/traces.txt", {"length", "file", "line", "pieces"}); }

    void split()
    {
        QFETCH(QString, length);
        QFETCH(QString, file);
        QFETCH(QString, line);
        QFETCH(QString, pieces);
        QString text;
        for (int i = 0; i < length.toInt(); ++i)
            text += QLatin1Char(char('0' + i % 10));
        QStringList expected;
        for (const QString& piece : pieces.split(QStringLiteral(", "))) {
            const QString place = piece.section(QLatin1Char(' '), 0, 0);
            const QString part = text.mid(place.section(QLatin1Char('+'), 0, 0).toInt(),
                                          place.section(QLatin1Char('+'), 1).toInt());
            expected << QStringLiteral("3@%1@%2@%3").arg(part + piece.mid(place.size()), file, line);
        }
        QCOMPARE(recorded([&] { _Q_Trace(text, file, line.toUShort()); }, expected.size()), expected);
    }

    void blockTracesIndentNestedBlocks()
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
        QCOMPARE(
            messages,
            QStringList({"3@*outer {@errorhandling\\quality@129", "3@* middle {@errorhandling\\quality@129",
                         "3@*  inner {@errorhandling\\quality@129", "3@*  }@errorhandling\\quality@136",
                         "3@* }@errorhandling\\quality@136", "3@*}@errorhandling\\quality@136"}));
        // The depth counts also while the trace bit is off.
        setTracing(false);
        const QStringList silent = recorded(
            [] {
                BLOCK_TRACE block(QStringLiteral("silent"));
                QCOMPARE(BLOCK_TRACE::GetIndent(), QStringLiteral("* "));
            },
            0);
        setTracing(true);
        QCOMPARE(silent, QStringList());
        QCOMPARE(BLOCK_TRACE::GetIndent(), QStringLiteral("*"));
    }

    void timedCallsTraceWhileTheMaskSaysSo()
    {
        TimedCall call;
        QThread::msleep(2);
        QVERIFY2(call.GetTime() >= 2.0, qPrintable(QString::number(call.GetTime())));
        const QStringList slow = recorded([&] { call.Evaluate(QStringLiteral("load"), 1.0); }, 1);
        QVERIFY2(QRegularExpression(QStringLiteral("^3@load [0-9.e+]+ ms@errorhandling\\\\quality@306$"))
                     .match(slow.value(0))
                     .hasMatch(),
                 qPrintable(slow.join(QLatin1Char('|'))));
        QCOMPARE(recorded([&] { call.Evaluate(QStringLiteral("fast"), 1e9); }, 0), QStringList());
        setTracing(false);
        const QStringList masked = recorded(
            [&] {
                call.Evaluate(QStringLiteral("masked"), 0.0);
                AutoTimedCall automatic(QStringLiteral("masked auto"));
            },
            0);
        setTracing(true);
        QCOMPARE(masked, QStringList());
        // An automatic call reports every time while tracing is on.
        const QStringList automatic = recorded([] { KV_AUTO_TIMED_CALL(QStringLiteral("auto")); }, 1);
        QVERIFY2(automatic.value(0).startsWith(QLatin1String("3@auto ")),
                 qPrintable(automatic.join(QLatin1Char('|'))));
    }
};

QTEST_GUILESS_MAIN(TestTracing)
#include "tst_tracing.moc"
