#include "jsonwebtoken/header.h"
#include "jsonwebtoken/payload.h"

#include <QJsonDocument>
#include <QMetaEnum>
#include <QtTest>

#include <cmath>

using namespace jsonWebToken;

namespace {

template <typename Enum>
QStringList keys()
{
    const QMetaEnum meta = QMetaEnum::fromType<typename Enum::Type>();
    QStringList result;
    for (int i = 0; i < meta.keyCount(); ++i)
        result << QString::fromLatin1(meta.key(i));
    return result;
}

template <typename Enum>
QStringList texts()
{
    QStringList result;
    for (auto value : Enum::values())
        result << Enum::toString(value);
    return result;
}

template <typename Enum>
QString parse(const QString& text)
{
    bool ok = false;
    const auto value = Enum::fromString(text, &ok);
    return Enum::toString(value) + (ok ? QStringLiteral(" ok") : QStringLiteral(" failed"));
}

QByteArray json(const QByteArray& segment)
{
    return QByteArray::fromBase64(segment, QByteArray::Base64UrlEncoding);
}

QByteArray segment(const QByteArray& json)
{
    return json.toBase64();
}

QDateTime utc(qint64 msecs)
{
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC);
}

} // namespace

class TestJwtModel : public QObject
{
    Q_OBJECT

private slots:
    void enumerationTables();
    void fromString_data();
    void fromString();
    void defaultHeaderSegment();
    void typedHeaderParameters();
    void audienceViewsShareOneMember();
    void timeClaimsAreWholeSeconds();
    void timeClaimReading_data();
    void timeClaimReading();
    void fromValue_data();
    void fromValue();
    void equality();
};

void TestJwtModel::enumerationTables()
{
    QCOMPARE(keys<SignatureAlgorithm>(), QStringList({"None", "HS256", "HS384", "HS512"}));
    QCOMPARE(texts<SignatureAlgorithm>(), keys<SignatureAlgorithm>());
    QCOMPARE(keys<HeaderParameter>(), QStringList({"Algorithm", "Audience", "AudienceList", "ContentType",
                                                   "Issuer", "Subject", "TokenType"}));
    QCOMPARE(texts<HeaderParameter>(), QStringList({"alg", "aud", "aud", "iss", "sub", "typ"}));
    QVERIFY(!HeaderParameter::values().contains(HeaderParameter::ContentType));
    QVERIFY(HeaderParameter::toString(HeaderParameter::ContentType).isEmpty());
    QCOMPARE(keys<Claim>(), QStringList({"Audience", "AudienceList", "ExpirationTime", "IssuedAt", "Issuer",
                                         "JwtId", "NotBefore", "Subject"}));
    QCOMPARE(texts<Claim>(), QStringList({"aud", "aud", "exp", "iat", "iss", "jti", "nbf", "sub"}));
    QCOMPARE(keys<VerificationError>().size(), 11);
    QCOMPARE(texts<VerificationError>(), keys<VerificationError>());
    for (auto value : VerificationError::values())
        QCOMPARE(VerificationError::toDisplayString(value), VerificationError::toString(value));
    QCOMPARE(&SignatureAlgorithm::values(), &SignatureAlgorithm::values());
    QCOMPARE(SignatureAlgorithm::fromString(QStringLiteral("hs5"), nullptr), SignatureAlgorithm::HS512);

    QVERIFY(SignatureAlgorithm::toString(SignatureAlgorithm::Type(4)).isNull());
    QVERIFY(HeaderParameter::toString(HeaderParameter::Type(-1)).isNull());
    QVERIFY(Claim::toString(Claim::Type(8)).isNull());
    QVERIFY(VerificationError::toString(VerificationError::Type(11)).isNull());
}

