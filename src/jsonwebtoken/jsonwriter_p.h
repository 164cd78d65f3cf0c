#ifndef KVBASE_JSONWEBTOKEN_JSONWRITER_P_H
#define KVBASE_JSONWEBTOKEN_JSONWRITER_P_H

// Compact JSON exactly as QJsonDocument::toJson(Compact) writes it, without
// building a document, and the reading of the same form back: what sign(),
// Token and their segments share. Not part of the API.

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QVariant>

#include <boost/optional.hpp>

#include <string>

namespace jsonWebToken {
namespace Json {

void writeString(std::string& out, const QString& text);
void writeValue(std::string& out, const QJsonValue& value);
void writeObject(std::string& out, const QJsonObject& object);

/// Appends the base64url form, without padding, of the object's compact JSON.
void appendObject(QByteArray& out, const QJsonObject& object);

/// Appends the base64url form, without padding, of what
/// QJsonDocument(QJsonObject::fromVariantMap(members)).toJson(Compact) would
/// be. False, with `out` unchanged, when a name is not ASCII or a value is of
/// a type whose conversion is left to Qt; the caller then asks Qt.
bool appendVariantMap(QByteArray& out, const QMap<QString, QVariant>& members);

/// The members of `json` as QJsonDocument::fromJson(json).object()
/// .toVariantMap() gives them, for the form appendVariantMap writes of
/// strings, integers and booleans alone: no blanks, names in ascending order,
/// no escapes, integers below 2^53 in their shortest form. Empty when `json`
/// is not of that form (including when Qt would refuse it); the caller then
/// asks Qt. What this accepts appendVariantMap writes back byte for byte.
boost::optional<QMap<QString, QVariant>> readCanonicalObject(const char* json, int size);

} // namespace Json
} // namespace jsonWebToken

#endif
