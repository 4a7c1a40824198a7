#pragma once

#include "support/dispatch/DispatchData.h"

#include <array>
#include <cstddef>
#include <span>
#include <sys/uio.h>

namespace navrel {

/// What one system call is to write: the regions of one write after the other.
class WriteVectors {
public:
    /// Enough for dozens of frames; further regions go with the next call.
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

/// A few bytes that go before the data of a write, such as a header: kept with the write, they need
/// no buffer of their own.
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

/// The bytes of one write on their way out.
class WriteOperation {
public:
    WriteOperation(const WritePrefix& prefix, DispatchData&& data)
        : prefix_(prefix), data_(std::move(data)),
          unwritten_(prefix_.bytes().size() + data_.size()) {}

    size_t unwritten() const { return unwritten_; }

    /// Adds what is not written yet, as far as there is room, which there is for something.
    void gather(WriteVectors& vectors) const;

    /// Up to `count` more bytes are written; returns how many of them are this operation's.
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
