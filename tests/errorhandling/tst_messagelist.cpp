#include "errorhandling/errorhandler.h"
#include "errorhandling/kvtextfile.h"
#include "errorhandling/messagelist.h"

#include "kvtest.h"

#include <QTemporaryDir>

class TestMessageList : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

    static void add(MessageList& list, const QString& texts)
    {
        for (const QChar c : texts)
            list.AddMessage(std::make_shared<Message>(QString(c), QTime(12, 0), 255));
    }
    static QByteArray bytes(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void bounding_data()
    {
        KvTest::addRows("errorhandling/messagelists.txt",
                        {"maximum", "added", "resized", "addedThen", "list"});
    }

    void bounding()
    {
        QFETCH(QString, maximum);
        QFETCH(QString, added);
        QFETCH(QString, resized);
        QFETCH(QString, addedThen);
        QFETCH(QString, list);
        MessageList messages(maximum.toUInt());
        add(messages, added);
        if (!resized.isEmpty())
            messages.SetMaxNumber(resized.toUInt());
        add(messages, addedThen);
        QString texts;
        const MessageList copy(messages); // copies share the messages
        for (const auto& entry : copy.GetList())
            texts += entry ? entry->GetText() : QStringLiteral("-");
        QCOMPARE(texts, list);
        QCOMPARE(messages.GetCurrentMessage(), messages.GetList().front());
    }

    // The cursor is 8-bit: past position 255 it starts again at the newest entry.
    void cursorIsEightBit()
    {
        MessageList list(0);
        add(list, QString(300, QLatin1Char('x')));
        list.SetCurrentPosition(255);
        QCOMPARE(list.GetCurrentMessage(), list.GetList().at(255));
        list.SetCurrentPosition(static_cast<unsigned char>(255 + 1));
        QCOMPARE(list.GetCurrentMessage(), list.GetList().front());
    }

    void messagesOrderByTimeOfDayOnly()
    {
        const Message a(QStringLiteral("a"), QTime(8, 0), 1);
        const Message b(QStringLiteral("b"), QTime(8, 0), 1);
        QVERIFY2(!(a < b) && !(a > b) && a <= b && a >= b, "equal times do not order as equal");
        QVERIFY2(a != b, "different texts compare equal");
        QVERIFY2(a < Message(QStringLiteral("a"), QTime(23, 0), 1), "a later time does not order after");
    }

    void missingFileThrowsAfterATrace()
    {
        const QString path = m_dir.filePath(QStringLiteral("missing.txt"));
        QVERIFY_EXCEPTION_THROWN(KvTextFile(path, false), KvException);
        try {
            KvTextFile file(path, false);
        } catch (const KvException& e) {
            QCOMPARE(e.GetExceptionWideText(FieldList, 1).section(QLatin1Char('@'), 0, 5),
                     QStringLiteral(
                         "!@File does not exist - see Details@errorhandling\\kvtextfile@39@KvTextFile@ctor"));
            QCOMPARE(e.GetErrorId(), 0xFFFFFFFFu);
        }
        QTRY_VERIFY(!ErrorHandler::Instance().GetMessages()->GetList().empty());
        QCOMPARE(ErrorHandler::Instance().GetMessages()->GetList().front()->GetText().section(
                     QLatin1Char('@'), 0, 3),
                 QStringLiteral("3@%1@errorhandling\\kvtextfile@37").arg(path));
        QVERIFY2(!QFile::exists(path), "a missing file was created");
        KvTextFile created(path, true);
        QVERIFY2(QFile::exists(path), "a file that may be missing was not created");
    }

    // The narrow overload writes the bytes, the wide one an address.
    void writtenLines()
    {
        const QString path = m_dir.filePath(QStringLiteral("lines.txt"));
        {
            KvTextFile file(path, true);
            QCOMPARE(file.WriteLine(std::string("abc")), static_cast<unsigned short>(5));
            QCOMPARE(file.AppendLine(std::string(70000, 'x')), static_cast<unsigned short>(70002 - 65536));
            QCOMPARE(file.WriteLine(QStringLiteral("hello")), static_cast<unsigned short>(7));
            file.WriteLine(std::string("d\xE9"
                                       "f"));
        }
        const QList<QByteArray> lines = bytes(path).split('\n');
        QVERIFY2(lines.value(2).startsWith("0x"), lines.value(2).constData());
        QCOMPARE(lines.value(3), QByteArray("d\xE9"
                                            "f"));
        KvTextFile file(path, false);
        QCOMPARE(file.ReadLine(), QStringLiteral("abc"));
        for (int i = 0; i < 3; ++i)
            file.ReadLine();
        QCOMPARE(file.ReadLine(), QString());
        QVERIFY(file.atEnd());
    }

    void logFileOverwritesFromTheStart()
    {
        const QString path = m_dir.filePath(QStringLiteral("Logger.txt"));
        LogFile(path).AddMessage("first long line");
        QVERIFY(LogFile(path).AddMessage("new"));
        QCOMPARE(bytes(path), QByteArray("new\nt long line\n"));
    }
};

QTEST_GUILESS_MAIN(TestMessageList)
#include "tst_messagelist.moc"
