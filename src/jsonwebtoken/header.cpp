#include "jsonwebtoken/header.h"

#include "jsonwebtoken/members_p.h"

#include <array>

namespace jsonWebToken {

namespace {

// Nearly every token carries one of the four headers {"alg":...,"typ":"JWT"}.
// Their segments are encoded once, by the same encoder, so that writing or
// reading one costs no JSON round trip.
struct StandardHeader
{
    Members::Map members;
    QByteArray segment;
};

const std::array<StandardHeader, 4>& standardHeaders()
{
    static const std::array<StandardHeader, 4> all = [] {
        std::array<StandardHeader, 4> result;
        for (const auto algorithm : SignatureAlgorithm::values()) {
            StandardHeader& header = result[algorithm];
            header.members.insert(QStringLiteral("alg"), Members::toStored(algorithm));
            header.members.insert(QStringLiteral("typ"), QStringLiteral("JWT"));
            header.segment = Members::encode(header.members);
        }
        return result;
    }();
    return all;
}

// Not map equality: QVariant's operator== converts, so it would match an
// "alg" stored as another type that encodes differently.
const QByteArray* standardSegment(const Members::Map& members)
{
    if (members.size() != 2)
        return nullptr;
    const auto alg = members.cbegin();
    const auto typ = std::next(alg);
    if (alg.key() != QLatin1String("alg") || typ.key() != QLatin1String("typ") ||
        alg->userType() != QMetaType::QString || typ->userType() != QMetaType::QString ||
        typ->toString() != QLatin1String("JWT"))
        return nullptr;
    const QString text = alg->toString();
    for (const auto algorithm : SignatureAlgorithm::values()) {
        if (text == SignatureAlgorithm::toString(algorithm))
            return &standardHeaders()[algorithm].segment;
    }
    return nullptr;
}

} // namespace

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
    if (const QByteArray* segment = standardSegment(m_members))
        return *segment;
    return Members::encode(m_members);
}

boost::optional<Header> Header::fromValue(const QByteArray& segment)
{
    for (const StandardHeader& standard : standardHeaders()) {
        if (segment == standard.segment)
            return Header(standard.members);
    }
    auto members = Members::decode(segment);
    if (!members)
        return boost::none;
    return Header(std::move(*members));
}

} // namespace jsonWebToken
