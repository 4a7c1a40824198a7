#include "support/dispatch/DispatchQueue.h"

#include "support/core/Assertion.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>
#include <QThread>

#include <future>
#include <utility>

namespace navrel {

void DispatchQueue::Specific::destroy() const {
    if (destructor != nullptr) {
        destructor(value);
    }
}

DispatchQueue::DispatchQueue(QString label) : label_(std::move(label)) {}

const std::shared_ptr<DispatchQueue>& DispatchQueue::mainQueue() {
    // Never destroyed: what is released while the program ends may still name it.
    static const auto& instance = *new std::shared_ptr<DispatchQueue>([] {
        NAVREL_ASSERT(QCoreApplication::instance() != nullptr);
        auto* queue = new DispatchQueue(QStringLiteral("main"));
        queue->thread_ = QCoreApplication::instance()->thread();
        queue->runner_ = new QObject;
        queue->runner_->moveToThread(queue->thread_); // whichever thread asked first
        return queue;
    }());
    return instance;
}

std::shared_ptr<DispatchQueue> DispatchQueue::serialQueue(QString label) {
    std::shared_ptr<DispatchQueue> queue(new DispatchQueue(std::move(label)));
    queue->startWorker();
    return queue;
}

void DispatchQueue::startWorker() {
    std::promise<void> started;
    worker_ = std::thread([this, &started] {
        QEventLoop loop;
        runner_ = &loop;
        thread_ = QThread::currentThread();
        started.set_value();
        loop.exec();
    });
    started.get_future().wait();
}

DispatchQueue::~DispatchQueue() {
    QMetaObject::invokeMethod(
        runner_, [loop = static_cast<QEventLoop*>(runner_)] { loop->quit(); },
        Qt::QueuedConnection);
    if (isCurrentThread()) {
        worker_.detach(); // one of its own jobs held the last reference
    } else {
        worker_.join();
    }
    for (const Specific& entry : std::as_const(specifics_)) {
        entry.destroy();
    }
}

void DispatchQueue::async(Job job) {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
    scheduleDrainIfNeeded();
}

void DispatchQueue::suspend() {
    const std::lock_guard lock(mutex_);
    ++suspendCount_;
}

void DispatchQueue::resume() {
    const std::lock_guard lock(mutex_);
    NAVREL_ASSERT(suspendCount_ > 0);
    --suspendCount_;
    scheduleDrainIfNeeded();
}

void DispatchQueue::setSpecific(const void* key, void* value, SpecificDestructor destructor) {
    Specific previous;
    {
        const std::lock_guard lock(mutex_);
        previous = specifics_.take(key);
        if (value != nullptr) {
            specifics_.insert(key, {value, destructor});
        }
    }
    if (previous.value != nullptr) {
        previous.destroy();
    }
}

void* DispatchQueue::specific(const void* key) const {
    const std::lock_guard lock(mutex_);
    return specifics_.value(key).value;
}

bool DispatchQueue::tryPerform(Job job) {
    std::unique_lock lock(mutex_);
    if (!canRun() || !jobs_.empty()) {
        return false;
    }
    isRunning_ = true;
    lock.unlock();
    job();
    lock.lock();
    runWaitingJobs(lock);
    return true;
}

// With the mutex held. A running job needs no event: jobs are looked for when it returns.
void DispatchQueue::scheduleDrainIfNeeded() {
    if (isDrainScheduled_ || !canRun() || jobs_.empty()) {
        return;
    }
    isDrainScheduled_ = true;
    QMetaObject::invokeMethod(
        runner_, [self = shared_from_this()] { self->drain(); }, Qt::QueuedConnection);
}

void DispatchQueue::drain() {
    std::unique_lock lock(mutex_);
    isDrainScheduled_ = false;
    if (!canRun()) {
        return; // in a nested event loop, or suspended since
    }
    isRunning_ = true;
    runWaitingJobs(lock);
}

// Runs the jobs that wait now; those that they add wait for the event loop's next turn, so that
// jobs which add jobs starve nobody.
void DispatchQueue::runWaitingJobs(std::unique_lock<std::mutex>& lock) {
    for (auto left = jobs_.size(); left > 0 && suspendCount_ == 0; --left) {
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        job();
        job = nullptr; // what it holds may put jobs here when it goes
        lock.lock();
    }
    isRunning_ = false;
    scheduleDrainIfNeeded();
}

} // namespace navrel
