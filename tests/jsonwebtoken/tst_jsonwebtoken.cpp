#include "jsonwebtoken/contentserializer.h"
#include "jsonwebtoken/token.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QMetaEnum>
#include <QtTest>

#include <boost/optional/bad_optional_access.hpp>

#include <cmath>

using namespace jsonWebToken;

namespace {

const QByteArray key("secret");
const qint64 now = 1700000000;

QDateTime at(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QByteArray json(const QByteArray& segment)
{
    return QByteArray::fromBase64(segment, QByteArray::Base64UrlEncoding);
}

// The meta-object's key names, then the texts of values() in order.
template <typename Enum>
QString table()
{
    const QMetaEnum meta = QMetaEnum::fromType<typename Enum::Type>();
    QStringList keys;
    for (int i = 0; i < meta.keyCount(); ++i)
        keys << QString::fromLatin1(meta.key(i));
    QStringList texts;
    for (auto value : Enum::values())
        texts << Enum::toString(value);
    return keys.join(QLatin1Char(' ')) + QStringLiteral(" / ") + texts.join(QLatin1Char(' '));
}

template <typename Enum>
QString parse(const QString& text)
{
    bool ok = false;
    const auto value = Enum::fromString(text, &ok);
    return Enum::toString(value) + (ok ? QStringLiteral(" ok") : QStringLiteral(" failed"));
}

Token signedToken(SignatureAlgorithm::Type algorithm)
{
    Token token;
    token.setPayload(Payload()
                         .with<Claim::Subject>(QStringLiteral("monitor-7"))
                         .with<Claim::NotBefore>(at(now - 100))
                         .with<Claim::ExpirationTime>(at(now + 100)));
    return token.signWith(key, algorithm);
}

QJsonArray fixtures(const char* name)
{
    QFile file(QStringLiteral(KVBASE_TEST_DATA_DIR "/jsonwebtoken/") + QLatin1String(name));
    const QJsonArray rows = QJsonDocument::fromJson(file.open(QFile::ReadOnly) ? file.readAll() : "").array();
    if (rows.isEmpty())
        qFatal("no fixtures in %s", qPrintable(file.fileName()));
    return rows;
}

QString text(const QJsonValue& row, const char* member)
{
    return row[QLatin1String(member)].toString();
}

} // namespace

class TestJsonWebToken : public QObject
{
    Q_OBJECT

private slots:
    void enumerationTexts();
    void fromString_data();
    void fromString();
    void typedMembers();
    void segment_data();
    void segment();
    void rfc7515Example();
    void pyjwtInterop();
    void verify_data();
    void verify();
    void signing();
    void missingAlgorithmThrows();
    void contentSerializer();
    void badInput();
    void repeatedMembers_data();
    void repeatedMembers();
};

void TestJsonWebToken::enumerationTexts()
{
    QCOMPARE(table<SignatureAlgorithm>(), QStringLiteral("None HS256 HS384 HS512 / None HS256 HS384 HS512"));
    // ContentType is not listed, so no text ever reads as it; its empty name is pinned below.
    QCOMPARE(table<HeaderParameter>(), QStringLiteral("Algorithm Audience AudienceList ContentType Issuer "
                                                      "Subject TokenType / alg aud aud iss sub typ"));
    QCOMPARE(table<Claim>(), QStringLiteral("Audience AudienceList ExpirationTime IssuedAt Issuer JwtId "
                                            "NotBefore Subject / aud aud exp iat iss jti nbf sub"));
    const QString errors = QStringLiteral("Unknown NoError ClaimMissing ClaimValueUnexpected "
                                          "HeaderParameterMissing HeaderValueUnexpected IssuerUnknown "
                                          "SignatureInvalid TokenExpired TokenNotYetValid TokenRevoked");
    QCOMPARE(table<VerificationError>(), errors + QStringLiteral(" / ") + errors);
    QCOMPARE(VerificationError::toDisplayString(VerificationError::NoError), QLatin1String("NoError"));
    QVERIFY(SignatureAlgorithm::toString(SignatureAlgorithm::Type(4)).isNull());
    QVERIFY(HeaderParameter::toString(HeaderParameter::Type(-1)).isNull());
    QVERIFY(Claim::toString(Claim::Type(8)).isNull());
    QVERIFY(VerificationError::toString(VerificationError::Type(11)).isNull());
}

void TestJsonWebToken::fromString_data()
{
    QTest::addColumn<QString>("parsed");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the first word counts, ignoring case")
        << parse<SignatureAlgorithm>("  hs512 x") << "HS512 ok";
    QTest::newRow("a prefix takes the first match") << parse<SignatureAlgorithm>("hs") << "HS256 ok";
    QTest::newRow("an unknown algorithm gives None") << parse<SignatureAlgorithm>("RS256") << "None failed";
    QTest::newRow("blanks only match the first value") << parse<SignatureAlgorithm>("\t ") << "None ok";
    QTest::newRow("a claim by its JSON name") << parse<Claim>("NBF") << "nbf ok";
    QTest::newRow("an error prefix") << parse<VerificationError>("token") << "TokenExpired ok";
}

void TestJsonWebToken::fromString()
{
    QFETCH(QString, parsed);
    QFETCH(QString, expected);
    QCOMPARE(parsed, expected);
}

void TestJsonWebToken::typedMembers()
{
    // base64url of {"alg":"None","typ":"JWT"}, computed with Python's base64 module.
    QCOMPARE(Header().value(), QByteArray("eyJhbGciOiJOb25lIiwidHlwIjoiSldUIn0"));
    Header header;
    header.with<0>(SignatureAlgorithm::HS384).with<4>(QStringLiteral("me")).with<3>(QStringLiteral("x"));
    QCOMPARE(json(header.value()), QByteArray(R"({"":"x","alg":"HS384","iss":"me","typ":"JWT"})"));
    QCOMPARE(header.get(HeaderParameter::Algorithm).value<SignatureAlgorithm::Type>(),
             SignatureAlgorithm::HS384);
    QVERIFY(!header.get(HeaderParameter::Type(7)).isValid());
    header.withParam(QStringLiteral("alg"), QStringLiteral("XYZ"));
    QCOMPARE(header.get<0>(), boost::make_optional(SignatureAlgorithm::None));

    // Both audience views write the one "aud" member; NumericDate truncates
    // toward zero, so -1.5 s is stored as -1, not -2.
    Payload payload;
    payload.with<Claim::Audience>(QStringLiteral("a")).with<Claim::AudienceList>({"b", "c"});
    payload.with<Claim::ExpirationTime>(at(now).addMSecs(999)).with<Claim::NotBefore>(at(0).addMSecs(-1500));
    QCOMPARE(json(payload.value()), QByteArray(R"({"aud":["b","c"],"exp":1700000000,"nbf":-1})"));
    QCOMPARE(payload.get<Claim::ExpirationTime>(), boost::make_optional(at(now)));
    QCOMPARE(payload.get(Claim::NotBefore), QVariant(at(-1)));
    QVERIFY(!payload.get(Claim::Type(8)).isValid());

    // A present time claim always reads as a time, whatever was stored.
    const auto iat = [](const QVariant& stored) {
        return *Payload().withClaim(QStringLiteral("iat"), stored).get<Claim::IssuedAt>();
    };
    QCOMPARE(iat(1.5), at(2)); // JSON numbers arrive as doubles
    QCOMPARE(iat(QStringLiteral("soon")), at(0));
    QCOMPARE(iat(std::nan("")), at(0));
    QCOMPARE(iat(-HUGE_VAL), at(-std::numeric_limits<qint64>::max() / 1000));
}

void TestJsonWebToken::segment_data()
{
    QTest::addColumn<QByteArray>("segment");
    QTest::addColumn<QByteArray>("expected"); // read back as JSON, empty when rejected
    QTest::newRow("an object is read, unknown members kept, and re-encoded sorted")
        << QByteArray(R"({"x":{"y":[true,null]},"n":1})").toBase64()
        << QByteArray(R"({"n":1,"x":{"y":[true,null]}})");
    // {"sub":"?>?"} has "/" in standard base64; the URL-safe "_" is skipped, not read as it.
    QTest::newRow("the standard alphabet is read")
        << QByteArray("eyJzdWIiOiI/Pj8ifQ") << QByteArray(R"({"sub":"?>?"})");
    QTest::newRow("url-safe letters are skipped") << QByteArray("eyJzdWIiOiI_Pj8ifQ") << QByteArray();
    QTest::newRow("an empty object is rejected") << QByteArray("e30") << QByteArray();
    QTest::newRow("an array is rejected") << QByteArray(R"([{"a":1}])").toBase64() << QByteArray();
    QTest::newRow("invalid JSON is rejected") << QByteArray(R"({"a":})").toBase64() << QByteArray();
}

void TestJsonWebToken::segment()
{
    QFETCH(QByteArray, segment);
    QFETCH(QByteArray, expected);
    const auto header = Header::fromValue(segment);
    const auto payload = Payload::fromValue(segment);
    QCOMPARE(bool(header), !expected.isEmpty());
    QCOMPARE(bool(payload), !expected.isEmpty());
    if (payload) {
        QCOMPARE(json(payload->value()), expected);
        QCOMPARE(json(header->value()), expected);
    }
}

void TestJsonWebToken::rfc7515Example()
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
    // The key and signature are right for the text as sent...
    const QByteArray signedPart = text.left(text.lastIndexOf('.'));
    QCOMPARE(QMessageAuthenticationCode::hash(signedPart, rfcKey, QCryptographicHash::Sha256),
             token->signature());
    // ...but the MAC is taken over the library's own compact encoding.
    QCOMPARE(token->verify(rfcKey, SignatureAlgorithm::HS256, boost::none),
             VerificationError::SignatureInvalid);
}

