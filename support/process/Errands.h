#pragma once

#include <QString>

#include <atomic>
#include <functional>
#include <initializer_list>
#include <memory>

namespace navrel {

/// Runs blocking jobs, each on a thread of its own, without waiting for them. Their number is
/// limited, since a device may cause them without end. A job may outlive this object, and ends with
/// the process at the latest. Any thread.
class Errands {
public:
    using Job = std::function<void()>;

    /// `name` is what the log calls the jobs: "requests to Xcode". At most `atMost` run at a time.
    Errands(QString name, int atMost);

    /// Starts these jobs in their order. False, which is logged, if too many would run: then none
    /// is started. Also false if the system has no more threads: then the first of them may run.
    bool start(std::initializer_list<Job> jobs) const;

private:
    const QString name_;
    const int atMost_;
    const std::shared_ptr<std::atomic<int>> running_ = std::make_shared<std::atomic<int>>(0);
};

} // namespace navrel
