#pragma once

#include <QDeadlineTimer>

#include <algorithm>
#include <chrono>

/// Parts of a time limit that several editors share. Any thread.
namespace navrel {

/// The deadline, or so long from now, whichever comes first.
inline QDeadlineTimer earlierOf(const QDeadlineTimer& deadline, std::chrono::milliseconds atMost) {
    const QDeadlineTimer own(atMost);
    return own < deadline ? own : deadline;
}

/// What is left until the deadline, divided among so many that come one after another: the first
/// one's end. Who takes less than that leaves the rest to those behind.
inline QDeadlineTimer shareOf(const QDeadlineTimer& deadline, std::size_t count) {
    if (deadline.isForever()) {
        return deadline;
    }
    const std::chrono::milliseconds left(deadline.remainingTime());
    return earlierOf(deadline, left / std::max<std::chrono::milliseconds::rep>(
                                          1, static_cast<std::chrono::milliseconds::rep>(count)));
}

} // namespace navrel