// Both ways: PyJWT's tokens check here as the fixture expects (those whose
// JSON matches ours byte for byte re-serialise unchanged), and the library's
// tokens, which PyJWT accepted, are still what the library writes and signs.
void TestJsonWebToken::pyjwtInterop()
{
    for (const QJsonValue row : fixtures("pyjwt_tokens.json")) {
        const QString name = text(row, "name");
        const auto token = Token::fromValue(text(row, "token").toLatin1());
        QVERIFY2(token, qPrintable(name));
        const QDateTime time = at(row[QLatin1String("now")].toVariant().toLongLong());
        const auto result = token->verify(
            QByteArray::fromHex(text(row, "key_hex").toLatin1()),
            SignatureAlgorithm::fromString(text(row, "verify_alg"), nullptr),
            row[QLatin1String("now")].isNull() ? boost::none : boost::optional<const QDateTime&>(time));
        QCOMPARE(name + ": " + VerificationError::toString(result), name + ": " + text(row, "expect"));
        if (result == VerificationError::NoError)
            QCOMPARE(token->value(), text(row, "token").toLatin1());
    }
    for (const QJsonValue row : fixtures("library_tokens.json")) {
        const QString name = text(row, "name");
        QCOMPARE(name + ": " + text(row[QLatin1String("pyjwt")], "result"), name + ": valid");
        const auto token = Token::fromValue(text(row, "token").toLatin1());
        QVERIFY2(token, qPrintable(name));
        QCOMPARE(token->value(), text(row, "token").toLatin1());
        QCOMPARE(Token(*token).signWith(QByteArray::fromHex(text(row, "key_hex").toLatin1()), boost::none),
                 *token);
    }
}

