#ifndef KVBASE_JSONWEBTOKEN_HEADER_H
#define KVBASE_JSONWEBTOKEN_HEADER_H

#include "kvbase_export.h"

#include "jsonwebtoken/enums.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <boost/optional.hpp>

namespace jsonWebToken {

/// The value type of Header::get<N> and with<N> for each HeaderParameter::Type N.
template <int N>
struct HeaderParameterValue;
template <>
struct HeaderParameterValue<HeaderParameter::Algorithm>
{
    using Type = SignatureAlgorithm::Type;
};
template <>
struct HeaderParameterValue<HeaderParameter::Audience>
{
    using Type = QString;
};
template <>
struct HeaderParameterValue<HeaderParameter::AudienceList>
{
    using Type = QStringList;
};
template <>
struct HeaderParameterValue<HeaderParameter::ContentType>
{
    using Type = QString;
};
template <>
struct HeaderParameterValue<HeaderParameter::Issuer>
{
    using Type = QString;
};
template <>
struct HeaderParameterValue<HeaderParameter::Subject>
{
    using Type = QString;
};
template <>
struct HeaderParameterValue<HeaderParameter::TokenType>
{
    using Type = QString;
};

/// The JOSE header of a token: a JSON object with typed access to the
/// registered parameters and raw access to any other member. A new header is
/// {"alg":"None","typ":"JWT"}. A value class (implicitly shared, cheap to
/// copy); reentrant, one thread per object.
class KVBASE_EXPORT Header
{
public:
    Header();
    Header(const Header& other);
    Header(Header&& other) noexcept;
    Header& operator=(const Header& other);
    Header& operator=(Header&& other) noexcept;
    ~Header();

    bool operator==(const Header& other) const;
    bool operator!=(const Header& other) const;

    /// Empty when the member is absent. An "alg" with an unknown text reads as None.
    template <int N>
    boost::optional<typename HeaderParameterValue<N>::Type> get() const;
    /// Sets the member, replacing any earlier one of that name (Audience and
    /// AudienceList replace each other).
    template <int N>
    Header& with(typename HeaderParameterValue<N>::Type value);

    /// get<N>() in a QVariant (the enum value for Algorithm); invalid when
    /// absent or when `parameter` is outside the enum.
    QVariant get(HeaderParameter::Type parameter) const;
    /// The stored member as it is, or an invalid QVariant.
    QVariant getParam(const QString& name) const;
    Header& withParam(QString name, QVariant value);

    /// The token segment: compact JSON with sorted names, base64url without padding.
    QByteArray value() const;
    /// Reads a segment; empty unless it holds a non-empty JSON object. Never throws.
    static boost::optional<Header> fromValue(const QByteArray& segment);

private:
    explicit Header(QMap<QString, QVariant> members);

    QMap<QString, QVariant> m_members;
};

} // namespace jsonWebToken

#endif
