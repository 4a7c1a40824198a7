#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <chrono>

namespace navrel {

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
