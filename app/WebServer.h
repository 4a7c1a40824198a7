#pragma once

#include <QString>
#include <QUrl>

namespace navrel {

/// The maker's web server: what NAVREL_SERVER says ("http://HOST[:PORT]"), or else what the program
/// was configured with when it was built.
QUrl webServer();

} // namespace navrel
