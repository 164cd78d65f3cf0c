#ifndef KVBASE_JSONWEBTOKEN_PAYLOAD_H
#define KVBASE_JSONWEBTOKEN_PAYLOAD_H

/// \file jsonwebtoken/payload.h
/// \brief The claims set of a token.

#include "kvbase_export.h"

#include "jsonwebtoken/enums.h"

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <boost/optional.hpp>

namespace jsonWebToken {

/// The value type of Payload::get<N> and with<N> for each Claim::Type N, as
/// its member `Type`: QDateTime for the three times, QStringList for
/// AudienceList, QString for the others.
/// \tparam N a Claim::Type
template <int N>
struct ClaimValue;
/// \cond specialisations
template <>
struct ClaimValue<Claim::Audience>
{
    using Type = QString;
};
template <>
struct ClaimValue<Claim::AudienceList>
{
    using Type = QStringList;
};
template <>
struct ClaimValue<Claim::ExpirationTime>
{
    using Type = QDateTime;
};
template <>
struct ClaimValue<Claim::IssuedAt>
{
    using Type = QDateTime;
};
template <>
struct ClaimValue<Claim::Issuer>
{
    using Type = QString;
};
template <>
struct ClaimValue<Claim::JwtId>
{
    using Type = QString;
};
template <>
struct ClaimValue<Claim::NotBefore>
{
    using Type = QDateTime;
};
template <>
struct ClaimValue<Claim::Subject>
{
    using Type = QString;
};
/// \endcond

/// The claims set of a token: a JSON object with typed access to the
/// registered claims and raw access to any other member. Times are stored as
/// whole seconds since 1970-01-01T00:00:00Z (milliseconds are truncated toward
/// zero) and read back in UTC. A value class (implicitly shared, cheap to
/// copy); reentrant, one thread per object.
///
/// \code
/// Payload claims = Payload()
///                      .with<Claim::Issuer>(QStringLiteral("dispatch"))
///                      .with<Claim::ExpirationTime>(QDateTime::currentDateTimeUtc().addSecs(300));
/// claims.get<Claim::Issuer>();          // "dispatch"
/// claims.get<Claim::Subject>();         // empty
/// \endcode
class KVBASE_EXPORT Payload
{
public:
    /// No claims.
    Payload();
    /// \param other the payload to copy
    Payload(const Payload& other);
    /// \param other the payload to take; left valid but unspecified
    Payload(Payload&& other) noexcept;
    /// \param other the payload to copy
    /// \return this payload
    Payload& operator=(const Payload& other);
    /// \param other the payload to take; left valid but unspecified
    /// \return this payload
    Payload& operator=(Payload&& other) noexcept;
    ~Payload();

    /// \param other the payload to compare with
    /// \return true for the same members with equal values (QVariant comparison)
    bool operator==(const Payload& other) const;
    /// \param other the payload to compare with
    /// \return the negation of operator==()
    bool operator!=(const Payload& other) const;

    /// A registered claim, typed.
    /// \tparam N a Claim::Type
    /// \return the value; empty when the claim is absent. A present time claim
    ///         always reads as a time: a member that is not a number reads as
    ///         the epoch, and one beyond the range of QDateTime as its nearest end.
    template <int N>
    boost::optional<typename ClaimValue<N>::Type> get() const;
    /// Sets the claim, replacing any earlier one of that name (Audience and
    /// AudienceList replace each other).
    /// \tparam N a Claim::Type
    /// \param value the value; times are stored in whole seconds
    /// \return this payload
    template <int N>
    Payload& with(typename ClaimValue<N>::Type value);

    /// \param claim a registered claim
    /// \return get<N>() in a QVariant; invalid when absent or when `claim` is outside the enum
    QVariant get(Claim::Type claim) const;
    /// \param name any JSON member name
    /// \return the stored member as it is, or an invalid QVariant
    QVariant getClaim(const QString& name) const;
    /// Sets any member, replacing an earlier one of that name. Integers are
    /// written through a double, so beyond 2^53 they lose their last digits.
    /// \param name  the JSON member name
    /// \param value a value QJsonValue::fromVariant() can write
    /// \return this payload
    Payload& withClaim(QString name, QVariant value);

    /// \return the token segment: compact JSON with sorted names, base64url without padding
    QByteArray value() const;
    /// Reads a segment. Never throws.
    /// \param segment base64 (the standard alphabet; "-" and "_" are skipped) of a JSON object
    /// \return the payload; empty unless the segment holds a non-empty JSON object
    static boost::optional<Payload> fromValue(const QByteArray& segment);

private:
    explicit Payload(QMap<QString, QVariant> members);

    QMap<QString, QVariant> m_members;
};

} // namespace jsonWebToken

#endif
