#include "jsonwebtoken/contentserializer.h"
#include "jsonwebtoken/token.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageAuthenticationCode>
#include <QtTest>

#include <boost/optional/bad_optional_access.hpp>

using namespace jsonWebToken;

namespace {

const QByteArray key("secret");
const qint64 now = 1700000000;

QDateTime at(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

Token signedToken(SignatureAlgorithm::Type algorithm)
{
    Token token;
    token.setPayload(Payload()
                         .with<Claim::Subject>(QStringLiteral("monitor-7"))
                         .with<Claim::NotBefore>(at(now - 100))
                         .with<Claim::ExpirationTime>(at(now + 100)));
    token.signWith(key, algorithm);
    return token;
}

// The reader skips "-" and "_" by design, so only text without them in the
// signed part can be expected to read back as the same token.
void compareReadBack(const Token& token)
{
    const QByteArray text = token.value();
    const QByteArray signedPart = text.left(text.lastIndexOf('.'));
    if (signedPart.contains('-') || signedPart.contains('_'))
        return;
    QCOMPARE(Token::fromValue(text), boost::make_optional(token));
}

QJsonArray fixtures(const QString& name)
{
    QFile file(QStringLiteral(KVBASE_TEST_DATA_DIR "/jsonwebtoken/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return QJsonDocument::fromJson(file.readAll()).array();
}

// The tokens of library_tokens.json, built through the typed interface.
Token libraryToken(const QString& name)
{
    Token token;
    Payload payload;
    if (name == QLatin1String("HS256 registered claims")) {
        payload.with<Claim::Issuer>(QStringLiteral("kvbase"))
            .with<Claim::Subject>(QStringLiteral("monitor-7"))
            .with<Claim::IssuedAt>(at(now))
            .with<Claim::ExpirationTime>(at(now + 3600));
        token.setPayload(payload).signWith("secret", SignatureAlgorithm::HS256);
    } else if (name == QLatin1String("HS384 audience list")) {
        payload.with<Claim::AudienceList>({"dispatch", "archive"}).with<Claim::JwtId>(QStringLiteral("id-1"));
        token.setPayload(payload).signWith(QByteArray(20, '\x0b'), SignatureAlgorithm::HS384);
    } else if (name == QLatin1String("HS512 long key, key id and custom claims")) {
        payload.with<Claim::NotBefore>(at(now - 1000))
            .withClaim(QStringLiteral("scope"), QStringList{"read", "write"})
            .withClaim(QStringLiteral("level"), 3)
            .withClaim(QStringLiteral("name"), QStringLiteral("J\u00f6rg \u00c5str\u00f6m"));
        token.setHeader(Header().withParam(QStringLiteral("kid"), QStringLiteral("k1")))
            .setPayload(payload)
            .signWith(QByteArray(131, '\xaa'), SignatureAlgorithm::HS512);
    }
    return token;
}

} // namespace

class TestJwtToken : public QObject
{
    Q_OBJECT

private slots:
    void rfc7515Example();
    void fromValue_data();
    void fromValue();
    void verify_data();
    void verify();
    void signWithNone();
    void missingAlgorithmThrows();
    void settersDropOnlyTheirCache();
    void equality();
    void contentSerializer();
    void pyjwtTokens_data();
    void pyjwtTokens();
    void libraryTokensVerifyInPyJwt_data();
    void libraryTokensVerifyInPyJwt();
    void badInput_data();
    void badInput();
    void damagedTokens();
};

void TestJwtToken::rfc7515Example()
{
    // RFC 7515 appendix A.1: the HS256 example, whose JSON has line breaks.
    const QByteArray text =
        "eyJ0eXAiOiJKV1QiLA0KICJhbGciOiJIUzI1NiJ9"
        ".eyJpc3MiOiJqb2UiLA0KICJleHAiOjEzMDA4MTkzODAsDQogImh0dHA6Ly9leGFtcGxlLmNvbS9pc19yb290Ijp0cnVlfQ"
        ".dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk";
    const QByteArray rfcKey = QByteArray::fromBase64(
        "AyM1SysPpbyDfgZld3umj1qzKObwVMkoqQ-EstJQLr_T-1qS0gZH75aKtMN3Yj0iPS4hcgUuTwjAzZr1Z9CAow",
        QByteArray::Base64UrlEncoding);
    const auto token = Token::fromValue(text);
    QVERIFY(token);
    QCOMPARE(token->header().get<HeaderParameter::Algorithm>(),
             boost::make_optional(SignatureAlgorithm::HS256));
    QCOMPARE(token->payload().get<Claim::Issuer>(), boost::make_optional(QStringLiteral("joe")));
    QCOMPARE(token->payload().get<Claim::ExpirationTime>(), boost::make_optional(at(1300819380)));
    QCOMPARE(token->payload().getClaim(QStringLiteral("http://example.com/is_root")), QVariant(true));

    // The key and signature are right for the text as sent...
    const int end = text.lastIndexOf('.');
    QCOMPARE(QMessageAuthenticationCode::hash(text.left(end), rfcKey, QCryptographicHash::Sha256),
             token->signature());
    // ...but the MAC is taken over the library's own compact encoding.
    QCOMPARE(token->verify(rfcKey, SignatureAlgorithm::HS256, boost::none),
             VerificationError::SignatureInvalid);
    const QDateTime expiry = at(1300819380);
    QCOMPARE(token->verify(rfcKey, SignatureAlgorithm::HS256, expiry), VerificationError::TokenExpired);
}

void TestJwtToken::fromValue_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QByteArray>("signature");
    const QByteArray header = Header().value();
    const QByteArray payload = Payload().with<Claim::Subject>(QStringLiteral("x")).value();
    const QByteArray body = header + '.' + payload;
    QTest::newRow("three parts are a token") << body + ".AAEC_w" << true << QByteArray("\x00\x01\x02\xff", 4);
    QTest::newRow("an empty third part is an empty signature") << body + '.' << true << QByteArray();
    QTest::newRow("two parts are rejected") << body << false << QByteArray();
    QTest::newRow("four parts are rejected") << body + ".AAEC." << false << QByteArray();
    QTest::newRow("an empty payload object is rejected") << header + ".e30." << false << QByteArray();
    QTest::newRow("a bad header is rejected") << "eyJ." + payload + '.' << false << QByteArray();
    QTest::newRow("padding in the signature is accepted")
        << body + ".AAEC_w==" << true << QByteArray("\x00\x01\x02\xff", 4);
    const QByteArray ownUrlSafe =
        Token().setPayload(Payload().with<Claim::Subject>(QStringLiteral("?>?"))).value();
    QTest::newRow("a payload written with \"_\" does not read back") << ownUrlSafe << false << QByteArray();
    QTest::newRow("the empty text is rejected") << QByteArray() << false << QByteArray();
}

void TestJwtToken::fromValue()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, valid);
    QFETCH(QByteArray, signature);
    const auto token = Token::fromValue(text);
    QCOMPARE(bool(token), valid);
    if (token)
        QCOMPARE(token->signature(), signature);
}