void TestJwtModel::fromString_data()
{
    QTest::addColumn<QString>("parsed");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the first word counts, ignoring case")
        << parse<SignatureAlgorithm>("  hs512 more") << "HS512 ok";
    QTest::newRow("a prefix takes the first match") << parse<SignatureAlgorithm>("hs") << "HS256 ok";
    QTest::newRow("a longer prefix narrows it") << parse<SignatureAlgorithm>("hs3") << "HS384 ok";
    QTest::newRow("an unknown algorithm gives None") << parse<SignatureAlgorithm>("RS256") << "None failed";
    QTest::newRow("an empty text gives None") << parse<SignatureAlgorithm>("") << "None failed";
    QTest::newRow("blanks only match the first value") << parse<SignatureAlgorithm>("\t ") << "None ok";
    QTest::newRow("a claim by its JSON name") << parse<Claim>("NBF") << "nbf ok";
    QTest::newRow("a claim prefix") << parse<Claim>("a") << "aud ok";
    QTest::newRow("an unknown claim gives aud") << parse<Claim>("x") << "aud failed";
    QTest::newRow("content type is never found") << parse<HeaderParameter>("t") << "typ ok";
    QTest::newRow("an unknown parameter gives alg") << parse<HeaderParameter>("kid") << "alg failed";
    QTest::newRow("an error prefix") << parse<VerificationError>("token") << "TokenExpired ok";
    QTest::newRow("an unknown error gives Unknown") << parse<VerificationError>("Fine") << "Unknown failed";
}

void TestJwtModel::fromString()
{
    QFETCH(QString, parsed);
    QFETCH(QString, expected);
    QCOMPARE(parsed, expected);
}

void TestJwtModel::defaultHeaderSegment()
{
    // base64url of {"alg":"None","typ":"JWT"}, computed with Python's base64 module.
    QCOMPARE(Header().value(), QByteArray("eyJhbGciOiJOb25lIiwidHlwIjoiSldUIn0"));
    QCOMPARE(Payload().value(), QByteArray("e30"));
}

void TestJwtModel::typedHeaderParameters()
{
    Header header;
    QCOMPARE(header.get<HeaderParameter::Algorithm>(), boost::make_optional(SignatureAlgorithm::None));
    QCOMPARE(header.get<6>(), boost::make_optional(QStringLiteral("JWT")));
    QVERIFY(!header.get<HeaderParameter::Issuer>());

    header.with<0>(SignatureAlgorithm::HS384).with<4>(QStringLiteral("me")).with<3>(QStringLiteral("x"));
    QCOMPARE(header.getParam(QStringLiteral("alg")), QVariant(QStringLiteral("HS384")));
    QCOMPARE(header.get(HeaderParameter::Algorithm).value<SignatureAlgorithm::Type>(),
             SignatureAlgorithm::HS384);
    QCOMPARE(header.get(HeaderParameter::Issuer), QVariant(QStringLiteral("me")));
    QCOMPARE(json(header.value()), QByteArray(R"({"":"x","alg":"HS384","iss":"me","typ":"JWT"})"));
    QVERIFY(!header.get(HeaderParameter::Subject).isValid());
    QVERIFY(!header.get(HeaderParameter::Type(7)).isValid());

    header.withParam(QStringLiteral("alg"), QStringLiteral("XYZ"));
    QCOMPARE(header.get<0>(), boost::make_optional(SignatureAlgorithm::None));
}

void TestJwtModel::audienceViewsShareOneMember()
{
    Payload payload;
    payload.with<Claim::Audience>(QStringLiteral("a")).with<Claim::AudienceList>({"b", "c"});
    QCOMPARE(json(payload.value()), QByteArray(R"({"aud":["b","c"]})"));
    QCOMPARE(payload.get<Claim::AudienceList>(), boost::make_optional(QStringList({"b", "c"})));

    Header header;
    header.with<HeaderParameter::AudienceList>({"b"}).with<HeaderParameter::Audience>(QStringLiteral("a"));
    QCOMPARE(header.get<HeaderParameter::AudienceList>(), boost::make_optional(QStringList({"a"})));
}

void TestJwtModel::timeClaimsAreWholeSeconds()
{
    Payload payload;
    payload.with<2>(utc(1700000000999)).with<Claim::NotBefore>(utc(-1500));
    QCOMPARE(payload.get<Claim::ExpirationTime>(), boost::make_optional(utc(1700000000000)));
    QCOMPARE(payload.getClaim(QStringLiteral("exp")), QVariant(qint64(1700000000)));
    QCOMPARE(payload.getClaim(QStringLiteral("nbf")), QVariant(qint64(-1))); // toward zero, not down
    QCOMPARE(json(payload.value()), QByteArray(R"({"exp":1700000000,"nbf":-1})"));
    QCOMPARE(payload.get(Claim::NotBefore), QVariant(utc(-1000)));
    QVERIFY(!payload.get(Claim::Type(8)).isValid());
}

