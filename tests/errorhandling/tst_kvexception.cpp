#include "errorhandling/errorhandler.h"
#include "errorhandling/kvexception.h"
#include "errorhandling/quality.h"

#include <QTest>

namespace {

struct RecordingDialog : IMessageDialog
{
    QStringList posted;
    int ShowText(const QString&, unsigned char, bool, int, bool, bool) override { return 0; }
    int ShowException(const KvException&, unsigned char, bool, int, bool, bool) override { return 0; }
    void ShowMessageList() override {}
    void PostException(KvException& e, unsigned char level, bool, int n, bool) override
    {
        posted << QStringLiteral("%1|%2|%3").arg(e.GetErrorReason()).arg(level).arg(n);
    }
    void PostText(const QString&, unsigned char, bool, int, bool) override {}
};

KvException sample(unsigned int line = 42)
{
    KvException e(QStringLiteral("Division by zero"), QStringLiteral("calc"), QStringLiteral("Calc"),
                  QStringLiteral("Run"), line, 7);
    e.SetErrorTime(QTime(10, 15, 2));
    return e;
}

} // namespace

class TestKvException : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void texts_data();
    void texts();
    void narrowConstructor();
    void copiesKeepTimeAndCompareEqual();
    void argumentListExceptionIsInert();
    void contractChecksReportAndReturn_data();
    void contractChecksReportAndReturn();
    void callSiteMacros();
};

void TestKvException::defaults()
{
    const KvException e;
    QCOMPARE(e.GetErrorReason(), QStringLiteral("NO REASON"));
    QCOMPARE(e.GetFileName(), QStringLiteral("NO FILENAME"));
    QCOMPARE(e.ClassName(), QStringLiteral("NO CLASSNAME"));
    QCOMPARE(e.GetMethodName(), QStringLiteral("NO METHODNAME"));
    QCOMPARE(e.GetLineNumber(), 0u);
    QCOMPARE(e.GetErrorId(), 0u);
    QVERIFY(qAbs(e.GetErrorTime().msecsTo(QTime::currentTime())) < 5000);
    QCOMPARE(e.what(), std::exception().what());

    const QString time = e.GetErrorTime().toString(QStringLiteral("hh:mm:ss"));
    QCOMPARE(e.GetExceptionWideText(Readable, 1),
             QStringLiteral("Error::\t%1:\tNO REASON in file NO FILENAME in class NO CLASSNAME in method "
                            "NO METHODNAME in line 0\n")
                 .arg(time));
}

void TestKvException::texts_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("text");

    const QString tail =
        QStringLiteral("Division by zero in file calc in class Calc in method Run in line 42\n");
    QTest::newRow("reason only") << 1 << 1 << "Division by zero";
    QTest::newRow("field list of an error starts with !")
        << 2 << 1 << "!@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("field list of information starts with the separator")
        << 2 << 255 << "@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("field list of warning 254 carries its level")
        << 2 << 254 << "254@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("level 0 is a warning of level 0")
        << 2 << 0 << "0@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("readable error doubles the colon") << 3 << 1 << QString("Error::\t10:15:02:\t" + tail);
    QTest::newRow("readable information doubles the colon")
        << 3 << 255 << QString("Info::\t10:15:02:\t" + tail);
    QTest::newRow("readable warning has one colon")
        << 3 << 3 << QString("Warning (Level 3):\t10:15:02:\t" + tail);
    QTest::newRow("readable warning of level 0")
        << 3 << 0 << QString("Warning (Level 0):\t10:15:02:\t" + tail);
    QTest::newRow("format 0 is unknown") << 0 << 1 << "Unknown FormatMode Selected";
    QTest::newRow("format 4 is unknown") << 4 << 255 << "Unknown FormatMode Selected";
}

void TestKvException::texts()
{
    QFETCH(int, format);
    QFETCH(int, level);
    QFETCH(QString, text);
    const KvException e = sample();
    const auto f = static_cast<KvExceptionTextFormat>(format);
    QCOMPARE(e.GetExceptionWideText(f, static_cast<unsigned char>(level)), text);
    QCOMPARE(e.GetExceptionAsciiText(f, static_cast<unsigned char>(level)), text.toStdString());
}

void TestKvException::narrowConstructor()
{
    const KvException e(std::string("Gr\xC3\xB6\xC3\x9F"
                                    "e"),
                        "caf\xE9", nullptr, "Run", 3, 9);
    QCOMPARE(e.GetErrorReason(), QString::fromUtf8("Größe"));
    QCOMPARE(e.GetFileName(), QString::fromUtf8("café"));
    QVERIFY(e.ClassName().isEmpty());
    QCOMPARE(e.GetMethodName(), QStringLiteral("Run"));
    QCOMPARE(e.GetExceptionAsciiText(ReasonOnly, 1), std::string("Gr\xC3\xB6\xC3\x9F"
                                                                 "e"));

    const KvException empty(QString(), QString(), QString(), QString(), 0, 0);
    QVERIFY(empty.GetErrorReason().isEmpty());
}

