#include "errorhandling/messagelist.h"

Message::Message() : m_TimeStamp(QTime::currentTime()) {}

Message::Message(QString text, const QTime& time, unsigned char level)
    : m_strText(std::move(text)), m_TimeStamp(time), m_nWarningLevel(level)
{
}

Message::Message(const Message& other) = default;
Message& Message::operator=(const Message& other) = default;
Message::~Message() = default;

bool Message::operator==(const Message& other) const
{
    return m_TimeStamp == other.m_TimeStamp && m_strText == other.m_strText &&
           m_nWarningLevel == other.m_nWarningLevel;
}

bool Message::operator!=(const Message& other) const
{
    return !(*this == other);
}

MessageList::MessageList() = default;

MessageList::MessageList(unsigned int maxNumber) : m_nMaxNumber(maxNumber) {}

MessageList::MessageList(const MessageList& other) = default;
MessageList& MessageList::operator=(const MessageList& other) = default;
MessageList::~MessageList() = default;

KvMsgListReturnType MessageList::AddMessage(std::shared_ptr<Message> message)
{
    // Only an exact match trims, which is what makes a maximum of 0 unbounded.
    if (!m_List.empty() && m_List.size() == m_nMaxNumber)
        m_List.pop_back();
    m_List.push_front(std::move(message));
    return KvMsgListAdded;
}

void MessageList::SetMaxNumber(unsigned int n)
{
    m_nMaxNumber = n;
    m_List.resize(n);
}

std::shared_ptr<Message> MessageList::GetCurrentMessage() const
{
    if (m_nCurrentPosition >= m_List.size())
        return nullptr;
    return m_List[m_nCurrentPosition];
}

bool MessageList::DeleteMessageList()
{
    m_List.clear();
    return true;
}
