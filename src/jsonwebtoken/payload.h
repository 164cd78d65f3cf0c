#ifndef KVBASE_JSONWEBTOKEN_PAYLOAD_H
#define KVBASE_JSONWEBTOKEN_PAYLOAD_H

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

/// The value type of Payload::get<N> and with<N> for each Claim::Type N.
template <int N>
struct ClaimValue;
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

/// The claims set of a token: a JSON object with typed access to the
/// registered claims and raw access to any other member. Times are stored as
/// whole seconds since 1970-01-01T00:00:00Z (milliseconds are truncated toward
/// zero) and read back in UTC. A value class (implicitly shared, cheap to
/// copy); reentrant, one thread per object.
class KVBASE_EXPORT Payload
{
public:
    Payload();
    Payload(const Payload& other);
    Payload(Payload&& other) noexcept;
    Payload& operator=(const Payload& other);
    Payload& operator=(Payload&& other) noexcept;
    ~Payload();

    bool operator==(const Payload& other) const;
    bool operator!=(const Payload& other) const;

    /// Empty when the claim is absent. A present time claim always reads as a
    /// time: a member that is not a number reads as the epoch, and one beyond
    /// the range of QDateTime as its nearest end.
    template <int N>
    boost::optional<typename ClaimValue<N>::Type> get() const;
    /// Sets the claim, replacing any earlier one of that name (Audience and
    /// AudienceList replace each other).
    template <int N>
    Payload& with(typename ClaimValue<N>::Type value);

    /// get<N>() in a QVariant; invalid when absent or when `claim` is outside the enum.
    QVariant get(Claim::Type claim) const;
    /// The stored member as it is, or an invalid QVariant.
    QVariant getClaim(const QString& name) const;
    Payload& withClaim(QString name, QVariant value);

    /// The token segment: compact JSON with sorted names, base64url without padding.
    QByteArray value() const;
    /// Reads a segment; empty unless it holds a non-empty JSON object. Never throws.
    static boost::optional<Payload> fromValue(const QByteArray& segment);

private:
    explicit Payload(QMap<QString, QVariant> members);

    QMap<QString, QVariant> m_members;
};

} // namespace jsonWebToken

#endif
