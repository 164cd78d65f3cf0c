#include "errorhandling/errorhandler.h"
#include "errorhandling/kvexception.h"
#include "errorhandling/kvtextfile.h"
#include "errorhandling/messagelist.h"

#include "kvtest.h"

#include <QTemporaryDir>

using KvTest::field;

// The records the error handler keeps: exceptions and their texts, the message
// list, and the text files it writes.
class TestKvException : public QObject
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
    void initTestCase() { KvTest::pinLocaleAndZone(); }
    void init() { KvTest::pinLocaleAndZone(); }

    void texts_data() { KvTest::addRows("errorhandling/texts.txt", "exception format level text"); }

    void texts()
    {
        KvException e = field("exception") == "default"
                            ? KvException()
                            : KvException(std::string("Division by zero"), "calc", "Calc", "Run", 42, 7);
        e.SetErrorTime(QTime(10, 15, 2));
        const auto format = static_cast<KvExceptionTextFormat>(field("format").toInt());
        const auto level = static_cast<unsigned char>(field("level").toInt());
        QCOMPARE(e.GetExceptionWideText(format, level), field("text"));
        QCOMPARE(e.GetExceptionAsciiText(format, level), field("text").toStdString());
    }

    void copiesKeepTheTimeAndNarrowTextsAreUtf8AndLatin1()
    {
        const KvException e(std::string(u8"Größe"), "caf\xE9", nullptr, "Run", 3, 9);
        QCOMPARE(e.GetErrorReason() + '|' + e.GetFileName() + '|' + e.ClassName(),
                 QString::fromUtf8("Größe|café|"));
        KvException copy;
        copy = e;
        QVERIFY2(copy == e, "a copy differs from its source");
        copy.SetErrorTime(e.GetErrorTime().addSecs(1));
        QVERIFY2(copy != e, "exceptions a second apart compare equal");
    }

    // An exception's time of day is the local time of its making, also right after the
    // zone changed: it lies between QTime::currentTime() just before and just after.
    void timeIsTheLocalTimeOfMaking_data()
    {
        QTest::addColumn<QByteArray>("zone");
        for (const char* zone : {"Europe/Berlin", "Asia/Kolkata", "Australia/Lord_Howe", "America/St_Johns"})
            QTest::newRow(zone) << QByteArray(zone);
    }
    void timeIsTheLocalTimeOfMaking()
    {
        QFETCH(QByteArray, zone);
        KvException(); // made in UTC
        KvTest::pinLocaleAndZone(zone.constData());
        for (int i = 0; i < 1000; ++i) {
            const QTime before = QTime::currentTime();
            const QTime made = KvException().GetErrorTime();
            const QTime after = QTime::currentTime();
            QVERIFY2(after < before || (before <= made && made <= after),
                     qPrintable(made.toString("hh:mm:ss.zzz") + " not within " +
                                before.toString("hh:mm:ss.zzz") + " to " + after.toString("hh:mm:ss.zzz")));
        }
    }

    void messageList_data()
    {
        KvTest::addRows("errorhandling/messagelists.txt", "maximum added resized addedThen list");
    }

    void messageList()
    {
        MessageList messages(field("maximum").toUInt());
        add(messages, field("added"));
        if (!field("resized").isEmpty())
            messages.SetMaxNumber(field("resized").toUInt());
        add(messages, field("addedThen"));
        const MessageList copy(messages); // copies share the messages
        QString texts;
        for (const auto& entry : copy.GetList())
            texts += entry ? entry->GetText() : "-";
        QCOMPARE(texts, field("list"));
        QCOMPARE(messages.GetCurrentMessage(), messages.GetList().front());
    }

    void messagesOrderByTimeOfDayOnly()
    {
        const Message a("a", QTime(8, 0), 1);
        const Message b("b", QTime(8, 0), 1);
        QVERIFY2(!(a < b) && !(a > b) && a <= b && a >= b, "equal times do not order as equal");
        QVERIFY2(a != b, "different texts compare equal");
        QVERIFY2(a < Message("a", QTime(23, 0), 1), "a later time does not order after");
    }

    void missingFileThrowsAfterATrace()
    {
        const QString path = m_dir.filePath("missing.txt");
        try {
            KvTextFile file(path, false);
            QFAIL("a missing file was opened");
        } catch (const KvException& e) {
            QCOMPARE(
                e.GetExceptionWideText(FieldList, 1).section('@', 1, 5),
                QString("File does not exist - see Details@errorhandling\\kvtextfile@39@KvTextFile@ctor"));
            QCOMPARE(e.GetErrorId(), 0xFFFFFFFFu);
        }
        QTRY_VERIFY(!ErrorHandler::Instance().GetMessages()->GetList().empty());
        const QString trace = ErrorHandler::Instance().GetMessages()->GetList().front()->GetText();
        QCOMPARE(trace.section('@', 0, 3), "3@" + path + "@errorhandling\\kvtextfile@37");
        QVERIFY2(!QFile::exists(path), "a missing file was created");
        KvTextFile created(path, true);
        QVERIFY2(QFile::exists(path), "a file that may be missing was not created");
    }

    // The narrow overload writes the bytes, the wide one an address; the
    // result is the length + 2, cut to 16 bits.
    void writtenLines()
    {
        const QString path = m_dir.filePath("lines.txt");
        {
            KvTextFile file(path, true);
            QCOMPARE(file.WriteLine(std::string("abc")), static_cast<unsigned short>(5));
            QCOMPARE(file.AppendLine(std::string(70000, 'x')), static_cast<unsigned short>(70002 - 65536));
            QCOMPARE(file.WriteLine(QString("hello")), static_cast<unsigned short>(7));
            file.WriteLine(std::string("d\xE9z"));
        }
        const QList<QByteArray> lines = bytes(path).split('\n');
        QVERIFY2(lines.value(2).startsWith("0x"), lines.value(2).constData());
        QCOMPARE(lines.value(3), QByteArray("d\xE9z"));
        KvTextFile file(path, false);
        QCOMPARE(file.ReadLine(), QString("abc"));
        for (int i = 0; i < 3; ++i)
            file.ReadLine();
        QCOMPARE(file.ReadLine(), QString());
        QVERIFY(file.atEnd());
    }

    void logFileOverwritesFromTheStart()
    {
        const QString path = m_dir.filePath("Logger.txt");
        LogFile(path).AddMessage("first long line");
        QVERIFY(LogFile(path).AddMessage("new"));
        QCOMPARE(bytes(path), QByteArray("new\nt long line\n"));
    }
};

QTEST_GUILESS_MAIN(TestKvException)
#include "tst_kvexception.moc"
