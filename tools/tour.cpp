// The tour: what each command does, shown on built-in examples.
#include "cli.h"
#include "commands.h"

#include <KvBase.h>

#include <QDateTime>
#include <QJsonObject>

namespace {

// Stockholm, which the Swedish grids cover; London and Dublin for the British
// and Irish grids, which cover only their islands.
const char kPosition[] = "59.3293 18.0686";
const char kLondon[] = "51.5007 -0.1246";
const char kDublin[] = "53.3498 -6.2603";

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
    heading(QStringLiteral("The national grids of Britain and Ireland: kvtool coord --to british \"%1\", "
                           "--to irish \"%2\"")
                .arg(QLatin1String(kLondon), QLatin1String(kDublin)));
    runCoord({QStringLiteral("coord"), QStringLiteral("--to"), QStringLiteral("british"),
              QString::fromLatin1(kLondon)});
    runCoord({QStringLiteral("coord"), QStringLiteral("--to"), QStringLiteral("irish"),
              QString::fromLatin1(kDublin)});

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
