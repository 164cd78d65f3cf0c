#ifndef KVBASE_JSONWEBTOKEN_MEMBERS_P_H
#define KVBASE_JSONWEBTOKEN_MEMBERS_P_H

// Storage and encoding shared by Header and Payload; not part of the API.

#include "jsonwebtoken/enums.h"

#include <QDateTime>
#include <QMap>
#include <QStringList>
#include <QVariant>

#include <boost/optional.hpp>

#include <utility>

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

// The typed members of Header (Names = HeaderParameter, Values =
// HeaderParameterValue) and Payload (Claim, ClaimValue): member N is stored
// under Names::toString(N) and read and written as Values<N>::Type.
template <typename Names, template <int> class Values>
struct Typed
{
    template <int N>
    static boost::optional<typename Values<N>::Type> get(const Map& members)
    {
        return read<typename Values<N>::Type>(members, Names::toString(typename Names::Type(N)));
    }

    template <int N>
    static void with(Map& members, typename Values<N>::Type value)
    {
        members.insert(Names::toString(typename Names::Type(N)), toStored(value));
    }

    // get<n>() for a run-time n below Count, in a QVariant; invalid when the
    // member is absent or n is out of range.
    template <int Count>
    static QVariant get(const Map& members, int n)
    {
        return getAny(members, n, std::make_integer_sequence<int, Count>());
    }

private:
    template <int... N>
    static QVariant getAny(const Map& members, int n, std::integer_sequence<int, N...>)
    {
        QVariant result;
        (void)((n == N && (result = wrap(get<N>(members)), true)) || ...);
        return result;
    }
};

// Exports the typed accessors get<N> and with<N> of Class (Header or Payload).
#define KVBASE_JWT_TYPED_MEMBER(Class, Values, N)                                                            \
    template KVBASE_EXPORT boost::optional<Values<N>::Type> Class::get<N>() const;                           \
    template KVBASE_EXPORT Class& Class::with<N>(Values<N>::Type);

/// Compact JSON with sorted member names, base64url without padding.
QByteArray encode(const Map& members);
/// Empty unless the segment holds a non-empty JSON object.
boost::optional<Map> decode(const QByteArray& segment);

} // namespace Members
} // namespace jsonWebToken

#endif
