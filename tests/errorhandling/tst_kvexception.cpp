#include "errorhandling/quality.h"

#include "kvtest.h"
#include "recorders.h"

class TestKvException : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data()
    {
        KvTest::addRows("errorhandling/exceptiontexts.txt", {"exception", "format", "level", "text"});
    }

    void texts()
    {
        QFETCH(QString, exception);
        QFETCH(QString, format);
        QFETCH(QString, level);
        QFETCH(QString, text);
        KvException e = exception == QLatin1String("default")
                            ? KvException()
                            : KvException(std::string("Division by zero"), "calc", "Calc", "Run", 42, 7);
        e.SetErrorTime(QTime(10, 15, 2));
        const auto f = static_cast<KvExceptionTextFormat>(format.toInt());
        QCOMPARE(e.GetExceptionWideText(f, static_cast<unsigned char>(level.toInt())), text);
        QCOMPARE(e.GetExceptionAsciiText(f, static_cast<unsigned char>(level.toInt())), text.toStdString());
    }

    void narrowTextsAreUtf8AndLatin1()
    {
        const KvException e(std::string("Gr\xC3\xB6\xC3\x9F"
                                        "e"),
                            "caf\xE9", nullptr, "Run", 3, 9);
        QCOMPARE(e.GetErrorReason() + QLatin1Char('|') + e.GetFileName() + QLatin1Char('|') + e.ClassName(),
                 QString::fromUtf8("Größe|café|"));
    }

    void copiesKeepTheTime()
    {
        const KvException first(QStringLiteral("r"), QStringLiteral("f"), QStringLiteral("c"),
                                QStringLiteral("m"), 1, 2);
        KvException copy;
        copy = first;
        QVERIFY2(copy == first, "a copy differs from its source");
        copy.SetErrorTime(first.GetErrorTime().addSecs(1));
        QVERIFY2(copy != first, "exceptions a second apart compare equal");
    }

    void contractChecksReportAndReturn_data()
    {
        KvTest::addRows("errorhandling/contractchecks.txt", {"check", "message", "posted"});
    }

    // Recorded at once, in this thread, as an error with the library's id, and the dialog was asked for.
    void contractChecksReportAndReturn()
    {
        QFETCH(QString, check);
        QFETCH(QString, message);
        QFETCH(QString, posted);
        auto dialog = std::make_unique<RecordingDialog>();
        RecordingDialog* seen = dialog.get();
        ErrorHandler::SetMessageDlg(std::move(dialog));
        const int x = 0;
        if (check == QLatin1String("require"))
            _Q_require(L"calc", 7);
        else if (check == QLatin1String("ensure"))
            _Q_ensure(L"calc", 7);
        else if (check == QLatin1String("assert"))
            _Q_assert(L"x>0", L"calc", 7);
        else
            KV_ASSERT(x > 0);
        KV_REQUIRE(x == 0); // holds: no report
        QCOMPARE(seen->calls, QStringList(QStringLiteral("post exception %1 1 false -1 false").arg(posted)));
        ErrorHandler::SetMessageDlg(nullptr);
        const QString newest = ErrorHandler::Instance().GetMessages()->GetList().front()->GetText();
        QVERIFY2(newest.startsWith(message), qPrintable(newest));
    }
};

QTEST_GUILESS_MAIN(TestKvException)
#include "tst_kvexception.moc"
