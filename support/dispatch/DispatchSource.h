#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace navrel {

class DispatchQueue;

/// Tells its owner whenever a descriptor can be read. Handlers run as jobs of the queue.
///
/// All operations on the queue's thread. The source holds its handlers, and what they hold, until
/// it has been cancelled; dropping the last reference cancels it too.
class DispatchSource final : public std::enable_shared_from_this<DispatchSource> {
public:
    /// `pendingCount` says how much waits: bytes, or connections of a listening socket; 0 when the
    /// system does not tell.
    using EventHandler = std::function<void(quint64 pendingCount)>;
    using CancelHandler = std::function<void()>;

    /// A source that does nothing before `start`. The descriptor stays the caller's and must stay
    /// open until the cancel handler has run, which is the place to close it.
    static std::shared_ptr<DispatchSource> create(int descriptor,
                                                  std::shared_ptr<DispatchQueue> queue,
                                                  EventHandler eventHandler,
                                                  CancelHandler cancelHandler);
    ~DispatchSource();
    DispatchSource(const DispatchSource&) = delete;
    DispatchSource& operator=(const DispatchSource&) = delete;

    void start();

    /// No event is told from now on. The cancel handler runs once, as a later job of the queue; a
    /// second call does nothing.
    void cancel();

    bool isCancelled() const { return isCancelled_; }

private:
    DispatchSource(int descriptor, std::shared_ptr<DispatchQueue> queue, EventHandler eventHandler,
                   CancelHandler cancelHandler);
    void readable();
    void handleEvent();

    const int descriptor_;
    const std::shared_ptr<DispatchQueue> queue_;
    EventHandler eventHandler_;
    CancelHandler cancelHandler_;
    std::unique_ptr<QSocketNotifier, QScopedPointerDeleteLater> notifier_;
    bool isCancelled_ = false;
};

} // namespace navrel
