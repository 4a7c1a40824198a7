#include "desktop/SessionBusGuard.h"

#include "desktop/SessionBusProbe.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <QDBusConnection>
#include <QString>

#include <chrono>

namespace navrel {

namespace {

/// Nobody listens there: who connects is refused at once.
const QByteArray kNoBus = QByteArrayLiteral("unix:path=/nonexistent/bus");
constexpr std::chrono::seconds kPatience{2};
} // namespace

SessionBusGuard::SessionBusGuard()
    : wasSet_(qEnvironmentVariableIsSet(kSessionBusVariable)),
      address_(qgetenv(kSessionBusVariable)) {
    const QByteArray address = sessionBusAddress();
    if (address.isEmpty() || greetsOnBus(address, kPatience)) {
        return;
    }
    hidesBus_ = true;
    qputenv(kSessionBusVariable, kNoBus);
    log(QStringLiteral("The session bus does not answer: Navrel does without it (%1)")
            .arg(QString::fromUtf8(address)));
}

SessionBusGuard::~SessionBusGuard() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (!hidesBus_) {
        return;
    }
    // What is not connected once stays so: afterwards the environment is for other programs.
    QDBusConnection::sessionBus();
    if (wasSet_) {
        qputenv(kSessionBusVariable, address_);
    } else {
        qunsetenv(kSessionBusVariable);
    }
}

} // namespace navrel
