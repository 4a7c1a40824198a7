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

/// A queue of jobs that run one at a time, in the order in which they were put there, always on the
/// same thread.
///
/// The queue is not re-entrant: while one of its jobs spins an event loop of its own (a modal
/// dialog), no other job of the queue runs; they follow, in order, once that job has returned.
///
/// Needs a QCoreApplication. A queue lives as long as somebody holds it or jobs wait that can run;
/// jobs of a suspended queue that nobody holds are dropped unrun.
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

    /// Name for people: what the creator gave, "main" for the main queue.
    const QString& label() const { return label_; }

    /// Puts a job at the end of the queue; never runs it inside the call. Any thread.
    void async(Job job);

    /// Holds back every job that has not begun, until as many `resume` calls have come. Any thread,
    /// the queue's own jobs too.
    void suspend();

    /// Undoes one `suspend`; one too many stops the program. Any thread.
    void resume();

    /// Stores a value under a key, which is compared by its address. The destructor (may be null)
    /// is called once with the value: when another value takes its place, on the thread that stores
    /// that one, or when the queue goes away, on the thread that lets go of it. A null value
    /// removes the entry. Any thread.
    void setSpecific(const void* key, void* value, SpecificDestructor destructor);

    /// The value stored under the key in this very queue, or null. Any thread.
    void* specific(const void* key) const;

    /// Whether the caller is on the thread that runs this queue's jobs.
    bool isCurrentThread() const {
        static thread_local const QThread* const current = QThread::currentThread(); // asked often
        return current == thread_;
    }

    /// Runs the job at once, as a job of this queue, if none is running or waiting and the queue is
    /// not suspended; jobs that it puts on the queue follow at once. False, with nothing run,
    /// otherwise. For events that arrive on the queue's thread, which alone may call it.
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