void TestJwtToken::verify_data()
{
    QTest::addColumn<int>("signedWith");
    QTest::addColumn<QByteArray>("verifyKey");
    QTest::addColumn<int>("verifyWith");
    QTest::addColumn<QVariant>("now"); // seconds, invalid for no time
    QTest::addColumn<QString>("expected");
    using A = SignatureAlgorithm;
    QTest::newRow("the signing key and algorithm verify")
        << int(A::HS256) << key << int(A::HS256) << QVariant(now) << "NoError";
    QTest::newRow("HS384 verifies") << int(A::HS384) << key << int(A::HS384) << QVariant(now) << "NoError";
    QTest::newRow("HS512 verifies") << int(A::HS512) << key << int(A::HS512) << QVariant(now) << "NoError";
    QTest::newRow("another algorithm fails")
        << int(A::HS256) << key << int(A::HS384) << QVariant(now) << "SignatureInvalid";
    QTest::newRow("another key fails")
        << int(A::HS256) << QByteArray("secreT") << int(A::HS256) << QVariant() << "SignatureInvalid";
    QTest::newRow("a prefix of the key fails")
        << int(A::HS256) << QByteArray("secre") << int(A::HS256) << QVariant() << "SignatureInvalid";
    QTest::newRow("None does not pass for HS256")
        << int(A::HS256) << key << int(A::None) << QVariant() << "SignatureInvalid";
    QTest::newRow("None verifies its empty signature")
        << int(A::None) << QByteArray() << int(A::None) << QVariant() << "NoError";
    QTest::newRow("now at exp is expired")
        << int(A::HS256) << key << int(A::HS256) << QVariant(now + 100) << "TokenExpired";
    QTest::newRow("a second before exp is valid")
        << int(A::HS256) << key << int(A::HS256) << QVariant(now + 99) << "NoError";
    QTest::newRow("now at nbf is valid")
        << int(A::HS256) << key << int(A::HS256) << QVariant(now - 100) << "NoError";
    QTest::newRow("before nbf is not yet valid")
        << int(A::HS256) << key << int(A::HS256) << QVariant(now - 101) << "TokenNotYetValid";
    QTest::newRow("time is checked before the signature")
        << int(A::HS256) << QByteArray("bad") << int(A::HS256) << QVariant(now - 101) << "TokenNotYetValid";
    QTest::newRow("without now an expired token verifies")
        << int(A::HS256) << key << int(A::HS256) << QVariant() << "NoError";
}

