#ifndef KVBASE_JSONWEBTOKEN_CONTENTSERIALIZER_H
#define KVBASE_JSONWEBTOKEN_CONTENTSERIALIZER_H

#include "kvbase_export.h"

#include "jsonwebtoken/content.h"
#include "jsonwebtoken/token.h"

#include <boost/optional.hpp>

namespace jsonWebToken {

/// Carries tokens as Content with contract "rfc7519" and media type
/// "application/jwt" (both compared exactly when reading). Has no state:
/// thread-safe.
class KVBASE_EXPORT ContentSerializer : public ISerializer<Token, Content>
{
public:
    ContentSerializer();
    ~ContentSerializer() override;

    /// "rfc7519".
    QString contract() const override;
    /// Fails, leaving `token` unchanged, on another contract or media type or on text
    /// Token::fromValue rejects.
    void deserialize(const Content& content, Token& token, bool* ok) const override;
    /// Never fails.
    Content serialize(const Token& token, bool* ok) override;
};

namespace Helpers {

/// The token in `content`, or empty where ContentSerializer::deserialize fails.
KVBASE_EXPORT boost::optional<Token> tokenFromContent(const Content& content);
KVBASE_EXPORT Content tokenToContent(const Token& token);

} // namespace Helpers

} // namespace jsonWebToken

#endif
