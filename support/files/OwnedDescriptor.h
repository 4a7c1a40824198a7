#pragma once

#include <utility>

namespace navrel {

/// A file descriptor that is closed with this object.
class OwnedDescriptor {
public:
    OwnedDescriptor() = default;
    explicit OwnedDescriptor(int value) : value_(value) {}
    OwnedDescriptor(OwnedDescriptor&& other) noexcept : value_(other.release()) {}
    OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept;
    ~OwnedDescriptor();

    bool isValid() const { return value_ >= 0; }
    int value() const { return value_; }

    /// Returns the descriptor, which the caller must close from now on.
    int release() { return std::exchange(value_, -1); }

private:
    int value_ = -1;
};

} // namespace navrel
