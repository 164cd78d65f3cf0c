#include "errorhandling/errorhandler.h"
#include "errorhandling/kvtextfile.h"
#include "errorhandling/messagelist.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

QStringList texts(const MessageList& list)
{
    QStringList result;
    for (const auto& entry : list.GetList())
        result << (entry ? entry->GetText() : QStringLiteral("-"));
    return result;
}

void add(MessageList& list, const QString& letters)
{
    for (const QChar c : letters)
        list.AddMessage(std::make_shared<Message>(QString(c), QTime(12, 0), 255));
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
    void bounding();
    void messageComparisonsLookAtTheTimeOnly();
    void missingFileThrows();
    void lines();
    void logFileOverwritesFromTheStart();

private:
    QTemporaryDir m_dir;
};

void TestMessageList::bounding()
{
    MessageList three(3);
    add(three, QStringLiteral("ABCD"));
    QCOMPARE(texts(three), QStringList({"D", "C", "B"}));
    QCOMPARE(three.GetCurrentMessage()->GetText(), QStringLiteral("D"));

    MessageList unbounded(0);
    add(unbounded, QString(300, QLatin1Char('x')));
    QCOMPARE(unbounded.GetList().size(), size_t(300));
    // The cursor is 8-bit: position 255 is the last one it reaches.
    unbounded.SetCurrentPosition(static_cast<unsigned char>(255 + 1));
    QCOMPARE(unbounded.GetCurrentMessage().get(), unbounded.GetList().front().get());

    MessageList padded;
    add(padded, QStringLiteral("ON"));
    padded.SetMaxNumber(5);
    QCOMPARE(texts(padded), QStringList({"N", "O", "-", "-", "-"}));
    padded.SetCurrentPosition(4);
    QVERIFY(!padded.GetCurrentMessage());
    add(padded, QStringLiteral("W"));
    QCOMPARE(texts(padded), QStringList({"W", "N", "O", "-", "-"}));

    // Copies share the messages.
    MessageList copy(padded);
    copy.GetList().front()->SetText(QStringLiteral("shared"));
    QCOMPARE(padded.GetList().front()->GetText(), QStringLiteral("shared"));
    QVERIFY(copy.DeleteMessageList() && copy.GetList().empty() && copy.GetMaxNumber() == 5);
}

void TestMessageList::messageComparisonsLookAtTheTimeOnly()
{
    const Message a(QStringLiteral("a"), QTime(8, 0), 1);
    const Message b(QStringLiteral("b"), QTime(8, 0), 1);
    QVERIFY(!(a < b) && !(a > b) && a <= b && a >= b && a != b);
    QVERIFY(a == Message(a));
    QVERIFY(a != Message(QStringLiteral("a"), QTime(8, 0), 2));
    QVERIFY(a < Message(QStringLiteral("a"), QTime(23, 0), 1));
    QCOMPARE(Message().GetWarningLevel(), static_cast<unsigned char>(255));
}

void TestMessageList::missingFileThrows()
{
    const QString path = m_dir.filePath(QStringLiteral("missing.txt"));
    try {
        KvTextFile file(path, false);
        QFAIL("no exception for a missing file");
    } catch (const KvException& e) {
        QCOMPARE(e.GetExceptionWideText(FieldList, 1).section(QLatin1Char('@'), 0, 5),
                 QStringLiteral(
                     "!@File does not exist - see Details@errorhandling\\kvtextfile@39@KvTextFile@ctor"));
        QCOMPARE(e.GetErrorId(), 0xFFFFFFFFu);
    }
    QVERIFY(!QFile::exists(path));
    // The path went out as a developer trace first.
    QTRY_VERIFY(!ErrorHandler::Instance().GetMessages()->GetList().empty());
    QCOMPARE(
        ErrorHandler::Instance().GetMessages()->GetList().front()->GetText().section(QLatin1Char('@'), 0, 3),
        QStringLiteral("3@%1@errorhandling\\kvtextfile@37").arg(path));

    KvTextFile created(path, true);
    QVERIFY(QFile::exists(path) && created.isOpen());
}

void TestMessageList::lines()
{
    const QString path = m_dir.filePath(QStringLiteral("lines.txt"));
    {
        KvTextFile file(path, true);
        QCOMPARE(file.WriteLine(std::string("abc")), static_cast<unsigned short>(5));
        QCOMPARE(file.AppendLine(std::string("d\xE9"
                                             "f")),
                 static_cast<unsigned short>(5));
        QCOMPARE(file.WriteLine(std::string(70000, 'x')), static_cast<unsigned short>(70002 - 65536));
        // The wide overload writes an address, not the text.
        QCOMPARE(file.WriteLine(QStringLiteral("hello")), static_cast<unsigned short>(7));
    }
    const QList<QByteArray> written = fileBytes(path).split('\n');
    QCOMPARE(written.size(), 5);
    QCOMPARE(written.at(1), QByteArray("d\xE9"
                                       "f"));
    QVERIFY2(written.at(3).startsWith("0x"), written.at(3).constData());

    KvTextFile file(path, false);
    QCOMPARE(file.ReadLine(), QStringLiteral("abc"));
    file.ReadLine();
    QCOMPARE(file.ReadLine().size(), 70000);
    file.ReadLine();
    QVERIFY(file.atEnd());
    QCOMPARE(file.ReadLine(), QString());
}

void TestMessageList::logFileOverwritesFromTheStart()
{
    const QString path = m_dir.filePath(QStringLiteral("Logger.txt"));
    LogFile(path).AddMessage("first long line");
    QVERIFY(LogFile(path).AddMessage("new"));
    QCOMPARE(fileBytes(path), QByteArray("new\nt long line\n"));
}

QTEST_GUILESS_MAIN(TestMessageList)
#include "tst_messagelist.moc"