void TestJwtModel::timeClaimReading_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QDateTime>("expected");
    const qint64 maxSeconds = std::numeric_limits<qint64>::max() / 1000;
    QTest::newRow("a double is rounded") << QVariant(1.5) << utc(2000);
    QTest::newRow("a numeric text converts") << QVariant(QStringLiteral("12")) << utc(12000);
    QTest::newRow("a word reads as the epoch") << QVariant(QStringLiteral("soon")) << utc(0);
    QTest::newRow("a list reads as the epoch") << QVariant(QVariantList{1}) << utc(0);
    QTest::newRow("NaN reads as the epoch") << QVariant(std::nan("")) << utc(0);
    QTest::newRow("a huge double is the latest time") << QVariant(1e300) << utc(maxSeconds * 1000);
    QTest::newRow("minus infinity is the earliest time") << QVariant(-HUGE_VAL) << utc(-maxSeconds * 1000);
    QTest::newRow("a huge integer is the latest time")
        << QVariant(std::numeric_limits<qint64>::max()) << utc(maxSeconds * 1000);
}

void TestJwtModel::timeClaimReading()
{
    QFETCH(QVariant, stored);
    QFETCH(QDateTime, expected);
    const auto read = Payload().withClaim(QStringLiteral("iat"), stored).get<Claim::IssuedAt>();
    QVERIFY(read);
    QCOMPARE(*read, expected);
}

void TestJwtModel::fromValue_data()
{
    QTest::addColumn<QByteArray>("segment");
    QTest::addColumn<QByteArray>("expected"); // the segment read back as JSON, empty when rejected
    QTest::newRow("an object is read")
        << segment(R"({"sub":"x","n":1})") << QByteArray(R"({"n":1,"sub":"x"})");
    QTest::newRow("base64url without padding is read")
        << QByteArray("eyJzdWIiOiJ4In0") << QByteArray(R"({"sub":"x"})");
    // {"sub":"?>?"} has "/" and "+" in standard base64; the URL-safe "_" and "-" are skipped, not read as
    // them.
    QTest::newRow("url-safe letters are skipped") << QByteArray("eyJzdWIiOiI_Pj8ifQ") << QByteArray();
    QTest::newRow("the standard alphabet is read")
        << QByteArray("eyJzdWIiOiI/Pj8ifQ") << QByteArray(R"({"sub":"?>?"})");
    QTest::newRow("unknown members are kept")
        << segment(R"({"x":{"y":[true,null]}})") << QByteArray(R"({"x":{"y":[true,null]}})");
    QTest::newRow("an empty object is rejected") << segment("{}") << QByteArray();
    QTest::newRow("an array is rejected") << segment(R"([{"a":1}])") << QByteArray();
    QTest::newRow("invalid JSON is rejected") << segment(R"({"a":})") << QByteArray();
    QTest::newRow("trailing garbage is rejected") << segment(R"({"a":1}x)") << QByteArray();
    QTest::newRow("non-UTF-8 text is rejected") << segment("{\"a\":\"\xff\xfe\"}") << QByteArray();
    QTest::newRow("an empty segment is rejected") << QByteArray() << QByteArray();
    QTest::newRow("deep nesting is rejected")
        << segment(QByteArray(R"({"a":)") + QByteArray(5000, '[') + QByteArray(5000, ']') + '}')
        << QByteArray();
}

void TestJwtModel::fromValue()
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

void TestJwtModel::equality()
{
    const Header header = Header().with<HeaderParameter::Subject>(QStringLiteral("s"));
    QVERIFY(header == Header().with<HeaderParameter::Subject>(QStringLiteral("s")));
    QVERIFY(header != Header());
    QVERIFY(Payload() == Payload());
    QVERIFY(Payload().with<Claim::JwtId>(QStringLiteral("1")) !=
            Payload().with<Claim::JwtId>(QStringLiteral("2")));
    QCOMPARE(Header::fromValue(header.value()), boost::make_optional(header));
}

QTEST_GUILESS_MAIN(TestJwtModel)
#include "tst_jwtmodel.moc"
