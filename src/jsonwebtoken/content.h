#ifndef KVBASE_JSONWEBTOKEN_CONTENT_H
#define KVBASE_JSONWEBTOKEN_CONTENT_H

/// \file jsonwebtoken/content.h
/// \brief Serialised content and the serializer interface.

#include <QByteArray>
#include <QString>

/// Serialised content as it travels between applications: the contract that
/// names the format (e.g. "rfc7519"), the media type and the bytes. A plain
/// value; reentrant.
struct Content
{
    /// The format's contract name, e.g. "rfc7519".
    QString contract;
    /// The media type, e.g. "application/jwt".
    QString mimeType;
    /// The serialised bytes.
    QByteArray data;
};

/// Turns values of type T into TContent (normally Content) and back. An
/// implementation states its contract name and its thread rules; `ok`, where
/// taken, may be null.
/// \tparam T        the value type
/// \tparam TContent the content type, normally Content
template <typename T, typename TContent>
class ISerializer
{
public:
    virtual ~ISerializer() = default;
    /// \return the contract name this serializer writes and accepts; empty in the base
    virtual QString contract() const { return QString(); }
    /// Fills `value` from `content`.
    /// \param content the serialised content
    /// \param value   receives the value; unchanged on failure
    /// \param ok      receives whether it succeeded; may be null
    virtual void deserialize(const TContent& content, T& value, bool* ok) const = 0;
    /// Serialises a value.
    /// \param value the value
    /// \param ok    receives whether it succeeded; may be null
    /// \return the content
    virtual TContent serialize(const T& value, bool* ok) = 0;
};

#endif
