#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <chrono>

namespace navrel {

/// Far beyond what a busy machine needs: for limits that a test is not about.
inline constexpr std::chrono::milliseconds kPatience{60'000};

/// Runs the event loop until the condition holds. False when the deadline passes first: a fault in
/// what is tested, since the deadline is far beyond what any machine needs.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds atMost = std::chrono::minutes(2)) {
    const QDeadlineTimer deadline(atMost);
    while (!condition()) {
        if (deadline.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

} // namespace navrel
