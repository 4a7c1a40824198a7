#pragma once

#include <QString>
#include <QUrl>

namespace navrel {

/// The web server for updates and the manual: what NAVREL_SERVER says ("http://HOST[:PORT]"), or
/// else what the program was configured with when it was built. A value of another form is logged
/// and ignored.
QUrl webServer();

/// Whether a URL names a server that can be reached by HTTP: not one without a host, nor one whose
/// name is reserved for having no address (".invalid"), which is how a program is built that has no
/// server.
bool hasAddress(const QUrl& url);

} // namespace navrel
