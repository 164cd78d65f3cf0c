#include "errorhandling/errorhandler.h"
#include "errorhandling/kvtextfile.h"
#include "errorhandling/messagelist.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

std::shared_ptr<Message> message(const QString& text, int second = 0)
{
    return std::make_shared<Message>(text, QTime(12, 0, second), 255);
}

QStringList texts(const MessageList& list)
{
    QStringList result;
    for (const auto& entry : list.GetList())
        result << (entry ? entry->GetText() : QStringLiteral("<empty>"));
    return result;
}

QByteArray fileBytes(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestMessageList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundedNewestFirst();
    void zeroMaximumIsUnbounded();
    void setMaxNumberPadsAndTrims();
    void cursorIsEightBit();
    void copiesShareMessages();
    void messageComparisons();
    void missingFileThrows();
    void missingFileIsCreatedWhenAllowed();
    void writeAndReadLines();
    void wideWriteLineWritesAnAddress();
    void logFileOverwritesFromTheStart();

private:
    QTemporaryDir m_dir;
};

void TestMessageList::boundedNewestFirst()
{
    MessageList list(3);
    for (const char* text : {"A", "B", "C", "D"})
        QCOMPARE(list.AddMessage(message(QLatin1String(text))), KvMsgListAdded);
    QCOMPARE(texts(list), QStringList({"D", "C", "B"}));
    QCOMPARE(list.GetCurrentPosition(), static_cast<unsigned char>(0));
    QCOMPARE(list.GetCurrentMessage()->GetText(), QStringLiteral("D"));
    QCOMPARE(MessageList().GetMaxNumber(), 100u);

    QVERIFY(list.DeleteMessageList());
    QVERIFY(list.GetList().empty());
    QCOMPARE(list.GetMaxNumber(), 3u);
    QVERIFY(!list.GetCurrentMessage());
}

void TestMessageList::zeroMaximumIsUnbounded()
{
    MessageList list(0);
    for (int i = 0; i < 150; ++i)
        list.AddMessage(message(QString::number(i)));
    QCOMPARE(list.GetList().size(), size_t(150));
    QCOMPARE(list.GetList().front()->GetText(), QStringLiteral("149"));
}

void TestMessageList::setMaxNumberPadsAndTrims()
{
    MessageList list;
    list.AddMessage(message(QStringLiteral("old")));
    list.AddMessage(message(QStringLiteral("new")));
    list.SetMaxNumber(5);
    QCOMPARE(texts(list), QStringList({"new", "old", "<empty>", "<empty>", "<empty>"}));
    list.SetCurrentPosition(4);
    QVERIFY(!list.GetCurrentMessage());

    // Full at five entries, so every addition pushes one off the back.
    list.AddMessage(message(QStringLiteral("newest")));
    QCOMPARE(texts(list), QStringList({"newest", "new", "old", "<empty>", "<empty>"}));

    list.SetMaxNumber(1);
    QCOMPARE(texts(list), QStringList({"newest"}));
}

void TestMessageList::cursorIsEightBit()
{
    MessageList list(0);
    for (int i = 0; i < 300; ++i)
        list.AddMessage(message(QString::number(i)));
    list.SetCurrentPosition(255);
    QCOMPARE(list.GetCurrentMessage()->GetText(), QStringLiteral("44"));
    list.SetCurrentPosition(static_cast<unsigned char>(list.GetCurrentPosition() + 1));
    QCOMPARE(list.GetCurrentMessage()->GetText(), QStringLiteral("299"));
}

void TestMessageList::copiesShareMessages()
{
    MessageList list(4);
    list.AddMessage(message(QStringLiteral("shared")));
    list.SetCurrentPosition(0);
    MessageList copy(list);
    copy.GetCurrentMessage()->SetText(QStringLiteral("changed"));
    QCOMPARE(list.GetCurrentMessage()->GetText(), QStringLiteral("changed"));
    QCOMPARE(copy.GetMaxNumber(), 4u);

    MessageList assigned;
    assigned = list;
    QCOMPARE(assigned.GetList().front().get(), list.GetList().front().get());
}

void TestMessageList::messageComparisons()
{
    const Message a(QStringLiteral("a"), QTime(8, 0), 1);
    const Message b(QStringLiteral("b"), QTime(8, 0), 1);
    QVERIFY(!(a < b) && !(a > b) && a <= b && a >= b);
    QVERIFY(a != b);
    QVERIFY(a == Message(a));
    QVERIFY(a != Message(QStringLiteral("a"), QTime(8, 0), 2));
    QVERIFY(a != Message(QStringLiteral("A"), QTime(8, 0), 1));

    const Message late(QStringLiteral("z"), QTime(23, 0), 1);
    QVERIFY(a < late && late > a && !(late <= a));

    const Message fresh;
    QCOMPARE(fresh.GetWarningLevel(), static_cast<unsigned char>(255));
    QVERIFY(fresh.GetText().isEmpty());
    QVERIFY(qAbs(fresh.GetTimeStamp().msecsTo(QTime::currentTime())) < 5000);
}

