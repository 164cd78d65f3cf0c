#ifndef KVBASE_JSONWEBTOKEN_CONTENT_H
#define KVBASE_JSONWEBTOKEN_CONTENT_H

#include <QByteArray>
#include <QString>

/// Serialised content as it travels between applications: the contract that
/// names the format (e.g. "rfc7519"), the media type and the bytes. A plain
/// value; reentrant.
struct Content
{
    QString contract;
    QString mimeType;
    QByteArray data;
};

/// Turns values of type T into TContent (normally Content) and back. An
/// implementation states its contract name and its thread rules; `ok`, where
/// taken, may be null.
template <typename T, typename TContent>
class ISerializer
{
public:
    virtual ~ISerializer() = default;
    /// The contract name this serializer writes and accepts; empty in the base.
    virtual QString contract() const { return QString(); }
    /// Fills `value` from `content`; on failure *ok is false and `value` is unchanged.
    virtual void deserialize(const TContent& content, T& value, bool* ok) const = 0;
    virtual TContent serialize(const T& value, bool* ok) = 0;
};

#endif