void TestJsonWebToken::verify_data()
{
    QTest::addColumn<int>("signedWith");
    QTest::addColumn<QByteArray>("verifyKey");
    QTest::addColumn<int>("verifyWith");
    QTest::addColumn<QVariant>("time"); // seconds, invalid for none
    QTest::addColumn<QString>("expected");
    using A = SignatureAlgorithm;
    const int none = A::None, hs256 = A::HS256, hs384 = A::HS384;
    const QVariant noTime;
    QTest::newRow("another algorithm fails") << hs256 << key << hs384 << noTime << "SignatureInvalid";
    QTest::newRow("another key fails") << hs256 << key.toUpper() << hs256 << noTime << "SignatureInvalid";
    QTest::newRow("None does not pass for HS256") << hs256 << key << none << noTime << "SignatureInvalid";
    QTest::newRow("None verifies its empty signature") << none << QByteArray() << none << noTime << "NoError";
    QTest::newRow("now at exp is expired") << hs256 << key << hs256 << QVariant(now + 100) << "TokenExpired";
    QTest::newRow("a second before exp is valid") << hs256 << key << hs256 << QVariant(now + 99) << "NoError";
    QTest::newRow("now at nbf is valid") << hs256 << key << hs256 << QVariant(now - 100) << "NoError";
    QTest::newRow("time is checked first: before nbf is not yet valid")
        << hs256 << QByteArray("bad") << hs256 << QVariant(now - 101) << "TokenNotYetValid";
    QTest::newRow("an expired token verifies without a time") << hs256 << key << hs256 << noTime << "NoError";
}

