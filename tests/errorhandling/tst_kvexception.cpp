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

QString newestMessage()
{
    return ErrorHandler::Instance().GetMessages()->GetList().front()->GetText();
}

} // namespace

class TestKvException : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data();
    void texts();
    void narrowConstructorDecodesUtf8AndLatin1();
    void copiesKeepTheTime();
    void argumentListExceptionIsInert();
    void contractChecksReportAndReturn_data();
    void contractChecksReportAndReturn();
};

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
    QTest::newRow("field list of information starts with @")
        << 2 << 255 << "@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("level 254 is a warning") << 2 << 254 << "254@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("level 0 is a warning") << 2 << 0 << "0@Division by zero@calc@42@Calc@Run@10:15:02";
    QTest::newRow("readable error doubles the colon") << 3 << 1 << QString("Error::\t10:15:02:\t" + tail);
    QTest::newRow("readable information doubles the colon")
        << 3 << 255 << QString("Info::\t10:15:02:\t" + tail);
    QTest::newRow("readable warning has one colon")
        << 3 << 3 << QString("Warning (Level 3):\t10:15:02:\t" + tail);
    QTest::newRow("format 0 is unknown") << 0 << 1 << "Unknown FormatMode Selected";
    QTest::newRow("format 4 is unknown") << 4 << 255 << "Unknown FormatMode Selected";
}

void TestKvException::texts()
{
    QFETCH(int, format);
    QFETCH(int, level);
    QFETCH(QString, text);
    KvException e(QStringLiteral("Division by zero"), QStringLiteral("calc"), QStringLiteral("Calc"),
                  QStringLiteral("Run"), 42, 7);
    e.SetErrorTime(QTime(10, 15, 2));
    const auto f = static_cast<KvExceptionTextFormat>(format);
    QCOMPARE(e.GetExceptionWideText(f, static_cast<unsigned char>(level)), text);
    QCOMPARE(e.GetExceptionAsciiText(f, static_cast<unsigned char>(level)), text.toStdString());

    KvException defaults;
    defaults.SetErrorTime(QTime(10, 15, 2));
    QCOMPARE(
        defaults.GetExceptionWideText(Readable, 1),
        QStringLiteral("Error::\t10:15:02:\tNO REASON in file NO FILENAME in class NO CLASSNAME in method "
                       "NO METHODNAME in line 0\n"));
}

void TestKvException::narrowConstructorDecodesUtf8AndLatin1()
{
    const KvException e(std::string("Gr\xC3\xB6\xC3\x9F"
                                    "e"),
                        "caf\xE9", nullptr, "Run", 3, 9);
    QCOMPARE(e.GetErrorReason(), QString::fromUtf8("Größe"));
    QCOMPARE(e.GetFileName(), QString::fromUtf8("café"));
    QVERIFY(e.ClassName().isEmpty());
    QCOMPARE(e.GetExceptionAsciiText(ReasonOnly, 1), std::string("Gr\xC3\xB6\xC3\x9F"
                                                                 "e"));
}

void TestKvException::copiesKeepTheTime()
{
    KvException first(QStringLiteral("r"), QStringLiteral("f"), QStringLiteral("c"), QStringLiteral("m"), 1,
                      2);
    first.SetErrorTime(QTime(10, 15, 2));
    KvException copy;
    copy = first;
    QVERIFY(copy == first && !(copy != first));
    QCOMPARE(KvException(first).GetErrorTime(), QTime(10, 15, 2));

    // Equal texts a second apart are different exceptions.
    copy.SetErrorTime(QTime(10, 15, 3));
    QVERIFY(copy != first && !(copy == first));
}

void TestKvException::argumentListExceptionIsInert()
{
    KvArgumentListException e(QStringLiteral("reason"), QStringLiteral("file"), QStringLiteral("Class"),
                              QStringLiteral("method"), 12, {QStringLiteral("a")}, 5,
                              QStringLiteral("extra"));
    QCOMPARE(e.GetErrorReason(), QStringLiteral("NO REASON"));
    QVERIFY(!(e == e) && !(e != e));
    const KvException& base = e;
    for (int format = 0; format <= 4; ++format)
        QVERIFY(base.GetExceptionAsciiText(static_cast<KvExceptionTextFormat>(format), 1).empty());

    KvArgumentListException copy(e);
    copy.SetErrorReason(QStringLiteral("changed"));
    copy = e;
    QCOMPARE(copy.GetErrorReason(), QStringLiteral("changed"));
}

void TestKvException::contractChecksReportAndReturn_data()
{
    QTest::addColumn<int>("check");
    QTest::addColumn<QString>("prefix");
    QTest::newRow("require") << 0 << "!@REQUIREMENT FAILED@calc@7@@@";
    QTest::newRow("ensure") << 1 << "!@ENSURE FAILED@calc@7@@@";
    QTest::newRow("assert carries the expression") << 2 << "!@ASSERTION FAILED x>0@calc@7@@@";
    QTest::newRow("macro cuts the source path")
        << 3 << "!@ASSERTION FAILED x > 0@errorhandling\\tst_kvexception@";
}

void TestKvException::contractChecksReportAndReturn()
{
    QFETCH(int, check);
    QFETCH(QString, prefix);

    auto dialog = std::make_unique<RecordingDialog>();
    RecordingDialog* seen = dialog.get();
    ErrorHandler::SetMessageDlg(std::move(dialog));
    const int x = 0;
    switch (check) {
    case 0:
        _Q_require(L"calc", 7);
        break;
    case 1:
        _Q_ensure(L"calc", 7);
        break;
    case 2:
        _Q_assert(L"x>0", L"calc", 7);
        break;
    default:
        KV_ASSERT(x > 0);
        KV_REQUIRE(x == 0); // holds: no report
    }
    // Recorded at once, in this thread, as an error, and the dialog was asked for.
    QVERIFY2(newestMessage().startsWith(prefix), qPrintable(newestMessage()));
    QCOMPARE(seen->posted, QStringList(prefix.section(QLatin1Char('@'), 1, 1) + QLatin1String("|1|-1")));
    ErrorHandler::SetMessageDlg(nullptr);
    QCOMPARE(KvCutSourcePath(L"C:\\kv\\basetypes\\band.cpp"), std::wstring(L"basetypes\\band"));
}

QTEST_GUILESS_MAIN(TestKvException)
#include "tst_kvexception.moc"
