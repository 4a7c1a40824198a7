#pragma once

#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <span>
#include <sys/uio.h>

namespace navrel {

/// Non-blocking transfers on a stream descriptor, which is not owned. Never raises SIGPIPE,
/// whatever the kind of descriptor, and does not change the process's signal handlers.
class StreamDescriptor {
public:
    /// The outcome of one system call: the number of bytes (0 for a read at the end of the stream),
    /// or an errno value other than 0.
    struct Transfer {
        size_t count = 0;
        int errnoValue = 0;
        bool wouldBlock() const;
    };

    /// Makes the descriptor non-blocking. Nil, with errno set, if that fails.
    static std::optional<StreamDescriptor> adopt(int descriptor);

    int value() const { return value_; }
    void forget() { value_ = -1; }

    Transfer read(std::span<char> buffer) const;
    Transfer read(std::span<const iovec> buffers) const;
    Transfer write(std::span<const iovec> buffers) const;

private:
    StreamDescriptor(int value, bool isSocket) : value_(value), isSocket_(isSocket) {}

    int value_;
    bool isSocket_;
};

} // namespace navrel
