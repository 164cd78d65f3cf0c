#ifndef KVBASE_ERRORHANDLING_MESSAGELIST_H
#define KVBASE_ERRORHANDLING_MESSAGELIST_H

#include "kvbase_export.h"

#include <QString>
#include <QTime>

#include <deque>
#include <memory>

/// Result of MessageList::AddMessage, which always accepts.
enum KvMsgListReturnType
{
    KvMsgListAdded = 1
};

/// One recorded message: text, local time of day (millisecond resolution) and
/// message level (1 error, 2..254 warning, 255 information). A plain value.
class KVBASE_EXPORT Message
{
public:
    Message();
    Message(QString text, const QTime& time, unsigned char level);
    Message(const Message& other);
    Message& operator=(const Message& other);
    // Virtual although the library derives nothing from it: it is exported as
    // polymorphic, so applications may delete a subclass through a base pointer.
    virtual ~Message();

    QString GetText() const { return m_strText; }
    void SetText(QString text) { m_strText = std::move(text); }
    const QTime& GetTimeStamp() const { return m_TimeStamp; }
    void SetTimeStamp(const QTime& time) { m_TimeStamp = time; }
    unsigned char GetWarningLevel() const { return m_nWarningLevel; }

    bool operator==(const Message& other) const;
    bool operator!=(const Message& other) const;
    // The orderings look at the time of day only, so messages of different
    // days order by clock time and equal times are neither less nor greater.
    bool operator<(const Message& other) const { return m_TimeStamp < other.m_TimeStamp; }
    bool operator<=(const Message& other) const { return m_TimeStamp <= other.m_TimeStamp; }
    bool operator>(const Message& other) const { return m_TimeStamp > other.m_TimeStamp; }
    bool operator>=(const Message& other) const { return m_TimeStamp >= other.m_TimeStamp; }

private:
    QString m_strText;
    QTime m_TimeStamp;
    unsigned char m_nWarningLevel = 255;
};

/// The bounded list of recent messages, newest at the front, with a read
/// cursor. Copies share the Message objects. Not locked: one thread at a time.
///
/// The cursor is 8-bit, so entries past position 255 cannot be read through it.
/// A maximum of 0 leaves the list unbounded.
class KVBASE_EXPORT MessageList
{
public:
    using List = std::deque<std::shared_ptr<Message>>;

    MessageList();
    explicit MessageList(unsigned int maxNumber);
    MessageList(const MessageList& other);
    MessageList& operator=(const MessageList& other);
    // Virtual although the library derives nothing from it: it is exported as
    // polymorphic, so applications may delete a subclass through a base pointer.
    virtual ~MessageList();

    /// Drops the oldest entry when the list holds exactly the maximum, then
    /// puts the new one in front.
    KvMsgListReturnType AddMessage(std::shared_ptr<Message> message);
    /// Resizes the list to exactly n entries: the oldest are dropped, missing
    /// ones are appended as empty pointers.
    void SetMaxNumber(unsigned int n);
    unsigned int GetMaxNumber() const { return m_nMaxNumber; }

    /// The entry at the cursor, or an empty pointer at or past the end.
    std::shared_ptr<Message> GetCurrentMessage() const;
    unsigned char GetCurrentPosition() const { return m_nCurrentPosition; }
    void SetCurrentPosition(unsigned char position) { m_nCurrentPosition = position; }

    const List& GetList() const { return m_List; }
    bool DeleteMessageList();

private:
    unsigned int m_nMaxNumber = 100;
    List m_List;
    unsigned char m_nCurrentPosition = 0;
};

#endif
