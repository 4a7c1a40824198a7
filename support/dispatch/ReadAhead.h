#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <span>

namespace navrel {

/// A buffer of bytes that were read before an operation asked for them, so that many small
/// operations cost one system call. Its memory is allocated at first use, and again if the old
/// memory is still shared.
class ReadAhead {
public:
    /// In bytes: room for hundreds of ordinary requests, and it stays in the processor's cache.
    static constexpr size_t kCapacity = size_t{64} * 1024;

    bool isEmpty() const { return begin_ == end_; }

    /// The buffer to read into; `filled` must follow. Must be called only while empty.
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

    /// The bytes that have not been taken. `taken` removes the first `count` of them.
    std::span<const char> waiting() const { return {bytes_.get() + begin_, end_ - begin_}; }
    void taken(size_t count) { begin_ += count; }

    /// Takes the first `count` bytes. The result keeps the whole buffer alive.
    std::shared_ptr<char[]> takeShared(size_t count) {
        std::shared_ptr<char[]> first(bytes_, bytes_.get() + begin_);
        begin_ += count;
        return first;
    }

private:
    // Acquires, since another thread may have read the bytes before it released the last share.
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
