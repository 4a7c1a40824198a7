#include "support/dispatch/DispatchSource.h"

#include "support/core/Assertion.h"
#include "support/dispatch/DispatchQueue.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <utility>

namespace navrel {

namespace {

/// Connections that wait to be accepted; 0 where the system does not tell.
quint64 waitingConnections([[maybe_unused]] int socket) {
#ifdef __linux__
    // Of a listening socket, Linux counts the waiting connections where others count segments.
    tcp_info information = {};
    socklen_t length = sizeof information;
    if (::getsockopt(socket, IPPROTO_TCP, TCP_INFO, &information, &length) == 0) {
        return information.tcpi_unacked;
    }
#endif
    return 0;
}

quint64 pendingCountOf(int descriptor) {
    int isListening = 0;
    socklen_t length = sizeof isListening;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_ACCEPTCONN, &isListening, &length) == 0 &&
        isListening != 0) {
        return waitingConnections(descriptor);
    }
    int bytes = 0;
    return ::ioctl(descriptor, FIONREAD, &bytes) == 0 ? static_cast<quint64>(bytes) : 0;
}

} // namespace

std::shared_ptr<DispatchSource> DispatchSource::create(int descriptor,
                                                       std::shared_ptr<DispatchQueue> queue,
                                                       EventHandler eventHandler,
                                                       CancelHandler cancelHandler) {
    NAVREL_ASSERT(queue != nullptr);
    return std::shared_ptr<DispatchSource>(new DispatchSource(
        descriptor, std::move(queue), std::move(eventHandler), std::move(cancelHandler)));
}

DispatchSource::DispatchSource(int descriptor, std::shared_ptr<DispatchQueue> queue,
                               EventHandler eventHandler, CancelHandler cancelHandler)
    : descriptor_(descriptor), queue_(std::move(queue)), eventHandler_(std::move(eventHandler)),
      cancelHandler_(std::move(cancelHandler)) {}

DispatchSource::~DispatchSource() {
    cancel();
}

void DispatchSource::start() {
    if (isCancelled_ || notifier_) {
        return;
    }
    notifier_.reset(new QSocketNotifier(descriptor_, QSocketNotifier::Read));
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { readable(); });
}

void DispatchSource::cancel() {
    if (std::exchange(isCancelled_, true)) {
        return;
    }
    if (notifier_) {
        notifier_->setEnabled(false);
        notifier_.reset();
    }
    // The handlers go with the job, so that a source which they hold is let go of.
    queue_->async([event = std::exchange(eventHandler_, nullptr),
                   handler = std::exchange(cancelHandler_, nullptr)] {
        if (handler) {
            handler();
        }
    });
}

void DispatchSource::readable() {
    const auto self = shared_from_this();
    if (queue_->tryPerform([this] { handleEvent(); })) {
        return;
    }
    // The queue is busy or suspended; not watched meanwhile, since the descriptor stays readable.
    notifier_->setEnabled(false);
    queue_->async([self] {
        if (!self->isCancelled_) {
            self->notifier_->setEnabled(true);
            self->handleEvent();
        }
    });
}

void DispatchSource::handleEvent() {
    const EventHandler handler = eventHandler_; // it may cancel the source
    handler(pendingCountOf(descriptor_));
}

} // namespace navrel
