#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <span>

namespace navrel {

/// Bytes that were read before anybody asked for them, so that many small operations cost one
/// system call. Its memory is allocated with the first use, and again when somebody still has a
/// share in it.
class ReadAhead {
public:
    /// Holds hundreds of ordinary requests, and is small enough to stay in the processor's cache.
    static constexpr size_t kCapacity = size_t{64} * 1024;

    bool isEmpty() const { return begin_ == end_; }

    /// Room for a read, to be followed by `filled`. Only while empty.
    std::span<char> room() {
        if (!isMine()) {
            bytes_ = std::make_shared_for_overwrite<char[]>(kCapacity);
        }
        return {bytes_.get(), kCapacity};
    }
    void filled(size_t count) {
        begin_ = 0;
        end_ = count;
    }

    /// What waits, and that the first `count` bytes of it have been taken.
    std::span<const char> waiting() const { return {bytes_.get() + begin_, end_ - begin_}; }
    void taken(size_t count) { begin_ += count; }

    /// The first `count` waiting bytes, which are taken; the one that holds them keeps the whole
    /// buffer.
    std::shared_ptr<char[]> takeShared(size_t count) {
        std::shared_ptr<char[]> first(bytes_, bytes_.get() + begin_);
        begin_ += count;
        return first;
    }

private:
    // The one that let go of the last share, maybe on another thread, has read from it before.
    bool isMine() const {
        if (bytes_.use_count() != 1) {
            return false;
        }
        std::atomic_thread_fence(std::memory_order_acquire);
        return true;
    }

    std::shared_ptr<char[]> bytes_;
    size_t begin_ = 0;
    size_t end_ = 0;
};

} // namespace navrel
