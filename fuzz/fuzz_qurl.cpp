// libFuzzer target: any text as a host-port string and as a URL. A text is a
// host-port string exactly when it gives a URL; a valid one is a host-port URL
// whose string is again a host-port string.
#include "fuzzsupport.h"

#include "qthelpers/qurlhelpers.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::quietErrorHandler();
    const QString text = fuzz::text(data, size);
    const QUrl url = QUrlHelpers::urlFromMirelTcpHostPortString(text);
    FUZZ_CHECK(QUrlHelpers::isMirelTcpHostPortString(text) == !url.isEmpty());
    if (url.isValid() && !url.isEmpty()) {
        FUZZ_CHECK(QUrlHelpers::isMirelTcpHostPortUrl(url));
        FUZZ_CHECK(QUrlHelpers::isMirelTcpHostPortString(QUrlHelpers::urlToMirelTcpHostPortString(url)));
    } else {
        url.errorString();
    }
    for (const QUrl& any : {QUrl(text), QUrl(text, QUrl::StrictMode), QUrl::fromUserInput(text)}) {
        const QString hostPort = QUrlHelpers::urlToMirelTcpHostPortString(any);
        FUZZ_CHECK(hostPort.isEmpty() == !QUrlHelpers::isMirelTcpHostPortUrl(any));
    }
    return 0;
}
