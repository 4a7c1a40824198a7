#pragma once

#include "support/core/Clock.h"

#include <QString>

#include <chrono>
#include <optional>

namespace navrel {

class Error;
class ProjectDialogs;

/// Shows the error of opening the store, without flooding the user: every access to the store
/// presents it, several times a second. So there is one window for one cause, and none for a minute
/// after the user dismissed it. Errors that are not shown are counted, and the count is logged.
/// Main thread.
class StoreErrorWindow {
public:
    static constexpr std::chrono::minutes kQuietTime{1};

    /// Both must outlive the window.
    StoreErrorWindow(ProjectDialogs& dialogs, const Clock& clock);

    /// Shows the error (modal), or counts it.
    void present(const Error& error);

    /// Must be called when the store was opened: the next error is shown at once.
    void forget();

private:
    bool isQuietAbout(const QString& cause) const;
    void logCount();

    ProjectDialogs& dialogs_;
    const Clock& clock_;
    QString cause_; ///< of the window that is shown or was shown last
    bool isShown_ = false;
    std::optional<Clock::TimePoint> dismissed_;
    quint64 counted_ = 0;
};

} // namespace navrel
