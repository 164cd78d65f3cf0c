// kvtool jwt: signs, decodes and verifies compact JSON Web Tokens. Keys and
// secrets come from files only and are never written anywhere.
#include "cli.h"
#include "commands.h"

#include <KvBase.h>

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <cmath>
#include <utility>

using jsonWebToken::JwsAlgorithm;

namespace {

constexpr long long kMaxSeconds = 100LL * 365 * 24 * 3600;
const JwsAlgorithm kHmacAlgorithms[] = {JwsAlgorithm::HS256, JwsAlgorithm::HS384, JwsAlgorithm::HS512};
const JwsAlgorithm kKeyAlgorithms[] = {
    JwsAlgorithm::RS256, JwsAlgorithm::RS384, JwsAlgorithm::RS512, JwsAlgorithm::PS256, JwsAlgorithm::PS384,
    JwsAlgorithm::PS512, JwsAlgorithm::ES256, JwsAlgorithm::ES384, JwsAlgorithm::ES512, JwsAlgorithm::EdDSA};
// What a PEM key signs with when no --alg is given: the first that its type accepts.
const JwsAlgorithm kDefaultKeyAlgorithms[] = {JwsAlgorithm::RS256, JwsAlgorithm::ES256, JwsAlgorithm::ES384,
                                              JwsAlgorithm::ES512, JwsAlgorithm::EdDSA};

const QString kKeyFile = QStringLiteral("key-file");
const QString kSecretFile = QStringLiteral("secret-file");
const QString kJwks = QStringLiteral("jwks");

QCommandLineOption keyFileOption(const QString& use)
{
    return {kKeyFile, QStringLiteral("PEM key (RSA, EC P-256/384/521, Ed25519) or JWK file %1.").arg(use),
            QStringLiteral("FILE")};
}

QCommandLineOption secretFileOption(const QString& use)
{
    return {kSecretFile,
            QStringLiteral("File holding the HMAC secret %1; a final line break is not part of it.").arg(use),
            QStringLiteral("FILE")};
}

JwsAlgorithm algorithmOption(const QString& text)
{
    if (const std::optional<JwsAlgorithm> algorithm = jsonWebToken::jwsAlgorithmFromName(text))
        return *algorithm;
    QStringList names;
    for (int i = 0; i <= int(JwsAlgorithm::None); ++i)
        names.append(jsonWebToken::jwsAlgorithmName(static_cast<JwsAlgorithm>(i)));
    throw Cli::UsageError{QStringLiteral("--alg: unknown algorithm '%1' (one of: %2)")
                              .arg(text, names.join(QStringLiteral(", ")))};
}

/// A PEM key, or a single JWK when the file holds a JSON object.
jsonWebToken::Key keyFromFile(const QString& path)
{
    const QByteArray bytes = Cli::readFile(path, QStringLiteral("key file"));
    QString error;
    std::optional<jsonWebToken::Key> key;
    if (bytes.trimmed().startsWith('{')) {
        QJsonParseError parse;
        const QJsonDocument document = QJsonDocument::fromJson(bytes, &parse);
        if (document.isObject())
            key = jsonWebToken::Key::fromJwk(document.object(), &error);
        else
            error = parse.errorString();
    } else {
        key = jsonWebToken::Key::fromPem(bytes, &error);
    }
    if (!key)
        throw Cli::UsageError{QStringLiteral("key file '%1' holds no usable key: %2").arg(path, error)};
    return *key;
}

/// Exactly one of the given key options must be set.
QString keySource(const Cli::CommandLine& command, const QStringList& choices)
{
    QStringList given;
    for (const QString& choice : choices)
        if (command.isSet(choice))
            given.append(choice);
    if (given.size() != 1) {
        QStringList dashed;
        for (const QString& choice : choices)
            dashed.append(QStringLiteral("--") + choice);
        throw Cli::UsageError{QStringLiteral("give one of %1").arg(dashed.join(QStringLiteral(", ")))};
    }
    return given.first();
}

/// The token from the one positional argument, or from standard input for "-".
QByteArray tokenArgument(const Cli::CommandLine& command)
{
    if (command.positional().size() != 1)
        throw Cli::UsageError{QStringLiteral("give exactly one TOKEN (or - to read it from standard input)")};
    const QString text = command.positional().first();
    return text == QLatin1String("-") ? Cli::readFile(text, QStringLiteral("token")).trimmed()
                                      : text.toUtf8();
}

/// "n=5" gives a number, "admin=true" a boolean, anything else a string.
QJsonValue claimValue(const QString& text)
{
    static const QRegularExpression number(
        QStringLiteral("^-?(0|[1-9][0-9]*)(\\.[0-9]+)?([eE][-+]?[0-9]+)?$"));
    if (text == QLatin1String("true") || text == QLatin1String("false"))
        return text == QLatin1String("true");
    if (number.match(text).hasMatch() && qIsFinite(text.toDouble()))
        return text.toDouble();
    return text;
}

int sign(const QStringList& arguments)
{
    Cli::CommandLine command(QStringLiteral("jwt sign"),
                             QStringLiteral("(--key-file FILE | --secret-file FILE) [options]"),
                             QStringLiteral("Signs the claims and prints the compact token."));
    command.addOption(keyFileOption(QStringLiteral("to sign with")));
    command.addOption(secretFileOption(QStringLiteral("to sign with")));
    command.addOption(
        {QStringLiteral("alg"),
         QStringLiteral("Algorithm (default: HS256 for a secret; RS256, ES256/384/512 or EdDSA by "
                        "the key's type)."),
         QStringLiteral("NAME")});
    command.addOption({QStringLiteral("claim"),
                       QStringLiteral("A claim; numbers and true/false are written as such, a repeated name "
                                      "makes an array. Repeatable."),
                       QStringLiteral("name=value")});
    command.addOption({QStringLiteral("json-claims"),
                       QStringLiteral("Claims from a JSON object in FILE; --claim overrides them."),
                       QStringLiteral("FILE")});
    command.addOption({QStringLiteral("expires-in"), QStringLiteral("Sets \"exp\" to now plus SECONDS."),
                       QStringLiteral("SECONDS")});
    command.addOption({QStringLiteral("not-before"), QStringLiteral("Sets \"nbf\" to now plus SECONDS."),
                       QStringLiteral("SECONDS")});
    command.addOption({QStringLiteral("kid"),
                       QStringLiteral("Key id for the \"kid\" header (default: a JWK's own)."),
                       QStringLiteral("ID")});
    command.parse(arguments);
    if (!command.positional().isEmpty())
        throw Cli::UsageError{QStringLiteral("unexpected argument '%1'").arg(command.positional().first())};

    QJsonObject payload;
    if (command.isSet(QStringLiteral("json-claims"))) {
        const QString path = command.value(QStringLiteral("json-claims"));
        QJsonParseError parse;
        const QJsonDocument document =
            QJsonDocument::fromJson(Cli::readFile(path, QStringLiteral("claims file")), &parse);
        if (!document.isObject())
            throw Cli::UsageError{QStringLiteral("claims file '%1' is not a JSON object%2")
                                      .arg(path, parse.error == QJsonParseError::NoError
                                                     ? QString()
                                                     : QStringLiteral(": ") + parse.errorString())};
        payload = document.object();
    }
    QHash<QString, QJsonArray> claims;
    QStringList order;
    for (const QString& claim : command.values(QStringLiteral("claim"))) {
        const int equals = claim.indexOf(QLatin1Char('='));
        if (equals <= 0)
            throw Cli::UsageError{QStringLiteral("--claim needs name=value, not '%1'").arg(claim)};
        const QString name = claim.left(equals);
        if (!claims.contains(name))
            order.append(name);
        claims[name].append(claimValue(claim.mid(equals + 1)));
    }
    for (const QString& name : std::as_const(order)) {
        const QJsonArray& values = claims[name];
        payload.insert(name, values.size() == 1 ? values.first() : QJsonValue(values));
    }
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (command.isSet(QStringLiteral("expires-in")))
        payload.insert(QStringLiteral("exp"), double(now + command.integer(QStringLiteral("expires-in"), 0,
                                                                           -kMaxSeconds, kMaxSeconds)));
    if (command.isSet(QStringLiteral("not-before")))
        payload.insert(QStringLiteral("nbf"), double(now + command.integer(QStringLiteral("not-before"), 0,
                                                                           -kMaxSeconds, kMaxSeconds)));

    const bool secret = keySource(command, {kKeyFile, kSecretFile}) == kSecretFile;
    const jsonWebToken::Key key = secret ? jsonWebToken::Key::hmacSecret(Cli::readTrimmedFile(
                                               command.value(kSecretFile), QStringLiteral("secret file")))
                                         : keyFromFile(command.value(kKeyFile));
    QJsonObject header;
    const QString kid =
        command.isSet(QStringLiteral("kid")) ? command.value(QStringLiteral("kid")) : key.id();
    if (!kid.isEmpty())
        header.insert(QStringLiteral("kid"), kid);

    QString error;
    QByteArray token;
    if (command.isSet(QStringLiteral("alg"))) {
        token = jsonWebToken::sign(payload, algorithmOption(command.value(QStringLiteral("alg"))), key,
                                   header, &error);
    } else if (secret) {
        token = jsonWebToken::sign(payload, JwsAlgorithm::HS256, key, header, &error);
    } else if (!key.canSign()) {
        error = QStringLiteral("the key in '%1' is a public key; signing needs the private one")
                    .arg(command.value(kKeyFile));
    } else {
        // The key's type decides; the first algorithm it accepts is the default.
        for (const JwsAlgorithm algorithm : kDefaultKeyAlgorithms) {
            token = jsonWebToken::sign(payload, algorithm, key, header);
            if (!token.isEmpty())
                break;
        }
        if (token.isEmpty())
            error = QStringLiteral("no algorithm signs with this key; name one with --alg");
    }
    if (token.isEmpty()) {
        Cli::err(QStringLiteral("kvtool jwt sign: %1\n").arg(error));
        return Cli::Failure;
    }
    Cli::out(QString::fromLatin1(token) + QLatin1Char('\n'));
    return Cli::Success;
}

int decode(const QStringList& arguments)
{
    Cli::CommandLine command(
        QStringLiteral("jwt decode"), QStringLiteral("TOKEN|-"),
        QStringLiteral("Prints a token's header and payload without verifying its signature."));
    command.addPositional(QStringLiteral("TOKEN"),
                          QStringLiteral("The compact token, or - to read standard input."));
    command.parse(arguments);
    const QByteArray token = tokenArgument(command);

    // A verifier that accepts nothing still parses the token with the
    // library's strict rules and hands back what it read.
    const jsonWebToken::Verifier::Result result = jsonWebToken::Verifier().verify(token);
    // Unknown is the verifier's answer for text it cannot parse; every later
    // check has its own code.
    if (result.error == jsonWebToken::VerificationError::Unknown) {
        Cli::err(QStringLiteral("kvtool jwt decode: not a token: %1\n").arg(result.message));
        return Cli::Failure;
    }
    QString text = QStringLiteral("Not verified: decoding does not check the signature.\nHeader:\n") +
                   QString::fromUtf8(QJsonDocument(result.header).toJson(QJsonDocument::Indented)) +
                   QStringLiteral("Payload:\n") +
                   QString::fromUtf8(QJsonDocument(result.payload).toJson(QJsonDocument::Indented));
    for (const char* name : {"iat", "nbf", "exp"}) {
        const QJsonValue value = result.payload.value(QLatin1String(name));
        if (value.isDouble())
            text += QStringLiteral("%1: %2\n")
                        .arg(QLatin1String(name),
                             QDateTime::fromSecsSinceEpoch(qint64(std::floor(value.toDouble())), Qt::UTC)
                                 .toString(Qt::ISODate));
    }
    Cli::out(text);
    return Cli::Success;
}

int verify(const QStringList& arguments)
{
    Cli::CommandLine command(
        QStringLiteral("jwt verify"),
        QStringLiteral("(--key-file FILE | --secret-file FILE | --jwks FILE) [options] TOKEN|-"),
        QStringLiteral("Verifies a token: algorithm, signature, time claims and the claims asked for. Prints "
                       "\"valid\" (exit code 0) or the error code and what failed (exit code 1)."));
    command.addOption(keyFileOption(QStringLiteral("to verify with")));
    command.addOption(secretFileOption(QStringLiteral("to verify with")));
    command.addOption({kJwks, QStringLiteral("JSON Web Key Set file; the token's \"kid\" picks the key."),
                       QStringLiteral("FILE")});
    command.addOption(
        {QStringLiteral("alg"),
         QStringLiteral("An accepted algorithm; repeatable (default: HS256/384/512 for a secret, "
                        "every public-key algorithm for a key, all of them for a key set; "
                        "\"none\" only when named)."),
         QStringLiteral("NAME")});
    command.addOption(
        {QStringLiteral("iss"), QStringLiteral("An accepted issuer; repeatable."), QStringLiteral("ISSUER")});
    command.addOption({QStringLiteral("aud"), QStringLiteral("The audience that \"aud\" must contain."),
                       QStringLiteral("AUDIENCE")});
    command.addOption({QStringLiteral("sub"), QStringLiteral("The subject that \"sub\" must be."),
                       QStringLiteral("SUBJECT")});
    command.addOption({QStringLiteral("require"), QStringLiteral("A claim that must be present; repeatable."),
                       QStringLiteral("NAME")});
    command.addOption({QStringLiteral("leeway"),
                       QStringLiteral("Clock leeway for exp, nbf and iat (default 0)."),
                       QStringLiteral("SECONDS")});
    command.addOption({QStringLiteral("now"),
                       QStringLiteral("Verify as of this UTC time, e.g. 2024-05-01T12:00:00Z."),
                       QStringLiteral("ISO8601")});
    command.addPositional(QStringLiteral("TOKEN"),
                          QStringLiteral("The compact token, or - to read standard input."));
    command.parse(arguments);

    jsonWebToken::Verifier verifier;
    QList<JwsAlgorithm> algorithms;
    for (const QString& name : command.values(QStringLiteral("alg")))
        algorithms.append(algorithmOption(name));
    const QString source = keySource(command, {kKeyFile, kSecretFile, kJwks});
    if (algorithms.isEmpty()) {
        if (source != kKeyFile)
            algorithms << kHmacAlgorithms[0] << kHmacAlgorithms[1] << kHmacAlgorithms[2];
        if (source != kSecretFile)
            for (const JwsAlgorithm algorithm : kKeyAlgorithms)
                algorithms << algorithm;
    }
    if (source == kJwks) {
        QString error;
        const std::optional<jsonWebToken::KeySet> keys = jsonWebToken::KeySet::fromJwks(
            Cli::readFile(command.value(kJwks), QStringLiteral("key set")), &error);
        if (!keys)
            throw Cli::UsageError{
                QStringLiteral("key set '%1' is not usable: %2").arg(command.value(kJwks), error)};
        for (const JwsAlgorithm algorithm : algorithms)
            if (algorithm != JwsAlgorithm::None)
                verifier.allow(algorithm, *keys);
    } else {
        const jsonWebToken::Key key = source == kSecretFile
                                          ? jsonWebToken::Key::hmacSecret(Cli::readTrimmedFile(
                                                command.value(kSecretFile), QStringLiteral("secret file")))
                                          : keyFromFile(command.value(kKeyFile));
        for (const JwsAlgorithm algorithm : algorithms)
            if (algorithm != JwsAlgorithm::None)
                verifier.allow(algorithm, key);
    }
    if (algorithms.contains(JwsAlgorithm::None))
        verifier.allowNone();
    if (command.isSet(QStringLiteral("iss")))
        verifier.issuer(command.values(QStringLiteral("iss")));
    if (command.isSet(QStringLiteral("aud")))
        verifier.audience(command.value(QStringLiteral("aud")));
    if (command.isSet(QStringLiteral("sub")))
        verifier.subject(command.value(QStringLiteral("sub")));
    if (command.isSet(QStringLiteral("require")))
        verifier.requireClaims(command.values(QStringLiteral("require")));
    verifier.leeway(std::chrono::seconds(command.integer(QStringLiteral("leeway"), 0, 0, kMaxSeconds)));

    QDateTime now = QDateTime::currentDateTimeUtc();
    if (command.isSet(QStringLiteral("now"))) {
        const QString text = command.value(QStringLiteral("now"));
        now = QDateTime::fromString(text, Qt::ISODate);
        if (!now.isValid())
            throw Cli::UsageError{
                QStringLiteral("--now needs an ISO 8601 time such as 2024-05-01T12:00:00Z, not '%1'")
                    .arg(text)};
        if (now.timeSpec() == Qt::LocalTime)
            now.setTimeSpec(Qt::UTC); // a time without zone is UTC, whatever the machine's zone
    }
    const QByteArray token = tokenArgument(command);
    const jsonWebToken::Verifier::Result result = verifier.verify(token, now);
    if (result.ok()) {
        Cli::out(QStringLiteral("valid\n"));
        return Cli::Success;
    }
    Cli::out(QStringLiteral("%1: %2\n")
                 .arg(jsonWebToken::VerificationError::toString(result.error), result.message));
    return Cli::Failure;
}

} // namespace

int runJwt(const QStringList& arguments)
{
    const QString usage =
        QStringLiteral("Usage: kvtool jwt sign|decode|verify [options]\n\n"
                       "  sign     signs claims with a key or secret and prints the compact token\n"
                       "  decode   prints a token's header and payload without verifying it\n"
                       "  verify   verifies a token and prints \"valid\" or what failed\n\n"
                       "Keys and secrets are read from files only and never printed. "
                       "'kvtool jwt COMMAND --help' explains each.\n");
    const QString sub = arguments.value(1);
    if (sub == QLatin1String("--help") || sub == QLatin1String("-h") || sub == QLatin1String("-help")) {
        Cli::out(usage);
        return Cli::Success;
    }
    const QStringList rest = arguments.mid(1);
    if (sub == QLatin1String("sign"))
        return sign(rest);
    if (sub == QLatin1String("decode"))
        return decode(rest);
    if (sub == QLatin1String("verify"))
        return verify(rest);
    throw Cli::UsageError{sub.isEmpty() ? QStringLiteral("jwt needs sign, decode or verify")
                                        : QStringLiteral("unknown jwt command '%1'").arg(sub)};
}