void TestMessageList::missingFileThrows()
{
    const QString path = m_dir.filePath(QStringLiteral("missing.txt"));
    try {
        KvTextFile file(path, false);
        QFAIL("no exception for a missing file");
    } catch (const KvException& e) {
        QCOMPARE(e.GetErrorReason(), QStringLiteral("File does not exist - see Details"));
        QCOMPARE(e.GetFileName(), QStringLiteral("errorhandling\\kvtextfile"));
        QCOMPARE(e.ClassName(), QStringLiteral("KvTextFile"));
        QCOMPARE(e.GetMethodName(), QStringLiteral("ctor"));
        QCOMPARE(e.GetLineNumber(), 39u);
        QCOMPARE(e.GetErrorId(), 0xFFFFFFFFu);
    }
    QVERIFY(!QFile::exists(path));
    // The path went out as a developer trace first.
    QTRY_VERIFY(!ErrorHandler::Instance().GetMessages()->GetList().empty());
    QCOMPARE(
        ErrorHandler::Instance().GetMessages()->GetList().front()->GetText().section(QLatin1Char('@'), 0, 3),
        QStringLiteral("3@%1@errorhandling\\kvtextfile@37").arg(path));
}

void TestMessageList::missingFileIsCreatedWhenAllowed()
{
    const QString path = m_dir.filePath(QStringLiteral("created.txt"));
    KvTextFile file(path, true);
    QVERIFY(QFile::exists(path));
    QVERIFY(file.isOpen());
    QCOMPARE(file.size(), 0u);

    KvTextFile second(path, false);
    QVERIFY(second.isOpen());
    QVERIFY(!second.Open(QIODevice::ReadOnly)); // already open
    QFile::remove(path);
    QVERIFY(!second.Open(QIODevice::ReadOnly));
}

void TestMessageList::writeAndReadLines()
{
    const QString path = m_dir.filePath(QStringLiteral("lines.txt"));
    {
        KvTextFile file(path, true);
        QCOMPARE(file.WriteLine(std::string("abc")), static_cast<unsigned short>(5));
        QCOMPARE(file.AppendLine(std::string("d\xE9"
                                             "f")),
                 static_cast<unsigned short>(5));
        QCOMPARE(file.WriteLine(std::string(70000, 'x')), static_cast<unsigned short>((70000 + 2) % 65536));
    }
    const QByteArray bytes = fileBytes(path);
    QVERIFY(bytes.startsWith("abc\nd\xE9"
                             "f\nxxx"));
    QCOMPARE(bytes.size(), 4 + 4 + 70001);

    KvTextFile file(path, false);
    QCOMPARE(file.ReadLine(), QStringLiteral("abc"));
    QVERIFY(!file.atEnd());
    file.ReadLine();
    QCOMPARE(file.ReadLine().size(), 70000);
    QVERIFY(file.atEnd());
    QCOMPARE(file.ReadLine(), QString());
    QCOMPARE(file.size(), 70009u);
}

void TestMessageList::wideWriteLineWritesAnAddress()
{
    const QString path = m_dir.filePath(QStringLiteral("wide.txt"));
    {
        KvTextFile file(path, true);
        QCOMPARE(file.WriteLine(QStringLiteral("hello")), static_cast<unsigned short>(7));
        QCOMPARE(file.AppendLine(QStringLiteral("hi")), static_cast<unsigned short>(4));
    }
    const QList<QByteArray> lines = fileBytes(path).split('\n');
    QCOMPARE(lines.size(), 3);
    for (int i = 0; i < 2; ++i) {
        QVERIFY2(lines.at(i).startsWith("0x"), lines.at(i).constData());
        bool ok = false;
        lines.at(i).mid(2).toULongLong(&ok, 16);
        QVERIFY(ok);
    }
}

void TestMessageList::logFileOverwritesFromTheStart()
{
    const QString path = m_dir.filePath(QStringLiteral("Logger.txt"));
    {
        LogFile log(path);
        QVERIFY(log.AddMessage("first long line"));
        QVERIFY(log.AddMessage("second"));
    }
    {
        LogFile log(path);
        QVERIFY(log.AddMessage("new"));
    }
    QCOMPARE(fileBytes(path), QByteArray("new\nt long line\nsecond\n"));
}

QTEST_GUILESS_MAIN(TestMessageList)
#include "tst_messagelist.moc"
