#pragma once

#include "support/dispatch/DispatchData.h"

#include <array>
#include <cstddef>
#include <span>
#include <sys/uio.h>

namespace navrel {

/// The buffers for one system call: the regions of one or several writes, in order.
class WriteVectors {
public:
    /// Room for dozens of frames. Further regions are written by the next call.
    static constexpr size_t kCapacity = 64;

    bool isFull() const { return count_ == kCapacity; }
    void add(const char* bytes, size_t size);

    std::span<const iovec> all() const { return {vectors_.data(), count_}; }
    size_t size() const { return size_; }

private:
    std::array<iovec, kCapacity> vectors_;
    size_t count_ = 0;
    size_t size_ = 0;
};

/// A few bytes that are written before the data of a write, such as a header. The write holds them,
/// so they need no buffer of their own.
class WritePrefix {
public:
    static constexpr size_t kCapacity = 16;

    WritePrefix() = default;
    explicit WritePrefix(const std::array<char, kCapacity>& bytes)
        : bytes_(bytes), size_(kCapacity) {}

    std::span<const char> bytes() const { return {bytes_.data(), size_}; }

private:
    std::array<char, kCapacity> bytes_ = {};
    size_t size_ = 0;
};

/// One write in progress.
class WriteOperation {
public:
    WriteOperation(const WritePrefix& prefix, DispatchData&& data)
        : prefix_(prefix), data_(std::move(data)),
          unwritten_(prefix_.bytes().size() + data_.size()) {}

    size_t unwritten() const { return unwritten_; }

    /// Appends the unwritten bytes until `vectors` is full. Must not be called when it is full.
    void gather(WriteVectors& vectors) const;

    /// Notes that `count` more bytes of the vectors were written, and returns how many of them
    /// belong to this operation.
    size_t advance(size_t count);

private:
    WritePrefix prefix_;
    DispatchData data_;
    size_t unwritten_;
    size_t writtenPrefix_ = 0;
    size_t region_ = 0; ///< the first one with unwritten bytes
    size_t offset_ = 0; ///< bytes of it that are written
};

} // namespace navrel
