#include "jsonwebtoken/enums.h"

#include "basetypes/enumhelpers_p.h"

namespace jsonWebToken {

QString SignatureAlgorithm::toString(Type value)
{
    switch (value) {
    case None:
        return QStringLiteral("None");
    case HS256:
        return QStringLiteral("HS256");
    case HS384:
        return QStringLiteral("HS384");
    case HS512:
        return QStringLiteral("HS512");
    }
    return QString();
}

KVBASE_ENUM_FROM_STRING(SignatureAlgorithm)

const QVector<SignatureAlgorithm::Type>& SignatureAlgorithm::values()
{
    static const QVector<Type> all{None, HS256, HS384, HS512};
    return all;
}

QString HeaderParameter::toString(Type value)
{
    switch (value) {
    case Algorithm:
        return QStringLiteral("alg");
    case Audience:
    case AudienceList:
        return QStringLiteral("aud");
    case ContentType:
        return QString();
    case Issuer:
        return QStringLiteral("iss");
    case Subject:
        return QStringLiteral("sub");
    case TokenType:
        return QStringLiteral("typ");
    }
    return QString();
}

KVBASE_ENUM_FROM_STRING(HeaderParameter)

const QVector<HeaderParameter::Type>& HeaderParameter::values()
{
    static const QVector<Type> all{Algorithm, Audience, AudienceList, Issuer, Subject, TokenType};
    return all;
}

QString Claim::toString(Type value)
{
    switch (value) {
    case Audience:
    case AudienceList:
        return QStringLiteral("aud");
    case ExpirationTime:
        return QStringLiteral("exp");
    case IssuedAt:
        return QStringLiteral("iat");
    case Issuer:
        return QStringLiteral("iss");
    case JwtId:
        return QStringLiteral("jti");
    case NotBefore:
        return QStringLiteral("nbf");
    case Subject:
        return QStringLiteral("sub");
    }
    return QString();
}

KVBASE_ENUM_FROM_STRING(Claim)

const QVector<Claim::Type>& Claim::values()
{
    static const QVector<Type> all{Audience, AudienceList, ExpirationTime, IssuedAt,
                                   Issuer,   JwtId,        NotBefore,      Subject};
    return all;
}

QString VerificationError::toString(Type value)
{
    switch (value) {
    case Unknown:
        return QStringLiteral("Unknown");
    case NoError:
        return QStringLiteral("NoError");
    case ClaimMissing:
        return QStringLiteral("ClaimMissing");
    case ClaimValueUnexpected:
        return QStringLiteral("ClaimValueUnexpected");
    case HeaderParameterMissing:
        return QStringLiteral("HeaderParameterMissing");
    case HeaderValueUnexpected:
        return QStringLiteral("HeaderValueUnexpected");
    case IssuerUnknown:
        return QStringLiteral("IssuerUnknown");
    case SignatureInvalid:
        return QStringLiteral("SignatureInvalid");
    case TokenExpired:
        return QStringLiteral("TokenExpired");
    case TokenNotYetValid:
        return QStringLiteral("TokenNotYetValid");
    case TokenRevoked:
        return QStringLiteral("TokenRevoked");
    }
    return QString();
}

QString VerificationError::toDisplayString(Type value)
{
    return toString(value);
}

KVBASE_ENUM_FROM_STRING(VerificationError)

const QVector<VerificationError::Type>& VerificationError::values()
{
    static const QVector<Type> all{Unknown,
                                   NoError,
                                   ClaimMissing,
                                   ClaimValueUnexpected,
                                   HeaderParameterMissing,
                                   HeaderValueUnexpected,
                                   IssuerUnknown,
                                   SignatureInvalid,
                                   TokenExpired,
                                   TokenNotYetValid,
                                   TokenRevoked};
    return all;
}

} // namespace jsonWebToken
