#pragma once

#include "support/dispatch/MoveOnlyFunction.h"

#include <QHash>
#include <QString>
#include <QThread>

#include <deque>
#include <memory>
#include <mutex>
#include <thread>

class QObject;

namespace navrel {

/// A queue of jobs that run one at a time, in the order in which they were added, always on the
/// same thread.
///
/// The queue is not re-entrant: while one of its jobs spins an event loop of its own (a modal
/// dialog), no other job of the queue runs; they follow, in order, once that job has returned.
///
/// Needs a QCoreApplication. A queue lives as long as it is referenced or has jobs that can run.
/// When the last reference to a suspended queue goes, its jobs are destroyed without being run.
class DispatchQueue final : public std::enable_shared_from_this<DispatchQueue> {
public:
    using Job = MoveOnlyFunction<void()>;
    using SpecificDestructor = void (*)(void* value);

    /// The queue of the application's main thread, run by its event loop. Never destroyed. Any
    /// thread, once the application object exists.
    static const std::shared_ptr<DispatchQueue>& mainQueue();

    /// A new queue with a worker thread of its own; that thread runs an event loop, so channels and
    /// sources work on such a queue as on the main one.
    static std::shared_ptr<DispatchQueue> serialQueue(QString label);

    ~DispatchQueue();
    DispatchQueue(const DispatchQueue&) = delete;
    DispatchQueue& operator=(const DispatchQueue&) = delete;

    /// A name for debugging: as given to `serialQueue`, or "main" for the main queue.
    const QString& label() const { return label_; }

    /// Adds a job at the end of the queue; never runs it inside the call. Any thread.
    void async(Job job);

    /// Keeps jobs that have not begun from running, until `resume` has been called as often as
    /// `suspend`. Any thread, also from the queue's own jobs.
    void suspend();

    /// Undoes one `suspend`. Must not be called more often than that: it aborts the program. Any
    /// thread.
    void resume();

    /// Stores a value under a key, which is compared by its address. The destructor (may be null)
    /// is called once with the value: when it is replaced, on the thread that does that, or when
    /// the queue is destroyed, on the thread that releases it. A null value removes the entry. Any
    /// thread.
    void setSpecific(const void* key, void* value, SpecificDestructor destructor);

    /// The value stored under the key in this queue, or null. Any thread.
    void* specific(const void* key) const;

    /// Whether the caller is on the thread that runs this queue's jobs.
    bool isCurrentThread() const {
        static thread_local const QThread* const current = QThread::currentThread(); // asked often
        return current == thread_;
    }

    /// Runs the job at once, as a job of this queue, and then those that it adds, if no other job
    /// is running or waiting and the queue is not suspended. Otherwise runs nothing and returns
    /// false. Only for the queue's thread: saves a turn of its event loop when an event arrives
    /// there.
    bool tryPerform(Job job);

private:
    struct Specific {
        void* value = nullptr;
        SpecificDestructor destructor = nullptr;
        void destroy() const;
    };

    explicit DispatchQueue(QString label);
    void startWorker();
    bool canRun() const { return !isRunning_ && suspendCount_ == 0; }
    void scheduleDrainIfNeeded();
    void drain();
    void runWaitingJobs(std::unique_lock<std::mutex>& lock);

    const QString label_;
    QThread* thread_ = nullptr; ///< runs the jobs
    QObject* runner_ = nullptr; ///< lives on the queue's thread; owned by the worker there
    std::thread worker_;        ///< none for the main queue

    mutable std::mutex mutex_; ///< guards everything below; any thread
    std::deque<Job> jobs_;
    int suspendCount_ = 0;
    bool isRunning_ = false;
    bool isDrainScheduled_ = false;
    QHash<const void*, Specific> specifics_;
};

} // namespace navrel
