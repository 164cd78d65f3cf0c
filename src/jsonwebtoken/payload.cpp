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

using Claims = Members::Typed<Claim, ClaimValue>;

template <int N>
boost::optional<typename ClaimValue<N>::Type> Payload::get() const
{
    return Claims::get<N>(m_members);
}

template <int N>
Payload& Payload::with(typename ClaimValue<N>::Type value)
{
    Claims::with<N>(m_members, std::move(value));
    return *this;
}

KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 0)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 1)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 2)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 3)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 4)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 5)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 6)
KVBASE_JWT_TYPED_MEMBER(Payload, ClaimValue, 7)

QVariant Payload::get(Claim::Type claim) const
{
    return Claims::get<Claim::Subject + 1>(m_members, claim);
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
