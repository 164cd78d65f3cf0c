#ifndef KVBASE_JSONWEBTOKEN_JSON_P_H
#define KVBASE_JSONWEBTOKEN_JSON_P_H

// JSON reading for the token code; not part of the API.

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonParseError>

namespace jsonWebToken {
namespace Json {

/// Exactly what QJsonDocument::fromJson gives (error offsets included),
/// without its leak: of several members of one name Qt 5.15's parser keeps
/// one and loses the arrays and objects of the others, so {"a":[1],"a":2}
/// from the network would leak memory per token.
QJsonDocument parse(const QByteArray& json, QJsonParseError* error);

} // namespace Json
} // namespace jsonWebToken

#endif
