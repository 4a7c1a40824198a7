#pragma once

#include <QString>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <memory>

namespace navrel {

/// Jobs that block, each on a thread of its own that nobody waits for; only so many at a time,
/// since what asks for them may be a device that asks without end. Jobs may outlive the object, and
/// end with the process at the latest. Any thread.
class Errands {
public:
    using Job = std::function<void()>;

    /// `name` is what the log calls them: "requests to Xcode".
    Errands(QString name, int atMost);

    /// Starts all of these jobs, in their order, or none. False, which is logged, when too many run
    /// already, or the system has no thread to run them on: then none but those before the first
    /// that has none.
    bool start(std::initializer_list<Job> jobs) const;

private:
    const QString name_;
    const int atMost_;
    const std::shared_ptr<std::atomic<int>> running_ = std::make_shared<std::atomic<int>>(0);
};

} // namespace navrel
