#include "support/dispatch/DispatchData.h"

#include "support/Assertion.h"
#include "support/dispatch/DispatchQueue.h"

#include <cstring>
#include <utility>

namespace navrel {

DispatchData DispatchData::referencing(const QByteArray& bytes) {
    DispatchData data;
    const auto owner = std::make_shared<const QByteArray>(bytes);
    data.appendRegion({owner, owner->constData()}, static_cast<size_t>(owner->size()));
    return data;
}

DispatchData DispatchData::copying(QByteArrayView bytes) {
    DispatchData data;
    const auto size = static_cast<size_t>(bytes.size());
    if (size > 0) {
        const auto copy = std::make_shared_for_overwrite<char[]>(size);
        std::memcpy(copy.get(), bytes.data(), size);
        data.appendRegion({copy, copy.get()}, size);
    }
    return data;
}

DispatchData DispatchData::owning(MallocedBytes bytes, size_t size) {
    DispatchData data;
    data.appendRegion(std::shared_ptr<const char>(std::move(bytes)), size);
    return data;
}

DispatchData DispatchData::borrowing(const void* bytes, size_t size,
                                     std::shared_ptr<DispatchQueue> queue, Destructor destructor) {
    DispatchData data;
    auto release = [queue = std::move(queue), run = std::move(destructor)](const char*) mutable {
        if (queue) {
            queue->async(std::move(run));
        } else {
            run();
        }
    };
    // Empty data holds no region, so its bytes are released right here.
    data.appendRegion(
        std::shared_ptr<const char>(static_cast<const char*>(bytes), std::move(release)), size);
    return data;
}

void DispatchData::append(const DispatchData& other) {
    const qsizetype count = other.regions_.size(); // `other` may be this very value
    for (qsizetype index = 0; index < count; ++index) {
        const Region region = other.regions_[index];
        appendRegion(region.bytes, region.size);
    }
}

void DispatchData::appendRegion(std::shared_ptr<const char> bytes, size_t size) {
    if (size > 0) {
        regions_.append({std::move(bytes), size});
        size_ += size;
    }
}

std::optional<DispatchData> DispatchData::contiguous() const {
    if (regions_.size() <= 1) {
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
    NAVREL_ASSERT(regions_.size() <= 1);
    return regions_.isEmpty() ? nullptr : regions_.first().bytes.get();
}

QByteArray DispatchData::toByteArray() const {
    QByteArray bytes;
    bytes.reserve(static_cast<qsizetype>(size_));
    for (const Region& region : regions()) {
        bytes.append(region.bytes.get(), static_cast<qsizetype>(region.size));
    }
    return bytes;
}

DispatchData concatenated(const DispatchData& first, const DispatchData& second) {
    DispatchData both = first;
    both.append(second);
    return both;
}

} // namespace navrel
