#include "jsonwebtoken/contentserializer.h"

namespace jsonWebToken {

namespace {

QString mimeType()
{
    return QStringLiteral("application/jwt");
}

ContentSerializer& sharedSerializer()
{
    static ContentSerializer serializer;
    return serializer;
}

} // namespace

ContentSerializer::ContentSerializer() = default;
ContentSerializer::~ContentSerializer() = default;

QString ContentSerializer::contract() const
{
    return QStringLiteral("rfc7519");
}

void ContentSerializer::deserialize(const Content& content, Token& token, bool* ok) const
{
    bool parsed = false;
    if (content.contract == contract() && content.mimeType == mimeType()) {
        if (auto read = Token::fromValue(content.data)) {
            token = std::move(*read);
            parsed = true;
        }
    }
    if (ok)
        *ok = parsed;
}

Content ContentSerializer::serialize(const Token& token, bool* ok)
{
    if (ok)
        *ok = true;
    return Content{contract(), mimeType(), token.value()};
}

namespace Helpers {

boost::optional<Token> tokenFromContent(const Content& content)
{
    Token token;
    bool ok = false;
    sharedSerializer().deserialize(content, token, &ok);
    if (!ok)
        return boost::none;
    return token;
}

Content tokenToContent(const Token& token)
{
    return sharedSerializer().serialize(token, nullptr);
}

} // namespace Helpers

} // namespace jsonWebToken
