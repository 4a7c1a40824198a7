#include "app/WebServer.h"

namespace navrel {

QUrl webServer() {
    return QUrl(qEnvironmentVariable("NAVREL_SERVER", QStringLiteral(NAVREL_DEFAULT_SERVER)));
}

} // namespace navrel