void TestJwtToken::verify()
{
    QFETCH(int, signedWith);
    QFETCH(QByteArray, verifyKey);
    QFETCH(int, verifyWith);
    QFETCH(QVariant, now);
    QFETCH(QString, expected);
    const Token token = signedToken(SignatureAlgorithm::Type(signedWith));
    const QDateTime time = at(now.toLongLong());
    const auto result = token.verify(verifyKey, SignatureAlgorithm::Type(verifyWith),
                                     now.isValid() ? boost::optional<const QDateTime&>(time) : boost::none);
    QCOMPARE(VerificationError::toString(result), expected);
    // The parsed copy checks the same way.
    const auto parsed = Token::fromValue(token.value());
    QVERIFY(parsed);
    QCOMPARE(*parsed, token);
    QCOMPARE(parsed->verifySignature(verifyKey, SignatureAlgorithm::Type(verifyWith)),
             token.verifySignature(verifyKey, SignatureAlgorithm::Type(verifyWith)));
}

void TestJwtToken::signWithNone()
{
    Token token;
    token.signWith(key, boost::none);
    QVERIFY(token.signature().isEmpty());
    QCOMPARE(token.value(), QByteArray("eyJhbGciOiJOb25lIiwidHlwIjoiSldUIn0.e30."));
    // An algorithm text the library does not know signs as None.
    token.setHeader(Header().withParam(QStringLiteral("alg"), QStringLiteral("RS256")))
        .signWith(key, boost::none);
    QVERIFY(token.signature().isEmpty());
    QVERIFY(token.verifySignature(key, SignatureAlgorithm::None));
}

void TestJwtToken::missingAlgorithmThrows()
{
    const auto header = Header::fromValue(QByteArray(R"({"typ":"JWT"})").toBase64());
    QVERIFY(header);
    Token token;
    token.setHeader(*header);
    const QString expected =
        QStringLiteral("Attempted to access the value of an uninitialized optional object.");
    try {
        token.signWith(key, boost::none);
        QFAIL("signWith without alg did not throw");
    } catch (const boost::bad_optional_access& error) {
        QCOMPARE(QString::fromLatin1(error.what()), expected);
    }
    QVERIFY_EXCEPTION_THROWN(token.verifySignature(key, SignatureAlgorithm::None),
                             boost::bad_optional_access);
    QVERIFY_EXCEPTION_THROWN(token.verify(key, SignatureAlgorithm::None, boost::none),
                             boost::bad_optional_access);
    // A failed time check returns before the algorithm is read.
    const QDateTime late = at(now);
    token.setPayload(Payload().with<Claim::ExpirationTime>(at(now)));
    QCOMPARE(token.verify(key, SignatureAlgorithm::None, late), VerificationError::TokenExpired);
    // Naming the algorithm repairs the header.
    token.signWith(key, SignatureAlgorithm::HS256);
    QCOMPARE(token.verify(key, SignatureAlgorithm::HS256, boost::none), VerificationError::NoError);
}

void TestJwtToken::settersDropOnlyTheirCache()
{
    Token token = signedToken(SignatureAlgorithm::HS256);
    const QByteArray before = token.value();
    const QByteArray signature = token.signature();
    token.setPayload(Payload().with<Claim::Subject>(QStringLiteral("other")));
    const QList<QByteArray> parts = token.value().split('.');
    QCOMPARE(parts.at(0), before.split('.').at(0));
    QCOMPARE(parts.at(1), token.payload().value());
    QCOMPARE(token.signature(), signature);
    QCOMPARE(token.verify(key, SignatureAlgorithm::HS256, boost::none), VerificationError::SignatureInvalid);
    token.setHeader(Header().with<HeaderParameter::Algorithm>(SignatureAlgorithm::HS512))
        .signWith(key, boost::none);
    QCOMPARE(token.verify(key, SignatureAlgorithm::HS512, boost::none), VerificationError::NoError);
    QCOMPARE(token.value().split('.').at(0), token.header().value());
}

