#pragma once

#include <QByteArray>

#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace navrel {

class DispatchQueue;

/// Frees memory that came from malloc(3).
struct MallocDeleter {
    void operator()(char* bytes) const { std::free(bytes); }
};
using MallocedBytes = std::unique_ptr<char, MallocDeleter>;

/// Bytes in reference-counted buffers: a value that is cheap to copy and join, since only
/// references are copied. The bytes themselves never change. Any thread may use a value of its own;
/// several values may share a buffer.
class DispatchData {
public:
    /// One contiguous run of bytes, and a reference to the buffer that holds them.
    struct Region {
        std::shared_ptr<const char> bytes;
        size_t size = 0;
    };
    using Destructor = std::function<void()>;

    /// No bytes.
    DispatchData() = default;

    DispatchData(const DispatchData&) = default;
    DispatchData& operator=(const DispatchData&) = default;

    /// Leaves the other value empty.
    DispatchData(DispatchData&& other) noexcept
        : onlyRegion_(std::move(other.onlyRegion_)), regions_(std::move(other.regions_)),
          size_(std::exchange(other.size_, 0)) {}
    DispatchData& operator=(DispatchData&& other) noexcept {
        onlyRegion_ = std::move(other.onlyRegion_);
        regions_ = std::move(other.regions_);
        size_ = std::exchange(other.size_, 0);
        return *this;
    }
    ~DispatchData() = default;

    /// The bytes of the array, which are shared with it and not copied.
    static DispatchData referencing(const QByteArray& bytes);

    /// A copy of the bytes.
    static DispatchData copying(QByteArrayView bytes);

    /// `size` bytes that the pointer keeps alive.
    static DispatchData sharing(std::shared_ptr<const char> bytes, size_t size);

    /// Takes ownership of `size` bytes.
    static DispatchData owning(MallocedBytes bytes, size_t size);

    /// `size` bytes that the caller owns, and must not change or free until `destructor` runs. That
    /// happens exactly once, after the last reference is released: as a job of `queue` or, if that
    /// is null, on the thread that releases it.
    static DispatchData borrowing(const void* bytes, size_t size,
                                  std::shared_ptr<DispatchQueue> queue, Destructor destructor);

    size_t size() const { return size_; }
    bool isEmpty() const { return size_ == 0; }

    /// The regions in order, none of them empty. Valid until this value changes.
    std::span<const Region> regions() const {
        if (regions_.empty()) {
            return {&onlyRegion_, isEmpty() ? size_t{0} : size_t{1}};
        }
        return regions_;
    }

    /// Appends the other's regions; no byte is copied.
    void append(DispatchData other);

    /// The same bytes in one region: this value if it has at most one, otherwise a copy. Nil if
    /// there is no memory for that.
    std::optional<DispatchData> contiguous() const&;
    std::optional<DispatchData> contiguous() &&;

    /// The bytes of data in at most one region, as `contiguous` returns it; aborts the program for
    /// more. Null for empty data. Valid until this value changes.
    const char* bytes() const;

    /// A copy of all bytes.
    QByteArray toByteArray() const;

private:
    void appendRegion(const Region& region);

    Region onlyRegion_;           ///< if there is one, as with received data: needs no allocation
    std::vector<Region> regions_; ///< all of them, if there are several; otherwise empty
    size_t size_ = 0;
};

} // namespace navrel
