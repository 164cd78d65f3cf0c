#include "jsonwebtoken/payload.h"

#include "jsonwebtoken/members_p.h"

namespace jsonWebToken {

Payload::Payload() = default;

Payload::Payload(QMap<QString, QVariant> members) : m_members(std::move(members)) {}

Payload::Payload(const Payload& other) = default;
Payload::Payload(Payload&& other) noexcept = default;
Payload& Payload::operator=(const Payload& other) = default;
Payload& Payload::operator=(Payload&& other) noexcept = default;
Payload::~Payload() = default;

bool Payload::operator==(const Payload& other) const
{
    return m_members == other.m_members;
}

bool Payload::operator!=(const Payload& other) const
{
    return !(*this == other);
}

template <int N>
boost::optional<typename ClaimValue<N>::Type> Payload::get() const
{
    return Members::read<typename ClaimValue<N>::Type>(m_members, Claim::toString(Claim::Type(N)));
}

template <int N>
Payload& Payload::with(typename ClaimValue<N>::Type value)
{
    m_members.insert(Claim::toString(Claim::Type(N)), Members::toStored(value));
    return *this;
}

#define KVBASE_PAYLOAD_CLAIM(N)                                                                              \
    template KVBASE_EXPORT boost::optional<ClaimValue<N>::Type> Payload::get<N>() const;                     \
    template KVBASE_EXPORT Payload& Payload::with<N>(ClaimValue<N>::Type);

KVBASE_PAYLOAD_CLAIM(0)
KVBASE_PAYLOAD_CLAIM(1)
KVBASE_PAYLOAD_CLAIM(2)
KVBASE_PAYLOAD_CLAIM(3)
KVBASE_PAYLOAD_CLAIM(4)
KVBASE_PAYLOAD_CLAIM(5)
KVBASE_PAYLOAD_CLAIM(6)
KVBASE_PAYLOAD_CLAIM(7)
#undef KVBASE_PAYLOAD_CLAIM

QVariant Payload::get(Claim::Type claim) const
{
    switch (claim) {
    case Claim::Audience:
        return Members::wrap(get<Claim::Audience>());
    case Claim::AudienceList:
        return Members::wrap(get<Claim::AudienceList>());
    case Claim::ExpirationTime:
        return Members::wrap(get<Claim::ExpirationTime>());
    case Claim::IssuedAt:
        return Members::wrap(get<Claim::IssuedAt>());
    case Claim::Issuer:
        return Members::wrap(get<Claim::Issuer>());
    case Claim::JwtId:
        return Members::wrap(get<Claim::JwtId>());
    case Claim::NotBefore:
        return Members::wrap(get<Claim::NotBefore>());
    case Claim::Subject:
        return Members::wrap(get<Claim::Subject>());
    }
    return QVariant();
}

QVariant Payload::getClaim(const QString& name) const
{
    return m_members.value(name);
}

Payload& Payload::withClaim(QString name, QVariant value)
{
    m_members.insert(std::move(name), std::move(value));
    return *this;
}

QByteArray Payload::value() const
{
    return Members::encode(m_members);
}

boost::optional<Payload> Payload::fromValue(const QByteArray& segment)
{
    auto members = Members::decode(segment);
    if (!members)
        return boost::none;
    return Payload(std::move(*members));
}

} // namespace jsonWebToken
