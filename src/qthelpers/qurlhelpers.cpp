#include "qthelpers/qurlhelpers.h"

#include <QRegularExpression>
#include <QRegularExpressionMatch>

#include <limits>

namespace QUrlHelpers {

namespace {

// \d and \s are ASCII here: the port must be ASCII digits for the conversion
// below, and hosts with other white space are refused later by QUrl.
const QRegularExpression& hostPortPattern()
{
    static const QRegularExpression s_Pattern(QStringLiteral("^[Tt][Cc][Pp]:([^\\s:\\/]*):(\\d+)$"));
    return s_Pattern;
}

// '$' also matches before a final line feed, which the whole text must not have.
QRegularExpressionMatch matchWholeText(const QString& text)
{
    QRegularExpressionMatch match = hostPortPattern().match(text);
    if (match.hasMatch() && match.capturedLength(0) != text.size())
        return QRegularExpressionMatch();
    return match;
}

const QString& tcpScheme()
{
    static const QString s_strScheme = QStringLiteral("tcp");
    return s_strScheme;
}

} // namespace

bool isMirelTcpHostPortString(const QString& text)
{
    return matchWholeText(text).hasMatch();
}

bool isMirelTcpHostPortUrl(const QUrl& url)
{
    if (url.isEmpty() || !url.isValid() || url.hasQuery())
        return false;
    return url.scheme() == tcpScheme() && url.path(QUrl::FullyDecoded).isEmpty();
}

QUrl urlFromMirelTcpHostPortString(const QString& text)
{
    const QRegularExpressionMatch match = matchWholeText(text);
    if (!match.hasMatch())
        return QUrl();

    bool ok = false;
    int port = match.capturedView(2).toInt(&ok, 10);
    // Too many digits for an int: still out of range, so QUrl marks the URL
    // invalid instead of it silently becoming port 0.
    if (!ok)
        port = std::numeric_limits<int>::max();

    QUrl url;
    url.setScheme(tcpScheme());
    // "Any host" is an empty host: QUrl refuses "*" as a host name.
    const QString host = match.captured(1);
    if (!host.isEmpty() && host != QLatin1String("*")) {
        url.setHost(host, QUrl::DecodedMode);
        // setPort would clear the error and leave a valid URL for any host.
        if (!url.isValid())
            return url;
    }
    url.setPort(port);
    return url;
}

QString urlToMirelTcpHostPortString(const QUrl& url)
{
    if (!isMirelTcpHostPortUrl(url))
        return QString();
    return QStringLiteral("TCP:%1:%2").arg(url.host(QUrl::FullyDecoded), QString::number(url.port(-1)));
}

} // namespace QUrlHelpers
