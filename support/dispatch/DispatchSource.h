#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace navrel {

class DispatchQueue;

/// Calls a handler whenever a descriptor can be read. Handlers run as jobs of the queue.
///
/// The queue's thread only. The source keeps its handlers, and what they refer to, until it has
/// been cancelled; releasing the last reference cancels it too.
class DispatchSource final : public std::enable_shared_from_this<DispatchSource> {
public:
    /// `pendingCount` says how much can be read: in bytes, or in connections for a listening
    /// socket; 0 if the system does not say.
    using EventHandler = std::function<void(quint64 pendingCount)>;
    using CancelHandler = std::function<void()>;

    /// Makes a source that does nothing before `start`. The descriptor still belongs to the caller,
    /// who must not close it before the cancel handler runs.
    static std::shared_ptr<DispatchSource> create(int descriptor,
                                                  std::shared_ptr<DispatchQueue> queue,
                                                  EventHandler eventHandler,
                                                  CancelHandler cancelHandler);
    ~DispatchSource();
    DispatchSource(const DispatchSource&) = delete;
    DispatchSource& operator=(const DispatchSource&) = delete;

    void start();

    /// Ends the events: the event handler is not called any more. The cancel handler runs once, as
    /// a later job of the queue. A second call does nothing.
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
