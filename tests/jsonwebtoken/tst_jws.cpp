// The JWS layer against independent truth: the RFC 7515 and RFC 8037 examples
// and tokens made by PyJWT (tests/data/jsonwebtoken/make_jws_fixtures.py),
// verified under the settings each row names; deterministic algorithms must
// also sign exactly as PyJWT did. check_library_jws.py covers the other
// direction.
#include "jsonwebtoken/token.h"
#include "jsonwebtoken/verifier.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QtTest>

#include <atomic>
#include <thread>

using namespace jsonWebToken;

namespace {

QJsonDocument fixture(const char* name)
{
    QFile file(QStringLiteral(KVBASE_TEST_DATA_DIR "/jsonwebtoken/") + QLatin1String(name));
    const QJsonDocument document = QJsonDocument::fromJson(file.open(QFile::ReadOnly) ? file.readAll() : "");
    if (document.isNull())
        qFatal("no fixture %s", name);
    return document;
}

const QJsonObject& keyFile()
{
    static const QJsonObject keys = fixture("jws_keys.json").object();
    return keys;
}

QStringList strings(const QJsonValue& value)
{
    QStringList list;
    for (const QJsonValue item : value.toArray())
        list << item.toString();
    return list;
}

// A key of jws_keys.json in one of its forms; the data is committed, so a key
// that does not read stops the run.
Key key(const QJsonValue& name, const QJsonValue& form)
{
    const QJsonValue entry = keyFile()[QLatin1String("keys")][name.toString()][form.toString()];
    QString error;
    const auto read = form.toString() == QLatin1String("secret")
                          ? Key::hmacSecret(QByteArray::fromBase64(entry.toString().toLatin1(),
                                                                   QByteArray::Base64UrlEncoding))
                      : entry.isObject() ? Key::fromJwk(entry.toObject(), &error)
                                         : Key::fromPem(entry.toString().toLatin1(), &error);
    if (!read)
        qFatal("key %s/%s: %s", qPrintable(name.toString()), qPrintable(form.toString()), qPrintable(error));
    return *read;
}

const KeySet& keySet()
{
    static const KeySet keys =
        *KeySet::fromJwks(QJsonDocument(keyFile()[QLatin1String("jwks")].toObject()).toJson());
    return keys;
}

Verifier verifierFor(const QJsonObject& row)
{
    Verifier verifier;
    for (const QJsonValue allowed : row[QLatin1String("allow")].toArray()) {
        const auto algorithm = jwsAlgorithmFromName(allowed[0].toString()).value();
        if (allowed[2].toString() == QLatin1String("jwks"))
            verifier.allow(algorithm, keySet());
        else
            verifier.allow(algorithm, key(allowed[1], allowed[2]));
    }
    if (row[QLatin1String("shortHmac")].toBool())
        verifier.allowShortHmacKeys();
    if (row[QLatin1String("none")].toBool())
        verifier.allowNone();
    verifier.leeway(std::chrono::seconds(row[QLatin1String("leeway")].toInt()));
    verifier.issuer(strings(row[QLatin1String("issuer")]));
    verifier.requireClaims(strings(row[QLatin1String("require")]));
    if (row.contains(QLatin1String("audience")))
        verifier.audience(row[QLatin1String("audience")].toString());
    if (row.contains(QLatin1String("subject")))
        verifier.subject(row[QLatin1String("subject")].toString());
    if (row.contains(QLatin1String("type")))
        verifier.type(row[QLatin1String("type")].toString());
    return verifier;
}

QDateTime at(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QString outcome(const Verifier::Result& result)
{
    return VerificationError::toString(result.error) + QStringLiteral(": ") + result.message;
}

void addRows(const QJsonDocument& rows, const QLatin1String& only = QLatin1String())
{
    QTest::addColumn<QJsonObject>("row");
    for (const QJsonValue row : rows.array()) {
        if (only.isEmpty() || row.toObject().contains(only))
            QTest::newRow(qPrintable(row[QLatin1String("name")].toString())) << row.toObject();
    }
}

} // namespace

class TestJws : public QObject
{
    Q_OBJECT

private slots:
    void algorithmNames();
    void verify_data() { addRows(fixture("jws_tokens.json")); }
    void verify();
    void signsLikePyJwt_data() { addRows(fixture("jws_tokens.json"), QLatin1String("sign")); }
    void signsLikePyJwt();
    void keys_data() { addRows(fixture("jws_key_cases.json")); }
    void keys();
    void keySet();
    void signing();
    void legacyMacs();
    void hmacKeysInTurn();
    void hostileInput_data();
    void hostileInput();
    void concurrentVerify();
};

void TestJws::algorithmNames()
{
    // RFC 7518 section 7.1.2 and RFC 8037 section 5, in the order of the enum.
    const QStringList registered =
        QStringLiteral("HS256 HS384 HS512 RS256 RS384 RS512 PS256 PS384 PS512 ES256 "
                       "ES384 ES512 EdDSA none")
            .split(QLatin1Char(' '));
    for (int i = 0; i < registered.size(); ++i) {
        QCOMPARE(jwsAlgorithmName(JwsAlgorithm(i)), registered[i]);
        QCOMPARE(jwsAlgorithmFromName(registered[i]), std::optional<JwsAlgorithm>(JwsAlgorithm(i)));
    }
    QVERIFY(jwsAlgorithmName(JwsAlgorithm(14)).isEmpty());
    for (const char* text : {"hs256", "None", "HS256 ", "ES521", ""})
        QVERIFY2(!jwsAlgorithmFromName(QLatin1String(text)), text);
}

void TestJws::verify()
{
    QFETCH(QJsonObject, row);
    const Verifier verifier = verifierFor(row);
    const QDateTime now = at(row[QLatin1String("now")].toInt());
    const QByteArray token = row[QLatin1String("token")].toString().toLatin1();
    const Verifier::Result result = verifier.verify(token, now);
    QVERIFY2(VerificationError::toString(result.error) == row[QLatin1String("expect")].toString(),
             qPrintable(outcome(result)));
    QVERIFY2(result.message.contains(row[QLatin1String("message")].toString()), qPrintable(outcome(result)));
    if (row.contains(QLatin1String("claims")))
        QCOMPARE(result.payload, row[QLatin1String("claims")].toObject());
    // Every failure after the parse still shows what was parsed, for the log.
    QVERIFY(result.error == VerificationError::Unknown || !result.header.isEmpty());
    if (!row[QLatin1String("tamper")].toBool())
        return;
    // One character changed in the middle of each segment.
    for (int segment = 0, from = 0; segment < 3; ++segment) {
        const int to = segment < 2 ? token.indexOf('.', from) : token.size();
        QByteArray changed = token;
        char* c = changed.data() + (from + to) / 2;
        *c = *c == 'A' ? 'B' : 'A';
        const Verifier::Result broken = verifier.verify(changed, now);
        QVERIFY2(!broken.ok(), qPrintable(QStringLiteral("segment %1 changed").arg(segment)));
        if (segment == 2)
            QCOMPARE(broken.error, VerificationError::SignatureInvalid);
        from = to + 1;
    }
}

void TestJws::signsLikePyJwt()
{
    QFETCH(QJsonObject, row);
    const QJsonObject request = row[QLatin1String("sign")].toObject();
    const QJsonArray keyName = request[QLatin1String("key")].toArray();
    QString error;
    const QByteArray token = sign(request[QLatin1String("payload")].toObject(),
                                  jwsAlgorithmFromName(request[QLatin1String("alg")].toString()).value(),
                                  key(keyName[0], keyName[1]), {}, &error);
    QVERIFY2(!token.isEmpty(), qPrintable(error));
    QCOMPARE(QString::fromLatin1(token), row[QLatin1String("token")].toString());
}

void TestJws::keys()
{
    QFETCH(QJsonObject, row);
    QString error;
    const auto key = row.contains(QLatin1String("pem"))
                         ? Key::fromPem(row[QLatin1String("pem")].toString().toLatin1(), &error)
                         : Key::fromJwk(row[QLatin1String("jwk")].toObject(), &error);
    const QString expect = row[QLatin1String("expect")].toString();
    if (expect != QLatin1String("ok")) {
        QVERIFY2(!key, qPrintable(expect));
        QVERIFY2(error.contains(expect), qPrintable(error));
        // Messages name members, never their values: no private number, no PEM line.
        const QJsonObject jwk = row[QLatin1String("jwk")].toObject();
        for (const char* secret : {"d", "p", "q", "dp", "dq", "qi", "k", "x", "y", "n"})
            QVERIFY(jwk[QLatin1String(secret)].toString().size() < 4 ||
                    !error.contains(jwk[QLatin1String(secret)].toString()));
        for (const QString& line : row[QLatin1String("pem")].toString().split(QLatin1Char('\n')))
            QVERIFY2(line.size() < 16 || line.startsWith(QLatin1String("-----")) ||
                         !error.contains(line.left(16)),
                     qPrintable(error));
        return;
    }
    QVERIFY2(key, qPrintable(error));
    QCOMPARE(key->canSign(), row[QLatin1String("canSign")].toBool());
    QCOMPARE(key->id(), row[QLatin1String("kid")].toString());
    const JwsAlgorithm algorithm = jwsAlgorithmFromName(row[QLatin1String("alg")].toString()).value();
    const Verifier verifier = Verifier().allow(algorithm, *key);
    const QByteArray theirs = row[QLatin1String("token")].toString().toLatin1();
    QVERIFY2(verifier.verify(theirs).ok(), qPrintable(outcome(verifier.verify(theirs))));
    const QByteArray ours = sign({{QStringLiteral("sub"), expect}}, algorithm, *key, {}, &error);
    QCOMPARE(ours.isEmpty(), !key->canSign());
    QVERIFY2(ours.isEmpty() || verifier.verify(ours).ok(), qPrintable(outcome(verifier.verify(ours))));
}

void TestJws::keySet()
{
    QCOMPARE(::keySet().size(), keyFile()[QLatin1String("usable")].toInt());
    QCOMPARE(::keySet().skipped(), keyFile()[QLatin1String("skipped")].toInt());
    const QString reasons = ::keySet().skipReasons().join(QLatin1Char('\n'));
    QVERIFY2(reasons.contains(QLatin1String("keys[7] (kid \"enc-1\"): \"use\"")), qPrintable(reasons));
    QString error;
    QVERIFY(!KeySet::fromJwks("{\"keys\":[]}", &error));
    QCOMPARE(error, QStringLiteral("the \"keys\" array is empty"));
    QVERIFY(!KeySet::fromJwks("[]", &error));
    QVERIFY(!KeySet::fromJwks("{\"keys\":[{\"kty\":\"EC\"}]}", &error));
    QVERIFY2(error.contains(QLatin1String("keys[0]: \"crv\"")), qPrintable(error));
    // As Qt reads JSON, the last of two "keys" counts (without leaking the first, under ASan).
    QVERIFY(!KeySet::fromJwks("{\"keys\":[{\"kty\":\"oct\",\"k\":\"AAAA\"}],\"keys\":[]}", &error));
    QCOMPARE(error, QStringLiteral("the \"keys\" array is empty"));
    // Error offsets are those of the text as given.
    QVERIFY(!KeySet::fromJwks("{\"a\":[1],\"a\":2,", &error));
    QCOMPARE(error, QStringLiteral("not JSON: unterminated object at offset 15"));
}

// Every algorithm signs with a private key and verifies with the public one;
// keys that cannot sign are refused with a reason.
void TestJws::signing()
{
    const QJsonObject claims{{QStringLiteral("sub"), QStringLiteral("Göteborg")},
                             {QStringLiteral("exp"), 2e9}};
    const QJsonObject kid{{QStringLiteral("kid"), QStringLiteral("k-1")}, {QStringLiteral("alg"), 1}};
    const char* const pairs[][2] = {{"HS256", "hs256"},   {"HS384", "hs384"},   {"HS512", "hs512"},
                                    {"RS256", "rsa"},     {"RS384", "rsa"},     {"RS512", "rsa"},
                                    {"PS256", "rsa"},     {"PS384", "rsa"},     {"PS512", "rsa"},
                                    {"ES256", "ec-p256"}, {"ES384", "ec-p384"}, {"ES512", "ec-p521"},
                                    {"EdDSA", "ed25519"}, {"EdDSA", "ed448"}};
    for (const auto& pair : pairs) {
        const JwsAlgorithm algorithm = jwsAlgorithmFromName(QLatin1String(pair[0])).value();
        const bool hmac = pair[0][0] == 'H';
        const Key signer = key(QLatin1String(pair[1]), QLatin1String(hmac ? "secret" : "pem-private"));
        const Key checker = key(QLatin1String(pair[1]), QLatin1String(hmac ? "secret" : "pem-public"));
        const QByteArray token = sign(claims, algorithm, signer, kid);
        const Verifier::Result result = Verifier().allow(algorithm, checker).verify(token);
        QVERIFY2(result.ok(), qPrintable(QLatin1String(pair[0]) + QStringLiteral(" ") + outcome(result)));
        QCOMPARE(result.payload, claims);
        QCOMPARE(result.header[QLatin1String("alg")].toString(), QLatin1String(pair[0]));
        QCOMPARE(result.header[QLatin1String("kid")].toString(), QStringLiteral("k-1"));
        QCOMPARE(result.header[QLatin1String("typ")].toString(), QStringLiteral("JWT"));
    }
    // The payload is written as Qt's own JSON writer would write it.
    const QJsonObject awkward{
        {QStringLiteral("s"), QString(QStringLiteral("\"\\/\b\f\n\r\t\x01\x1f ö € 😀 \u2028") + QChar(0xd800) +
                                      QLatin1Char('x') + QChar(0xdc00))},
        {QStringLiteral("n"), QJsonArray{-12.5, 1e300, -1700000000.0, 0.0, 9007199254740993.0, 1e-7}},
        {QStringLiteral("v"), QJsonArray{true, false, QJsonValue(), QJsonObject{}, QJsonArray{}}}};
    const QByteArray payload =
        sign(awkward, JwsAlgorithm::HS256, key(QLatin1String("hs256"), QLatin1String("secret")))
            .split('.')
            .at(1);
    QCOMPARE(QByteArray::fromBase64(payload, QByteArray::Base64UrlEncoding),
             QJsonDocument(awkward).toJson(QJsonDocument::Compact));
    // Integers read from JSON beyond a double's exact range are signed as they were
    // read, and read back equal.
    const QJsonObject large =
        QJsonDocument::fromJson("{\"exp\":170000010299999903,\"ids\":[-9007199254740993,3]}").object();
    const QByteArray largeToken =
        sign(large, JwsAlgorithm::HS256, key(QLatin1String("hs256"), QLatin1String("secret")));
    QCOMPARE(QByteArray::fromBase64(largeToken.split('.').at(1), QByteArray::Base64UrlEncoding),
             QByteArray("{\"exp\":170000010299999903,\"ids\":[-9007199254740993,3]}"));
    QCOMPARE(Verifier()
                 .allow(JwsAlgorithm::HS256, key(QLatin1String("hs256"), QLatin1String("secret")))
                 .verify(largeToken)
                 .payload,
             large);
    // A "typ" of the caller's replaces "JWT".
    const Key hs256 = key(QLatin1String("hs256"), QLatin1String("secret"));
    const QByteArray accessToken =
        sign(claims, JwsAlgorithm::HS256, hs256, {{QStringLiteral("typ"), QStringLiteral("at+jwt")}});
    QVERIFY(Verifier()
                .allow(JwsAlgorithm::HS256, hs256)
                .type(QStringLiteral("application/AT+JWT"))
                .verify(accessToken)
                .ok());
    QVERIFY(
        !Verifier().allow(JwsAlgorithm::HS256, hs256).type(QStringLiteral("JWT")).verify(accessToken).ok());
    // A copy configured further leaves the original as it was.
    const Verifier original = Verifier().allow(JwsAlgorithm::HS256, hs256);
    Verifier stricter = original;
    stricter.subject(QStringLiteral("someone else"));
    QVERIFY(original.verify(accessToken).ok());
    QCOMPARE(stricter.verify(accessToken).error, VerificationError::ClaimValueUnexpected);
    QCOMPARE(sign(claims, JwsAlgorithm::None, Key::hmacSecret({})).count('.'), 2);
    QVERIFY(sign(claims, JwsAlgorithm::None, Key::hmacSecret({})).endsWith('.'));
    const struct
    {
        JwsAlgorithm algorithm;
        const char *name, *form, *why;
    } refusals[] = {{JwsAlgorithm::RS256, "rsa", "pem-public", "the RSA key is public and cannot sign"},
                    {JwsAlgorithm::HS256, "short", "secret", "the HS256 key of 6 bytes is shorter"},
                    {JwsAlgorithm::ES256, "ec-p384", "jwk-private", "the P-384 key cannot be used for ES256"},
                    {JwsAlgorithm::EdDSA, "hs512", "jwk-private", "the HMAC key cannot be used for EdDSA"},
                    {JwsAlgorithm(99), "hs256", "secret", "algorithm 99 is not a JwsAlgorithm"}};
    for (const auto& refusal : refusals) {
        QString error;
        QVERIFY(sign(claims, refusal.algorithm, key(QLatin1String(refusal.name), QLatin1String(refusal.form)),
                     {}, &error)
                    .isEmpty());
        QVERIFY2(error.startsWith(QLatin1String(refusal.why)), qPrintable(error));
    }
    QCOMPARE(Verifier().verify("a.b.c", QDateTime()).error, VerificationError::Unknown);
    QCOMPARE(
        Verifier().allow(JwsAlgorithm::None, Key::hmacSecret("k")).verify("eyJhbGciOiJub25lIn0.e30.").error,
        VerificationError::HeaderValueUnexpected);
}

// Token's HMAC now comes from OpenSSL; Qt's own implementation is the reference,
// with keys empty, short, and longer than every block size.
void TestJws::legacyMacs()
{
    const QCryptographicHash::Algorithm hashes[] = {QCryptographicHash::Sha256, QCryptographicHash::Sha384,
                                                    QCryptographicHash::Sha512};
    for (const QByteArray& secret :
         {QByteArray(), QByteArray("k"), QByteArray(64, 'x'), QByteArray(131, '\xaa')}) {
        for (int algorithm = SignatureAlgorithm::HS256; algorithm <= SignatureAlgorithm::HS512; ++algorithm) {
            Token token;
            token.setPayload(Payload().with<Claim::Subject>(QStringLiteral("Göteborg")));
            token.signWith(secret, SignatureAlgorithm::Type(algorithm));
            const QByteArray text = token.value();
            QCOMPARE(token.signature(), QMessageAuthenticationCode::hash(text.left(text.lastIndexOf('.')),
                                                                         secret, hashes[algorithm - 1]));
            QCOMPARE(token.verify(secret, SignatureAlgorithm::Type(algorithm), boost::none),
                     VerificationError::NoError);
        }
    }
}

// HMAC state is kept per thread and key: keys that take turns, and keys made
// anew where an old one was, must each give their own MACs.
void TestJws::hmacKeysInTurn()
{
    const QJsonObject claims{{QStringLiteral("sub"), QStringLiteral("x")}};
    const QByteArray reference = sign(claims, JwsAlgorithm::HS384, Key::hmacSecret(QByteArray(48, 'a')));
    for (int round = 0; round < 50; ++round) {
        const Key a = Key::hmacSecret(QByteArray(48, char('a' + round % 2)));
        const Key b = Key::hmacSecret(QByteArray(48, 'z'));
        const QByteArray byA = sign(claims, JwsAlgorithm::HS384, a);
        const QByteArray byB = sign(claims, JwsAlgorithm::HS384, b);
        QCOMPARE(byA == reference, round % 2 == 0);
        QVERIFY(byA != byB);
        QVERIFY(Verifier().allow(JwsAlgorithm::HS384, a).verify(byA).ok());
        QCOMPARE(Verifier().allow(JwsAlgorithm::HS384, a).verify(byB).error,
                 VerificationError::SignatureInvalid);
        QCOMPARE(Verifier().allow(JwsAlgorithm::HS384, b).verify(byA).error,
                 VerificationError::SignatureInvalid);
        QVERIFY(Verifier().allow(JwsAlgorithm::HS256, a).verify(sign(claims, JwsAlgorithm::HS256, a)).ok());
    }
}

// Sizes and shapes no real token has: each is reported, none crashes, and a
// normal token still verifies afterwards.
void TestJws::hostileInput_data()
{
    QTest::addColumn<QByteArray>("token");
    QTest::addColumn<int>("error");
    const QByteArray header = "eyJhbGciOiJIUzI1NiJ9."; // {"alg":"HS256"}
    const auto encoded = [](const QByteArray& json) {
        return json.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    };
    QTest::newRow("empty") << QByteArray() << int(VerificationError::Unknown);
    QTest::newRow("dots only") << QByteArray("..") << int(VerificationError::Unknown);
    QTest::newRow("a million dots") << QByteArray(1 << 20, '.') << int(VerificationError::Unknown);
    QTest::newRow("a payload of 3 MB")
        << header + encoded("{\"a\":\"" + QByteArray(3 << 20, 'x') + "\"}") + ".AA"
        << int(VerificationError::SignatureInvalid);
    QTest::newRow("arrays nested 100000 deep")
        << header + encoded(QByteArray(100000, '[') + QByteArray(100000, ']')) + "."
        << int(VerificationError::Unknown);
    QTest::newRow("a NUL byte in the header")
        << encoded(QByteArray("{\"alg\":\"HS256\0\"}", 16)) + ".e30." << int(VerificationError::Unknown);
    QTest::newRow("invalid UTF-8 in the header")
        << encoded("{\"alg\":\"\xff\"}") + ".e30." << int(VerificationError::Unknown);
    QTest::newRow("a claim given twice, first as an array")
        << header + encoded("{\"a\":[1],\"a\":2}") + ".AA" << int(VerificationError::Unknown);
    QTest::newRow("a NUL byte in the token")
        << QByteArray("e30.e30.\0", 9) << int(VerificationError::Unknown);
}

void TestJws::hostileInput()
{
    QFETCH(QByteArray, token);
    QFETCH(int, error);
    const Key secret = Key::hmacSecret(QByteArray(32, 's'));
    const Verifier verifier = Verifier().allow(JwsAlgorithm::HS256, secret);
    const Verifier::Result result = verifier.verify(token, at(1700000000));
    QVERIFY2(result.error == VerificationError::Type(error), qPrintable(outcome(result)));
    QVERIFY(!result.message.isEmpty());
    QVERIFY(verifier.verify(sign({{QStringLiteral("sub"), QStringLiteral("x")}}, JwsAlgorithm::HS256, secret))
                .ok());
}

// One verifier and one fresh key, first used from four threads at once.
void TestJws::concurrentVerify()
{
    const Key secret = Key::hmacSecret(QByteArray(32, 'k'));
    const QByteArray token = sign({{QStringLiteral("sub"), QStringLiteral("x")}}, JwsAlgorithm::HS256,
                                  Key::hmacSecret(QByteArray(32, 'k')));
    const Verifier verifier = Verifier().allow(JwsAlgorithm::HS256, secret);
    std::atomic<int> valid{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 250; ++i)
                valid += verifier.verify(token).ok();
        });
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(valid.load(), 1000);
}

QTEST_GUILESS_MAIN(TestJws)
#include "tst_jws.moc"
