// Signs tokens for check_library_jws.py, which checks them with PyJWT. Reads a
// JSON array of requests {"alg", "pem" or "secret" (base64url), "payload",
// "header"} on standard input and writes a JSON array of tokens, or of
// {"error": text} where signing failed.
#include "jsonwebtoken/jws.h"

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

using namespace jsonWebToken;

int main()
{
    QFile in;
    QFile out;
    if (!in.open(stdin, QIODevice::ReadOnly) || !out.open(stdout, QIODevice::WriteOnly))
        return 2;
    QJsonArray tokens;
    for (const QJsonValue request : QJsonDocument::fromJson(in.readAll()).array()) {
        QString error;
        const QString secret = request[QLatin1String("secret")].toString();
        const auto key =
            secret.isEmpty()
                ? Key::fromPem(request[QLatin1String("pem")].toString().toLatin1(), &error)
                : Key::hmacSecret(QByteArray::fromBase64(secret.toLatin1(), QByteArray::Base64UrlEncoding));
        const auto algorithm = jwsAlgorithmFromName(request[QLatin1String("alg")].toString());
        const QByteArray token = key && algorithm
                                     ? sign(request[QLatin1String("payload")].toObject(), *algorithm, *key,
                                            request[QLatin1String("header")].toObject(), &error)
                                     : QByteArray();
        if (token.isEmpty())
            tokens.append(QJsonObject{{QStringLiteral("error"), error}});
        else
            tokens.append(QString::fromLatin1(token));
    }
    out.write(QJsonDocument(tokens).toJson());
    return 0;
}