void TestKvException::copiesKeepTimeAndCompareEqual()
{
    const KvException first = sample();
    KvException copy(first);
    QVERIFY(copy == first);
    QVERIFY(!(copy != first));

    KvException later(first.GetErrorReason(), first.GetFileName(), first.ClassName(), first.GetMethodName(),
                      first.GetLineNumber(), first.GetErrorId());
    KvException earlier(first.GetErrorReason(), first.GetFileName(), first.ClassName(), first.GetMethodName(),
                        first.GetLineNumber(), first.GetErrorId());
    earlier.SetErrorTime(later.GetErrorTime().addSecs(-1));
    QVERIFY(later != earlier);

    KvException assigned;
    assigned = first;
    QCOMPARE(assigned.GetErrorTime(), QTime(10, 15, 2));
    QVERIFY(assigned == first);
    assigned.SetLineNumber(43);
    QVERIFY(assigned != first);
}

void TestKvException::argumentListExceptionIsInert()
{
    KvArgumentListException e(QStringLiteral("reason"), QStringLiteral("file"), QStringLiteral("Class"),
                              QStringLiteral("method"), 12, {QStringLiteral("a"), QStringLiteral("b")}, 5,
                              QStringLiteral("extra"));
    QCOMPARE(e.GetErrorReason(), QStringLiteral("NO REASON"));
    QCOMPARE(e.GetLineNumber(), 0u);
    QVERIFY(!(e == e));
    QVERIFY(!(e != e));
    for (int format = 0; format <= 4; ++format) {
        QVERIFY(e.GetExceptionWideText(static_cast<KvExceptionTextFormat>(format), 1).isEmpty());
        QVERIFY(e.GetExceptionAsciiText(static_cast<KvExceptionTextFormat>(format), 255).empty());
    }
    const KvException& base = e;
    QVERIFY(base.GetExceptionAsciiText(Readable, 1).empty());

    KvArgumentListException copy(e);
    QCOMPARE(copy.GetFileName(), QStringLiteral("NO FILENAME"));
    copy.SetErrorReason(QStringLiteral("changed"));
    copy = e;
    QCOMPARE(copy.GetErrorReason(), QStringLiteral("changed"));
}

void TestKvException::contractChecksReportAndReturn_data()
{
    QTest::addColumn<int>("check");
    QTest::addColumn<QString>("reason");
    QTest::newRow("require") << 0 << "REQUIREMENT FAILED";
    QTest::newRow("ensure") << 1 << "ENSURE FAILED";
    QTest::newRow("assert carries the expression") << 2 << "ASSERTION FAILED x>0";
}

void TestKvException::contractChecksReportAndReturn()
{
    QFETCH(int, check);
    QFETCH(QString, reason);

    auto dialog = std::make_unique<RecordingDialog>();
    RecordingDialog* seen = dialog.get();
    ErrorHandler::SetMessageDlg(std::move(dialog));
    switch (check) {
    case 0:
        _Q_require(L"calc", 7);
        break;
    case 1:
        _Q_ensure(L"calc", 7);
        break;
    default:
        _Q_assert(L"x>0", L"calc", 7);
    }
    // Recorded at once, in this thread, as an error.
    const auto newest = ErrorHandler::Instance().GetMessages()->GetList().front();
    QCOMPARE(newest->GetWarningLevel(), static_cast<unsigned char>(1));
    QVERIFY2(newest->GetText().startsWith(QLatin1String("!@") + reason + QLatin1String("@calc@7@@@")),
             qPrintable(newest->GetText()));
    QCOMPARE(seen->posted, QStringList(reason + QLatin1String("|1|-1")));
    ErrorHandler::SetMessageDlg(nullptr);
}

void TestKvException::callSiteMacros()
{
    QCOMPARE(KvCutSourcePath(L"/work/src/coord/maskconv.cpp"), std::wstring(L"coord\\maskconv"));
    QCOMPARE(KvCutSourcePath(L"C:\\kv\\basetypes\\band.cpp"), std::wstring(L"basetypes\\band"));
    QCOMPARE(KvCutSourcePath(L"band.cpp"), std::wstring(L"band"));
    QCOMPARE(KvCutSourcePath(nullptr), std::wstring());

    const int x = 0;
    KV_ASSERT(x > 0);
    const QString text = ErrorHandler::Instance().GetMessages()->GetList().front()->GetText();
    QVERIFY2(text.startsWith(QLatin1String("!@ASSERTION FAILED x > 0@errorhandling\\tst_kvexception@")),
             qPrintable(text));
    const int before = static_cast<int>(ErrorHandler::Instance().GetMessages()->GetList().size());
    KV_REQUIRE(x == 0);
    QCOMPARE(static_cast<int>(ErrorHandler::Instance().GetMessages()->GetList().size()), before);
}

QTEST_GUILESS_MAIN(TestKvException)
#include "tst_kvexception.moc"
