#ifndef KVBASE_ERRORHANDLING_MESSAGELIST_H
#define KVBASE_ERRORHANDLING_MESSAGELIST_H

/// \file errorhandling/messagelist.h
/// \brief The bounded list of recent messages that the error handler fills.

#include "kvbase_export.h"

#include <QString>
#include <QTime>

#include <deque>
#include <memory>

/// Result of MessageList::AddMessage, which always accepts.
enum KvMsgListReturnType
{
    KvMsgListAdded = 1 ///< the message was added
};

/// One recorded message: text, local time of day (millisecond resolution) and
/// message level (1 error, 2..254 warning, 255 information). A plain value.
class KVBASE_EXPORT Message
{
public:
    /// Empty text, the current time, level 255.
    Message();
    /// \param text  the message text
    /// \param time  local time of day
    /// \param level 1 error, 2..254 warning, 255 information
    Message(QString text, const QTime& time, unsigned char level);
    /// \param other the message to copy
    Message(const Message& other);
    /// \param other the message to copy
    /// \return this message
    Message& operator=(const Message& other);
    // Virtual although the library derives nothing from it: it is exported as
    // polymorphic, so applications may delete a subclass through a base pointer.
    virtual ~Message();

    /// \return the text
    QString GetText() const { return m_strText; }
    /// \param text the new text
    void SetText(QString text) { m_strText = std::move(text); }
    /// \return the local time of day
    const QTime& GetTimeStamp() const { return m_TimeStamp; }
    /// \param time local time of day
    void SetTimeStamp(const QTime& time) { m_TimeStamp = time; }
    /// \return the level: 1 error, 2..254 warning, 255 information
    unsigned char GetWarningLevel() const { return m_nWarningLevel; }

    /// \param other the message to compare with
    /// \return true when time, text (case-sensitive) and level are equal
    bool operator==(const Message& other) const;
    /// \param other the message to compare with
    /// \return the negation of operator==()
    bool operator!=(const Message& other) const;
    // The orderings look at the time of day only, so messages of different
    // days order by clock time and equal times are neither less nor greater.
    /// \param other the message to compare with
    /// \return true when this time of day is earlier (texts are not compared)
    bool operator<(const Message& other) const { return m_TimeStamp < other.m_TimeStamp; }
    /// \param other the message to compare with
    /// \return true when this time of day is earlier or equal
    bool operator<=(const Message& other) const { return m_TimeStamp <= other.m_TimeStamp; }
    /// \param other the message to compare with
    /// \return true when this time of day is later
    bool operator>(const Message& other) const { return m_TimeStamp > other.m_TimeStamp; }
    /// \param other the message to compare with
    /// \return true when this time of day is later or equal
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
///
/// \code
/// MessageList recent(3);
/// for (const char* text : {"A", "B", "C", "D"})
///     recent.AddMessage(std::make_shared<Message>(QString::fromLatin1(text), QTime::currentTime(), 255));
/// recent.GetCurrentMessage()->GetText();   // "D"; the list holds D, C, B
/// \endcode
class KVBASE_EXPORT MessageList
{
public:
    /// Entries, newest first; an entry may be an empty pointer (see SetMaxNumber()).
    using List = std::deque<std::shared_ptr<Message>>;

    /// An empty list of at most 100 entries.
    MessageList();
    /// An empty list.
    /// \param maxNumber the most entries kept; 0 keeps every entry
    explicit MessageList(unsigned int maxNumber);
    /// Shares the other list's Message objects.
    /// \param other the list to copy
    MessageList(const MessageList& other);
    /// Shares the other list's Message objects.
    /// \param other the list to copy
    /// \return this list
    MessageList& operator=(const MessageList& other);
    // Virtual although the library derives nothing from it: it is exported as
    // polymorphic, so applications may delete a subclass through a base pointer.
    virtual ~MessageList();

    /// Drops the oldest entry when the list holds exactly the maximum, then
    /// puts the new one in front.
    /// \param message the new entry (may be empty)
    /// \return always KvMsgListAdded
    KvMsgListReturnType AddMessage(std::shared_ptr<Message> message);
    /// Resizes the list to exactly n entries: the oldest are dropped, missing
    /// ones are appended as empty pointers.
    /// \param n the new maximum and size
    void SetMaxNumber(unsigned int n);
    /// \return the most entries kept; 0 for no limit
    unsigned int GetMaxNumber() const { return m_nMaxNumber; }

    /// \return the entry at the cursor, or an empty pointer at or past the end
    std::shared_ptr<Message> GetCurrentMessage() const;
    /// \return the cursor, 0 for the newest entry
    unsigned char GetCurrentPosition() const { return m_nCurrentPosition; }
    /// \param position the new cursor, 0..255
    void SetCurrentPosition(unsigned char position) { m_nCurrentPosition = position; }

    /// \return the entries, newest first
    const List& GetList() const { return m_List; }
    /// Removes every entry; the maximum and the cursor stay.
    /// \return always true
    bool DeleteMessageList();

private:
    unsigned int m_nMaxNumber = 100;
    List m_List;
    unsigned char m_nCurrentPosition = 0;
};

#endif
