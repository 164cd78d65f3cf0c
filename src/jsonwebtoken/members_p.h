#ifndef KVBASE_JSONWEBTOKEN_MEMBERS_P_H
#define KVBASE_JSONWEBTOKEN_MEMBERS_P_H

// Storage and encoding shared by Header and Payload; not part of the API.

#include "jsonwebtoken/enums.h"

#include <QDateTime>
#include <QMap>
#include <QStringList>
#include <QVariant>

#include <boost/optional.hpp>

namespace jsonWebToken {
namespace Members {

using Map = QMap<QString, QVariant>;

QVariant toStored(const QString& value);
QVariant toStored(const QStringList& value);
/// The algorithm's text, so "alg" serialises as e.g. "HS256".
QVariant toStored(SignatureAlgorithm::Type value);
/// Whole seconds since the epoch, truncated toward zero.
QVariant toStored(const QDateTime& value);

template <typename T>
T fromStored(const QVariant& stored);
template <>
QString fromStored<QString>(const QVariant& stored);
template <>
QStringList fromStored<QStringList>(const QVariant& stored);
/// An unknown text reads as None.
template <>
SignatureAlgorithm::Type fromStored<SignatureAlgorithm::Type>(const QVariant& stored);
/// Anything that is not a number reads as the epoch.
template <>
QDateTime fromStored<QDateTime>(const QVariant& stored);

template <typename T>
boost::optional<T> read(const Map& members, const QString& name)
{
    const auto it = members.constFind(name);
    if (it == members.cend())
        return boost::none;
    return fromStored<T>(*it);
}

template <typename T>
QVariant wrap(const boost::optional<T>& value)
{
    return value ? QVariant::fromValue(*value) : QVariant();
}

/// Compact JSON with sorted member names, base64url without padding.
QByteArray encode(const Map& members);
/// Empty unless the segment holds a non-empty JSON object.
boost::optional<Map> decode(const QByteArray& segment);

} // namespace Members
} // namespace jsonWebToken

#endif