void TestJsonWebToken::verify()
{
    QFETCH(int, signedWith);
    QFETCH(QByteArray, verifyKey);
    QFETCH(int, verifyWith);
    QFETCH(QVariant, time);
    QFETCH(QString, expected);
    const Token token = signedToken(SignatureAlgorithm::Type(signedWith));
    const QDateTime when = at(time.toLongLong());
    const auto algorithm = SignatureAlgorithm::Type(verifyWith);
    const auto result = token.verify(verifyKey, algorithm,
                                     time.isValid() ? boost::optional<const QDateTime&>(when) : boost::none);
    QCOMPARE(VerificationError::toString(result), expected);
    // The parsed copy is the same token and checks the same way.
    const auto parsed = Token::fromValue(token.value());
    QCOMPARE(parsed, boost::make_optional(token));
    QCOMPARE(parsed->verifySignature(verifyKey, algorithm), token.verifySignature(verifyKey, algorithm));
}

void TestJsonWebToken::signing()
{
    Token token;
    token.signWith(key, boost::none);
    QCOMPARE(token.value(), QByteArray("eyJhbGciOiJOb25lIiwidHlwIjoiSldUIn0.e30."));
    // A new payload is written out, but the signature stays until signed again.
    token.signWith(key, SignatureAlgorithm::HS256);
    const QList<QByteArray> before = token.value().split('.');
    token.setPayload(Payload().with<Claim::Subject>(QStringLiteral("other")));
    QCOMPARE(token.value().split('.'),
             QList<QByteArray>({before.at(0), token.payload().value(), before.at(2)}));
    QCOMPARE(token.verify(key, SignatureAlgorithm::HS256, boost::none), VerificationError::SignatureInvalid);
    // Only three parts make a token; an empty third one is an empty signature.
    const QByteArray body = before.at(0) + '.' + token.payload().value();
    QVERIFY(!Token::fromValue(body));
    QVERIFY(!Token::fromValue(body + ".AAEC."));
    QCOMPARE(Token::fromValue(body + ".AAEC_w")->signature(), QByteArray("\x00\x01\x02\xff", 4));
    QVERIFY(Token::fromValue(body + '.')->signature().isEmpty());
}

void TestJsonWebToken::missingAlgorithmThrows()
{
    Token token;
    token.setHeader(*Header::fromValue(QByteArray(R"({"typ":"JWT"})").toBase64()));
    try {
        token.signWith(key, boost::none);
        QFAIL("signWith without alg did not throw");
    } catch (const boost::bad_optional_access& error) {
        QCOMPARE(QString::fromLatin1(error.what()),
                 QStringLiteral("Attempted to access the value of an uninitialized optional object."));
    }
    QVERIFY_EXCEPTION_THROWN(token.verify(key, SignatureAlgorithm::None, boost::none),
                             boost::bad_optional_access);
}

void TestJsonWebToken::contentSerializer()
{
    ContentSerializer serializer;
    const Token token = signedToken(SignatureAlgorithm::HS384);
    bool ok = false;
    Content content = serializer.serialize(token, &ok);
    QVERIFY(ok);
    QCOMPARE(content.contract + ' ' + content.mimeType, QStringLiteral("rfc7519 application/jwt"));
    QCOMPARE(Helpers::tokenFromContent(Helpers::tokenToContent(token)), boost::make_optional(token));
    // The media type is compared exactly; the target is left alone.
    content.mimeType = QStringLiteral("application/JWT");
    Token target;
    serializer.deserialize(content, target, &ok);
    QVERIFY(!ok);
    QCOMPARE(target, Token());
    QVERIFY(!Helpers::tokenFromContent(content));
}

