#ifndef KVBASE_QTHELPERS_QURLHELPERS_H
#define KVBASE_QTHELPERS_QURLHELPERS_H

/// \file qthelpers/qurlhelpers.h
/// \brief Host-port endpoint strings and their "tcp" URLs.

#include "kvbase_export.h"

#include <QString>
#include <QUrl>

/// TCP endpoints written as host-port strings "TCP:<host>:<port>" (prefix in any
/// case, host possibly empty and free of white space, ':' and '/', port in
/// decimal digits) and their URLs "tcp://<host>:<port>". Any text or URL is
/// accepted; what does not fit gives false, an empty URL or an empty string.
/// Reentrant and thread-safe.
///
/// \code
/// QUrl url = QUrlHelpers::urlFromMirelTcpHostPortString(QStringLiteral("TCP:host1:5025"));
/// // url is tcp://host1:5025
/// QString endpoint = QUrlHelpers::urlToMirelTcpHostPortString(url);   // "TCP:host1:5025"
/// \endcode
namespace QUrlHelpers {

/// \param text any text
/// \return true when the whole text is a host-port string
KVBASE_EXPORT bool isMirelTcpHostPortString(const QString& text);

/// \param url any URL
/// \return true for a valid URL with scheme "tcp" (exactly, lower case), no
///         query and an empty path
KVBASE_EXPORT bool isMirelTcpHostPortUrl(const QUrl& url);

/// The URL of a host-port string. An empty host or "*" (any host) gives a URL
/// with an empty host, as QUrl refuses "*" as a host name; host names are
/// lower-cased as QUrl does. A host QUrl refuses (e.g. "a@b") or a port above
/// 65535 gives an invalid URL whose errorString() says why. A text that is no
/// host-port string gives an empty URL.
/// \param text any text
/// \return the URL "tcp://<host>:<port>", an invalid URL or an empty one as said
KVBASE_EXPORT QUrl urlFromMirelTcpHostPortString(const QString& text);

/// The host-port string of a URL.
/// \param url any URL
/// \return "TCP:<host>:<port>" of a host-port URL, the port -1 when the URL
///         has none; an empty string for any other URL
KVBASE_EXPORT QString urlToMirelTcpHostPortString(const QUrl& url);

} // namespace QUrlHelpers

#endif