void TestJwtToken::equality()
{
    const Token token = signedToken(SignatureAlgorithm::HS256);
    Token copy = token;
    QVERIFY(copy == token);
    copy.value(); // filling the caches changes nothing
    QVERIFY(copy == token);
    QVERIFY(Token(token).setSignature(QByteArray()) != token);
    QVERIFY(Token(token).setPayload(Payload()) != token);
    QVERIFY(Token(token).setHeader(Header()) != token);
    QVERIFY(Token() == Token());
}

void TestJwtToken::contentSerializer()
{
    ContentSerializer serializer;
    const Token token = signedToken(SignatureAlgorithm::HS384);
    bool ok = false;
    const Content content = serializer.serialize(token, &ok);
    QVERIFY(ok);
    QCOMPARE(content.contract, QStringLiteral("rfc7519"));
    QCOMPARE(content.mimeType, QStringLiteral("application/jwt"));
    QCOMPARE(content.data, token.value());
    QCOMPARE(serializer.contract(), content.contract);

    Token read;
    serializer.deserialize(content, read, &ok);
    QVERIFY(ok);
    QCOMPARE(read, token);
    QCOMPARE(Helpers::tokenFromContent(content), boost::make_optional(token));
    const Content viaHelper = Helpers::tokenToContent(token);
    QCOMPARE(viaHelper.data, content.data);
    QCOMPARE(viaHelper.mimeType, content.mimeType);

    const Token untouched = signedToken(SignatureAlgorithm::HS512);
    const Content wrong[] = {{content.contract, QStringLiteral("application/JWT"), content.data},
                             {QStringLiteral("rfc7515"), content.mimeType, content.data},
                             {content.contract, content.mimeType, content.data + ".x"}};
    for (const Content& bad : wrong) {
        Token target = untouched;
        ok = true;
        serializer.deserialize(bad, target, &ok);
        QVERIFY(!ok);
        QCOMPARE(target, untouched);
        serializer.deserialize(bad, target, nullptr);
        QVERIFY(!Helpers::tokenFromContent(bad));
    }
    ISerializer<Token, Content>& generic = serializer;
    QCOMPARE(generic.contract(), QStringLiteral("rfc7519"));
}

void TestJwtToken::pyjwtTokens_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("algorithm");
    QTest::addColumn<QVariant>("now");
    QTest::addColumn<QString>("expected");
    for (const QJsonValue row : fixtures(QStringLiteral("pyjwt_tokens.json"))) {
        const QJsonObject o = row.toObject();
        QTest::newRow(qPrintable(o[QLatin1String("name")].toString()))
            << o[QLatin1String("token")].toString().toLatin1()
            << QByteArray::fromHex(o[QLatin1String("key_hex")].toString().toLatin1())
            << o[QLatin1String("verify_alg")].toString() << o[QLatin1String("now")].toVariant()
            << o[QLatin1String("expect")].toString();
    }
}

void TestJwtToken::pyjwtTokens()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, key);
    QFETCH(QString, algorithm);
    QFETCH(QVariant, now);
    QFETCH(QString, expected);
    const auto token = Token::fromValue(text);
    QVERIFY(token);
    bool ok = false;
    const auto type = SignatureAlgorithm::fromString(algorithm, &ok);
    QVERIFY(ok);
    const QDateTime time = at(now.toLongLong());
    const auto result =
        token->verify(key, type, now.isNull() ? boost::none : boost::optional<const QDateTime&>(time));
    QCOMPARE(VerificationError::toString(result), expected);
    if (expected == QLatin1String("NoError"))
        QCOMPARE(token->value(), text); // byte-identical re-encoding
}

void TestJwtToken::libraryTokensVerifyInPyJwt_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("pyjwt");
    QTest::addColumn<QVariantMap>("pyjwtClaims");
    for (const QJsonValue row : fixtures(QStringLiteral("library_tokens.json"))) {
        const QJsonObject o = row.toObject();
        const QJsonObject pyjwt = o[QLatin1String("pyjwt")].toObject();
        QTest::newRow(qPrintable(o[QLatin1String("name")].toString()))
            << o[QLatin1String("token")].toString().toLatin1() << pyjwt[QLatin1String("result")].toString()
            << pyjwt[QLatin1String("claims")].toObject().toVariantMap();
    }
}

