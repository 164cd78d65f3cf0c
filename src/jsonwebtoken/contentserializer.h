#ifndef KVBASE_JSONWEBTOKEN_CONTENTSERIALIZER_H
#define KVBASE_JSONWEBTOKEN_CONTENTSERIALIZER_H

/// \file jsonwebtoken/contentserializer.h
/// \brief Tokens carried as Content.

#include "kvbase_export.h"

#include "jsonwebtoken/content.h"
#include "jsonwebtoken/token.h"

#include <boost/optional.hpp>

namespace jsonWebToken {

/// Carries tokens as Content with contract "rfc7519" and media type
/// "application/jwt" (both compared exactly when reading). Has no state:
/// thread-safe.
///
/// \code
/// const Content content = jsonWebToken::Helpers::tokenToContent(token);   // contract "rfc7519"
/// const boost::optional<Token> back = jsonWebToken::Helpers::tokenFromContent(content);
/// \endcode
class KVBASE_EXPORT ContentSerializer : public ISerializer<Token, Content>
{
public:
    /// The serializer; it has no state.
    ContentSerializer();
    ~ContentSerializer() override;

    /// \return "rfc7519"
    QString contract() const override;
    /// Reads a token.
    /// \param content the content; contract and media type must match exactly
    /// \param token   receives the token; unchanged on failure
    /// \param ok      receives false on another contract or media type or on text
    ///                Token::fromValue() rejects; may be null
    void deserialize(const Content& content, Token& token, bool* ok) const override;
    /// Never fails.
    /// \param token the token
    /// \param ok    receives true; may be null
    /// \return the content: contract "rfc7519", media type "application/jwt", Token::value()
    Content serialize(const Token& token, bool* ok) override;
};

/// One-call forms of ContentSerializer.
namespace Helpers {

/// \param content the content
/// \return the token in `content`, or empty where ContentSerializer::deserialize() fails
KVBASE_EXPORT boost::optional<Token> tokenFromContent(const Content& content);
/// \param token the token
/// \return ContentSerializer::serialize() of the token
KVBASE_EXPORT Content tokenToContent(const Token& token);

} // namespace Helpers

} // namespace jsonWebToken

#endif
