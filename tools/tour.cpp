// The tour: what each command does, shown on built-in examples.
#include "cli.h"
#include "commands.h"

#include <KvBase.h>

#include <QDateTime>
#include <QJsonObject>

namespace {

// The Isle of Man: a position that every notation can write, the British and
// the Irish grid included.
const char kPosition[] = "54.15 -4.48";

void heading(const QString& text)
{
    Cli::out(QStringLiteral("\n== %1\n").arg(text));
}

} // namespace

int runTour()
{
    Cli::out(QStringLiteral("kvtool %1: a short tour of what KvBase does from a shell.\n")
                 .arg(QStringLiteral(KVTOOL_VERSION)));

    heading(
        QStringLiteral("One position in every notation: kvtool coord \"%1\"").arg(QLatin1String(kPosition)));
    runCoord({QStringLiteral("coord"), QString::fromLatin1(kPosition)});

    heading(QStringLiteral("A GSM channel and back: kvtool gsm 62 947.4MHz"));
    runGsm({QStringLiteral("gsm"), QStringLiteral("62"), QStringLiteral("947.4MHz")});

    heading(QStringLiteral("A token signed, printed and verified: kvtool jwt sign | kvtool jwt verify"));
    // A fixed demonstration secret; real secrets come from files (--secret-file).
    const jsonWebToken::Key key =
        jsonWebToken::Key::hmacSecret(QByteArrayLiteral("kvtool tour: not a secret, only an example"));
    QJsonObject claims;
    claims.insert(QStringLiteral("sub"), QStringLiteral("operator"));
    claims.insert(QStringLiteral("iss"), QStringLiteral("kvtool"));
    claims.insert(QStringLiteral("exp"), double(QDateTime::currentSecsSinceEpoch() + 300));
    QString error;
    const QByteArray token = jsonWebToken::sign(claims, jsonWebToken::JwsAlgorithm::HS256, key, {}, &error);
    if (token.isEmpty()) {
        Cli::err(QStringLiteral("kvtool: signing failed: %1\n").arg(error));
        return Cli::Failure;
    }
    Cli::out(QString::fromLatin1(token) + QLatin1Char('\n'));
    const jsonWebToken::Verifier::Result good = jsonWebToken::Verifier()
                                                    .allow(jsonWebToken::JwsAlgorithm::HS256, key)
                                                    .issuer({QStringLiteral("kvtool")})
                                                    .verify(token);
    Cli::out(QStringLiteral("verified with the same secret: %1\n")
                 .arg(good.ok() ? QStringLiteral("valid") : good.message));
    const jsonWebToken::Verifier::Result bad =
        jsonWebToken::Verifier()
            .allow(jsonWebToken::JwsAlgorithm::HS256,
                   jsonWebToken::Key::hmacSecret(QByteArrayLiteral("another secret of thirty-two bytes")))
            .verify(token);
    Cli::out(QStringLiteral("verified with another secret: %1\n")
                 .arg(jsonWebToken::VerificationError::toString(bad.error)));

    Cli::out(
        QStringLiteral("\nNext: kvtool --help lists the commands, kvtool COMMAND --help explains one.\n"));
    return good.ok() ? Cli::Success : Cli::Failure;
}