void TestJwtToken::libraryTokensVerifyInPyJwt()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, pyjwt);
    QFETCH(QVariantMap, pyjwtClaims);
    const Token token = libraryToken(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(token.value(), text);
    QCOMPARE(pyjwt, QStringLiteral("valid"));
    // PyJWT read the claims the library wrote.
    const QByteArray json = QByteArray::fromBase64(text.split('.').at(1), QByteArray::Base64UrlEncoding);
    QCOMPARE(QJsonDocument::fromJson(json).object().keys(), pyjwtClaims.keys());
    for (auto it = pyjwtClaims.cbegin(); it != pyjwtClaims.cend(); ++it)
        QCOMPARE(QJsonValue::fromVariant(token.payload().getClaim(it.key())),
                 QJsonValue::fromVariant(it.value()));
}

void TestJwtToken::badInput_data()
{
    QTest::addColumn<QByteArray>("text");
    const QByteArray good = signedToken(SignatureAlgorithm::HS256).value();
    QTest::newRow("only dots") << QByteArray("..");
    QTest::newRow("a million dots") << QByteArray(1000000, '.');
    QTest::newRow("a huge header") << QByteArray(8 << 20, 'e') + ".e30.";
    QTest::newRow("non-UTF-8 bytes") << QByteArray("\xff\xfe\x80.\xc3\x28.\xed\xa0\x80");
    QTest::newRow("NUL bytes") << QByteArray("\0.\0.\0", 5);
    QTest::newRow("base64 of an array") << QByteArray("WzFd.WzFd.");
    QTest::newRow("base64 of a string") << QByteArray("ImEi.ImEi.");
    QTest::newRow("base64 of null") << QByteArray("bnVsbA.bnVsbA.");
    QTest::newRow("bad base64 everywhere") << QByteArray("!!!!.@@@@.####");
    QTest::newRow("deep nesting") << QByteArray(R"({"a":)").append(QByteArray(100000, '[')).toBase64() +
                                         ".e30.";
    QTest::newRow("a truncated token") << good.left(good.size() / 2);
    QTest::newRow("a signature of bad base64") << good.left(good.lastIndexOf('.')) + ".%%%";
}

void TestJwtToken::badInput()
{
    QFETCH(QByteArray, text);
    const auto token = Token::fromValue(text);
    if (token) {
        QVERIFY(!token->verifySignature(key, SignatureAlgorithm::HS256));
        compareReadBack(*token);
    }
    QCOMPARE(
        bool(Helpers::tokenFromContent({QStringLiteral("rfc7519"), QStringLiteral("application/jwt"), text})),
        bool(token));
}

// Every prefix and a sweep of byte changes: a token that still parses must
// re-serialise to text that parses to the same token, and must not verify.
void TestJwtToken::damagedTokens()
{
    const Token original = signedToken(SignatureAlgorithm::HS256);
    const QByteArray good = original.value();
    int parsed = 0;
    for (int length = 0; length < good.size(); ++length) {
        const auto token = Token::fromValue(good.left(length));
        if (token) {
            ++parsed;
            QVERIFY(!token->verifySignature(key, SignatureAlgorithm::HS256));
        }
    }
    QVERIFY(parsed > 0); // cuts inside the signature still parse
    const char replacements[] = {'A', '_', '-', '.', '=', '\0', '\x80'};
    for (int i = 0; i < good.size(); ++i) {
        for (char c : replacements) {
            QByteArray text = good;
            if (text[i] == c)
                continue;
            text[i] = c;
            const auto token = Token::fromValue(text);
            if (!token)
                continue;
            compareReadBack(*token);
            if (!token->header().get<HeaderParameter::Algorithm>())
                QVERIFY_EXCEPTION_THROWN(token->verify(key, SignatureAlgorithm::HS256, boost::none),
                                         boost::bad_optional_access);
            else if (*token != original)
                QCOMPARE(token->verify(key, SignatureAlgorithm::HS256, boost::none),
                         VerificationError::SignatureInvalid);
        }
    }
}

QTEST_GUILESS_MAIN(TestJwtToken)
#include "tst_jwttoken.moc"