// Every prefix and a sweep of byte changes of a good token, and some hostile
// texts: whatever parses must not verify unless it is the same token, and
// reads back as itself when its signed part has no "-" or "_" (which the
// reader skips by design).
void TestJsonWebToken::badInput()
{
    const Token original = signedToken(SignatureAlgorithm::HS256);
    const QByteArray good = original.value();
    QList<QByteArray> texts{QByteArray(1000000, '.'), QByteArray("\xff\xfe\x80.\xc3\x28.\xed\xa0\x80"),
                            (R"({"a":)" + QByteArray(100000, '[')).toBase64() + ".e30."};
    for (int i = 0; i < good.size(); ++i) {
        texts << good.left(i);
        for (char c : {'A', '_', '-', '.', '=', '\0', '\x80'})
            texts << QByteArray(good).replace(i, 1, &c, 1);
    }
    for (const QByteArray& text : texts) {
        const auto token = Token::fromValue(text);
        QCOMPARE(bool(Helpers::tokenFromContent({"rfc7519", "application/jwt", text})), bool(token));
        if (!token || *token == original)
            continue;
        const QByteArray value = token->value();
        const QByteArray signedPart = value.left(value.lastIndexOf('.'));
        if (!signedPart.contains('-') && !signedPart.contains('_'))
            QCOMPARE(Token::fromValue(value), token);
        if (token->header().get<HeaderParameter::Algorithm>())
            QVERIFY(!token->verifySignature(key, SignatureAlgorithm::HS256));
        else
            QVERIFY_EXCEPTION_THROWN(token->verifySignature(key, SignatureAlgorithm::HS256),
                                     boost::bad_optional_access);
    }
}

// Repeated member names read as Qt's JSON parser reads them, the last one
// winning, although the reader works around the parser's leak of replaced
// arrays and objects (which the AddressSanitizer build would report). The
// expected members are written without repeats, so Qt parses them leak-free.
void TestJsonWebToken::repeatedMembers_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QByteArray>("expected"); // empty: refused
    const char* const rows[][3] = {
        {"array replaced", R"({"a":[1],"a":2})", R"({"a":2})"},
        {"object replaced twice", R"({"a":{"b":1},"b":0,"a":{"c":[]},"a":"x"})", R"({"a":"x","b":0})"},
        {"in nested objects", R"({"o":{"a":[1],"a":[2]},"p":[{"a":{},"a":1}]})",
         R"({"o":{"a":[2]},"p":[{"a":1}]})"},
        {"escaped name repeats a plain one", R"({"\u0061":[1],"a":2,"\u0001":3})", R"({"a":2,"\u0001":3})"},
        {"value text that looks like a name", R"({"a":"a","a":["\"a\":"],"b":"a"})",
         R"({"a":["\"a\":"],"b":"a"})"},
        {"broken after a repeat", R"({"a":[1],"a":2,)", ""},
        {"broken inside the replaced array", R"({"a":[1,,2],"a":2})", ""},
        // Qt reads an unknown escape as the character itself.
        {"unknown escape in a repeated name", R"({"\q":[1],"q":2})", R"({"q":2})"},
        {"bad unicode escape in a repeated name", R"({"\u00zz":[1],"\u00zz":2})", ""},
    };
    for (const auto& row : rows)
        QTest::newRow(row[0]) << QByteArray(row[1]) << QByteArray(row[2]);
}

void TestJsonWebToken::repeatedMembers()
{
    QFETCH(QByteArray, json);
    QFETCH(QByteArray, expected);
    const auto payload = Payload::fromValue(json.toBase64());
    QCOMPARE(bool(payload), !expected.isEmpty());
    if (payload)
        QCOMPARE(*payload, *Payload::fromValue(expected.toBase64()));
}

QTEST_GUILESS_MAIN(TestJsonWebToken)
#include "tst_jsonwebtoken.moc"
