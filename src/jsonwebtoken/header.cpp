#include "jsonwebtoken/header.h"

#include "jsonwebtoken/members_p.h"

namespace jsonWebToken {

Header::Header()
{
    with<HeaderParameter::TokenType>(QStringLiteral("JWT"));
    with<HeaderParameter::Algorithm>(SignatureAlgorithm::None);
}

Header::Header(QMap<QString, QVariant> members) : m_members(std::move(members)) {}

Header::Header(const Header& other) = default;
Header::Header(Header&& other) noexcept = default;
Header& Header::operator=(const Header& other) = default;
Header& Header::operator=(Header&& other) noexcept = default;
Header::~Header() = default;

bool Header::operator==(const Header& other) const
{
    return m_members == other.m_members;
}

bool Header::operator!=(const Header& other) const
{
    return !(*this == other);
}

template <int N>
boost::optional<typename HeaderParameterValue<N>::Type> Header::get() const
{
    return Members::read<typename HeaderParameterValue<N>::Type>(
        m_members, HeaderParameter::toString(HeaderParameter::Type(N)));
}

template <int N>
Header& Header::with(typename HeaderParameterValue<N>::Type value)
{
    m_members.insert(HeaderParameter::toString(HeaderParameter::Type(N)), Members::toStored(value));
    return *this;
}

#define KVBASE_HEADER_PARAMETER(N)                                                                           \
    template KVBASE_EXPORT boost::optional<HeaderParameterValue<N>::Type> Header::get<N>() const;            \
    template KVBASE_EXPORT Header& Header::with<N>(HeaderParameterValue<N>::Type);

KVBASE_HEADER_PARAMETER(0)
KVBASE_HEADER_PARAMETER(1)
KVBASE_HEADER_PARAMETER(2)
KVBASE_HEADER_PARAMETER(3)
KVBASE_HEADER_PARAMETER(4)
KVBASE_HEADER_PARAMETER(5)
KVBASE_HEADER_PARAMETER(6)
#undef KVBASE_HEADER_PARAMETER

QVariant Header::get(HeaderParameter::Type parameter) const
{
    switch (parameter) {
    case HeaderParameter::Algorithm:
        return Members::wrap(get<HeaderParameter::Algorithm>());
    case HeaderParameter::Audience:
        return Members::wrap(get<HeaderParameter::Audience>());
    case HeaderParameter::AudienceList:
        return Members::wrap(get<HeaderParameter::AudienceList>());
    case HeaderParameter::ContentType:
        return Members::wrap(get<HeaderParameter::ContentType>());
    case HeaderParameter::Issuer:
        return Members::wrap(get<HeaderParameter::Issuer>());
    case HeaderParameter::Subject:
        return Members::wrap(get<HeaderParameter::Subject>());
    case HeaderParameter::TokenType:
        return Members::wrap(get<HeaderParameter::TokenType>());
    }
    return QVariant();
}

QVariant Header::getParam(const QString& name) const
{
    return m_members.value(name);
}

Header& Header::withParam(QString name, QVariant value)
{
    m_members.insert(std::move(name), std::move(value));
    return *this;
}

QByteArray Header::value() const
{
    return Members::encode(m_members);
}

boost::optional<Header> Header::fromValue(const QByteArray& segment)
{
    auto members = Members::decode(segment);
    if (!members)
        return boost::none;
    return Header(std::move(*members));
}

} // namespace jsonWebToken
