#pragma once

#include "support/sockets/IPv4Socket.h"

#include <poll.h>
#include <sys/socket.h>
#include <vector>

namespace navrel {

/// Somebody who listens on a port of 127.0.0.1, accepts nobody, and has no room for another one to
/// wait: who connects gets no answer at all.
class FullListener {
public:
    explicit FullListener(quint16 port)
        : address_(IPv4SocketAddress(port, INADDR_LOOPBACK)),
          listener_(makeListeningSocket(address_)) {
        constexpr size_t kMoreThanAnyBacklog = 16;
        ::listen(listener_.value(), 0);
        while (waiting_.size() < kMoreThanAnyBacklog && !isFull_) {
            addWaiting();
        }
    }

    bool isFull() const { return isFull_; }

private:
    void addWaiting() {
        constexpr int kAnswerWithinMilliseconds = 300;
        OwnedDescriptor socket = makeIPv4StreamSocket();
        makeNonBlocking(socket.value());
        ::connect(socket.value(), reinterpret_cast<const sockaddr*>(&address_), sizeof address_);
        pollfd answer = {socket.value(), POLLOUT, 0};
        isFull_ = ::poll(&answer, 1, kAnswerWithinMilliseconds) == 0;
        waiting_.push_back(std::move(socket));
    }

    const sockaddr_in address_;
    const OwnedDescriptor listener_;
    std::vector<OwnedDescriptor> waiting_;
    bool isFull_ = false;
};

} // namespace navrel
