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

/// Bytes in counted buffers: a value that is cheap to copy, join and hand on, since only references
/// are copied. The bytes themselves never change while anybody refers to them. Any thread may hold,
/// copy and release a value that it has for itself.
class DispatchData {
public:
    /// One contiguous run of bytes, with a share in the buffer that holds them.
    struct Region {
        std::shared_ptr<const char> bytes;
        size_t size = 0;
    };
    using Destructor = std::function<void()>;

    /// No bytes.
    DispatchData() = default;

    DispatchData(const DispatchData&) = default;
    DispatchData& operator=(const DispatchData&) = default;

    /// What is moved from is empty.
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

    /// The array's bytes, shared with it and not copied.
    static DispatchData referencing(const QByteArray& bytes);

    /// A copy of the bytes.
    static DispatchData copying(QByteArrayView bytes);

    /// `size` bytes that the pointer has a share in.
    static DispatchData sharing(std::shared_ptr<const char> bytes, size_t size);

    /// `size` bytes of memory that this call takes over.
    static DispatchData owning(MallocedBytes bytes, size_t size);

    /// `size` bytes that stay somebody else's, and must stay as they are until `destructor` runs.
    /// It runs exactly once, after the last reference has gone: as a job of `queue`, or, with a
    /// null queue, at once where that reference is released.
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

    /// Puts the other's regions behind these; no byte is copied.
    void append(DispatchData other);

    /// The same bytes in one region: this value itself if it has no more than one already, else a
    /// single copy. Nothing when there is no memory for it.
    std::optional<DispatchData> contiguous() const&;
    std::optional<DispatchData> contiguous() &&;

    /// The first byte of data in at most one region, which is what `contiguous` gives; null for
    /// empty data.
    const char* bytes() const;

    /// A copy of all bytes.
    QByteArray toByteArray() const;

private:
    void appendRegion(const Region& region);

    Region onlyRegion_;           ///< what is received comes in one, which needs no allocation
    std::vector<Region> regions_; ///< all of them, where there are several
    size_t size_ = 0;
};

/// Both values' bytes, one behind the other; no byte is copied.
DispatchData concatenated(const DispatchData& first, const DispatchData& second);

} // namespace navrel
