#include "project/StoreErrorWindow.h"

#include "project/ProjectDialogs.h"
#include "support/core/Error.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"

#include <QScopedValueRollback>

namespace navrel {

StoreErrorWindow::StoreErrorWindow(ProjectDialogs& dialogs, const Clock& clock)
    : dialogs_(dialogs), clock_(clock) {}

void StoreErrorWindow::present(const Error& error) {
    NAVREL_ASSERT_MAIN_THREAD();
    const QString cause = error.description();
    if (isQuietAbout(cause)) {
        ++counted_;
        return;
    }
    logCount();
    cause_ = cause;
    {
        const QScopedValueRollback shown(isShown_, true);
        dialogs_.presentError(error);
    }
    dismissed_ = clock_.now();
}

void StoreErrorWindow::forget() {
    logCount();
    dismissed_.reset();
}

/// While a window is shown, any other cause waits too: windows must not pile up.
bool StoreErrorWindow::isQuietAbout(const QString& cause) const {
    return isShown_ || (dismissed_ && cause == cause_ && clock_.now() < *dismissed_ + kQuietTime);
}

void StoreErrorWindow::logCount() {
    if (counted_ > 0) {
        log(QStringLiteral("The same %1 times more: %2").arg(counted_).arg(cause_));
        counted_ = 0;
    }
}

} // namespace navrel
