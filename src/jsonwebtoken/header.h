#ifndef KVBASE_JSONWEBTOKEN_HEADER_H
#define KVBASE_JSONWEBTOKEN_HEADER_H

/// \file jsonwebtoken/header.h
/// \brief The JOSE header of a token.

#include "kvbase_export.h"

#include "jsonwebtoken/enums.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <boost/optional.hpp>

namespace jsonWebToken {

/// The value type of Header::get<N> and with<N> for each HeaderParameter::Type N,
/// as its member `Type`: SignatureAlgorithm::Type for Algorithm, QStringList
/// for AudienceList, QString for the others.
/// \tparam N a HeaderParameter::Type
template <int N>
struct HeaderParameterValue;
/// \cond specialisations
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
/// \endcond

/// The JOSE header of a token: a JSON object with typed access to the
/// registered parameters and raw access to any other member. A new header is
/// {"alg":"None","typ":"JWT"}. A value class (implicitly shared, cheap to
/// copy); reentrant, one thread per object.
///
/// \code
/// Header header;
/// header.with<HeaderParameter::Algorithm>(SignatureAlgorithm::HS256);
/// header.value();                                  // base64url of {"alg":"HS256","typ":"JWT"}
/// header.get<HeaderParameter::TokenType>();        // "JWT"
/// \endcode
class KVBASE_EXPORT Header
{
public:
    /// {"alg":"None","typ":"JWT"}.
    Header();
    /// \param other the header to copy
    Header(const Header& other);
    /// \param other the header to take; left valid but unspecified
    Header(Header&& other) noexcept;
    /// \param other the header to copy
    /// \return this header
    Header& operator=(const Header& other);
    /// \param other the header to take; left valid but unspecified
    /// \return this header
    Header& operator=(Header&& other) noexcept;
    ~Header();

    /// \param other the header to compare with
    /// \return true for the same members with equal values (QVariant comparison)
    bool operator==(const Header& other) const;
    /// \param other the header to compare with
    /// \return the negation of operator==()
    bool operator!=(const Header& other) const;

    /// A registered parameter, typed.
    /// \tparam N a HeaderParameter::Type
    /// \return the value; empty when the member is absent. An "alg" with an
    ///         unknown text reads as None.
    template <int N>
    boost::optional<typename HeaderParameterValue<N>::Type> get() const;
    /// Sets the member, replacing any earlier one of that name (Audience and
    /// AudienceList replace each other).
    /// \tparam N a HeaderParameter::Type
    /// \param value the value, stored as its JSON form
    /// \return this header
    template <int N>
    Header& with(typename HeaderParameterValue<N>::Type value);

    /// \param parameter a registered parameter
    /// \return get<N>() in a QVariant (the enum value for Algorithm); invalid
    ///         when absent or when `parameter` is outside the enum
    QVariant get(HeaderParameter::Type parameter) const;
    /// \param name any JSON member name
    /// \return the stored member as it is, or an invalid QVariant
    QVariant getParam(const QString& name) const;
    /// Sets any member, replacing an earlier one of that name. Integers are
    /// written through a double, so beyond 2^53 they lose their last digits.
    /// \param name  the JSON member name
    /// \param value a value QJsonValue::fromVariant() can write
    /// \return this header
    Header& withParam(QString name, QVariant value);

    /// \return the token segment: compact JSON with sorted names, base64url without padding
    QByteArray value() const;
    /// Reads a segment. Never throws.
    /// \param segment base64 (the standard alphabet; "-" and "_" are skipped) of a JSON object
    /// \return the header; empty unless the segment holds a non-empty JSON object
    static boost::optional<Header> fromValue(const QByteArray& segment);

private:
    explicit Header(QMap<QString, QVariant> members);

    QMap<QString, QVariant> m_members;
};

} // namespace jsonWebToken

#endif
