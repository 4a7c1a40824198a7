#pragma once

#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <span>
#include <sys/uio.h>

namespace navrel {

/// Non-blocking transfers on a stream descriptor that belongs to somebody else. Never raises
/// SIGPIPE, whatever the kind of descriptor, and leaves the process's signal handling alone.
class StreamDescriptor {
public:
    /// The outcome of one system call: bytes moved (0 of a read: end of stream), or an errno value.
    struct Transfer {
        size_t count = 0;
        int errnoValue = 0;
        bool wouldBlock() const;
    };

    /// Makes the descriptor non-blocking. Nothing, with errno set, when that fails.
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
