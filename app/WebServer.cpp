#include "app/WebServer.h"

#include "support/core/Log.h"

namespace navrel {

namespace {

constexpr char kVariable[] = "NAVREL_SERVER";
const QString kReserved = QStringLiteral("invalid");

bool isWebAddress(const QUrl& url) {
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QStringLiteral("http") || url.scheme() == QStringLiteral("https"));
}

} // namespace

QUrl webServer() {
    const QUrl builtIn(QStringLiteral(NAVREL_DEFAULT_SERVER));
    const QString text = qEnvironmentVariable(kVariable);
    if (text.isEmpty()) {
        return builtIn;
    }
    const QUrl url(text, QUrl::StrictMode);
    if (!isWebAddress(url)) {
        log(QStringLiteral("Ignoring %1, which is not of the form \"http://HOST[:PORT]\": %2")
                .arg(QLatin1String(kVariable), text));
        return builtIn;
    }
    return url;
}

bool hasAddress(const QUrl& url) {
    const QString host = url.host();
    return isWebAddress(url) && host != kReserved && !host.endsWith(QLatin1Char('.') + kReserved);
}

} // namespace navrel
