#include "support/dispatch/DispatchData.h"

#include "support/core/Assertion.h"
#include "support/dispatch/DispatchQueue.h"

#include <cstring>
#include <utility>

namespace navrel {

DispatchData DispatchData::referencing(const QByteArray& bytes) {
    const auto owner = std::make_shared<const QByteArray>(bytes);
    return sharing({owner, owner->constData()}, static_cast<size_t>(owner->size()));
}

DispatchData DispatchData::copying(QByteArrayView bytes) {
    const auto size = static_cast<size_t>(bytes.size());
    if (size == 0) {
        return {};
    }
    auto copy = std::make_shared_for_overwrite<char[]>(size);
    char* copiedBytes = copy.get();
    std::memcpy(copiedBytes, bytes.data(), size);
    return sharing({std::move(copy), copiedBytes}, size);
}

DispatchData DispatchData::sharing(std::shared_ptr<const char> bytes, size_t size) {
    DispatchData data;
    if (size > 0) {
        data.onlyRegion_ = {std::move(bytes), size};
        data.size_ = size;
    }
    return data;
}

DispatchData DispatchData::owning(MallocedBytes bytes, size_t size) {
    return sharing(std::move(bytes), size);
}

DispatchData DispatchData::borrowing(const void* bytes, size_t size,
                                     std::shared_ptr<DispatchQueue> queue, Destructor destructor) {
    auto release = [queue = std::move(queue), run = std::move(destructor)](const char*) mutable {
        if (queue) {
            queue->async(std::move(run));
        } else {
            run();
        }
    };
    // Empty data holds no region, so its bytes are released right here.
    return sharing({static_cast<const char*>(bytes), std::move(release)}, size);
}

void DispatchData::append(DispatchData other) {
    if (isEmpty()) {
        *this = std::move(other);
        return;
    }
    for (const Region& region : other.regions()) {
        appendRegion(region);
    }
}

void DispatchData::appendRegion(const Region& region) {
    if (regions_.empty()) {
        regions_.reserve(2); // a frame: header and payload
        regions_.push_back(std::move(onlyRegion_));
    }
    regions_.push_back(region);
    size_ += region.size;
}

std::optional<DispatchData> DispatchData::contiguous() && {
    if (regions_.empty()) {
        return std::move(*this);
    }
    return std::as_const(*this).contiguous();
}

std::optional<DispatchData> DispatchData::contiguous() const& {
    if (regions_.empty()) {
        return *this;
    }
    MallocedBytes copy(static_cast<char*>(std::malloc(size_)));
    if (!copy) {
        return std::nullopt;
    }
    char* destination = copy.get();
    for (const Region& region : regions()) {
        std::memcpy(destination, region.bytes.get(), region.size);
        destination += region.size;
    }
    return owning(std::move(copy), size_);
}

const char* DispatchData::bytes() const {
    NAVREL_ASSERT(regions_.empty());
    return onlyRegion_.bytes.get();
}

QByteArray DispatchData::toByteArray() const {
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(size_));
    for (const Region& region : regions()) {
        bytes.append(region.bytes.get(), static_cast<qsizetype>(region.size));
    }
    return bytes;
}

} // namespace navrel
