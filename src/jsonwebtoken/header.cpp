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

using Parameters = Members::Typed<HeaderParameter, HeaderParameterValue>;

template <int N>
boost::optional<typename HeaderParameterValue<N>::Type> Header::get() const
{
    return Parameters::get<N>(m_members);
}

template <int N>
Header& Header::with(typename HeaderParameterValue<N>::Type value)
{
    Parameters::with<N>(m_members, std::move(value));
    return *this;
}

KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 0)
KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 1)
KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 2)
KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 3)
KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 4)
KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 5)
KVBASE_JWT_TYPED_MEMBER(Header, HeaderParameterValue, 6)

QVariant Header::get(HeaderParameter::Type parameter) const
{
    return Parameters::get<HeaderParameter::TokenType + 1>(m_members, parameter);
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
