#include "support/dispatch/DispatchData.h"

#include "support/Assertion.h"
#include "support/dispatch/DispatchQueue.h"

#include <cstring>
#include <iterator>
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
    const auto copy = std::make_shared_for_overwrite<char[]>(size);
    std::memcpy(copy.get(), bytes.data(), size);
    return sharing({copy, copy.get()}, size);
}

DispatchData DispatchData::sharing(std::shared_ptr<const char> bytes, size_t size) {
    DispatchData data;
    data.appendRegion(std::move(bytes), size);
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

void DispatchData::append(const DispatchData& other) {
    const size_t count = other.regionCount_; // `other` may be this very value
    for (size_t index = 0; index < count; ++index) {
        const Region region = other.regions()[index];
        appendRegion(region.bytes, region.size);
    }
}

void DispatchData::appendRegion(std::shared_ptr<const char> bytes, size_t size) {
    if (size == 0) {
        return;
    }
    size_ += size;
    if (regionCount_ < kRegionsInPlace) {
        fewRegions_[regionCount_++] = {std::move(bytes), size};
        return;
    }
    if (manyRegions_.empty()) {
        manyRegions_.assign(std::make_move_iterator(fewRegions_.begin()),
                            std::make_move_iterator(fewRegions_.end()));
    }
    manyRegions_.push_back({std::move(bytes), size});
    ++regionCount_;
}

void DispatchData::swap(DispatchData& other) noexcept {
    std::swap(fewRegions_, other.fewRegions_);
    std::swap(manyRegions_, other.manyRegions_);
    std::swap(regionCount_, other.regionCount_);
    std::swap(size_, other.size_);
}

std::optional<DispatchData> DispatchData::contiguous() && {
    if (regionCount_ <= 1) {
        return std::move(*this);
    }
    return std::as_const(*this).contiguous();
}

std::optional<DispatchData> DispatchData::contiguous() const& {
    if (regionCount_ <= 1) {
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
    NAVREL_ASSERT(regionCount_ <= 1);
    return regionCount_ == 0 ? nullptr : fewRegions_.front().bytes.get();
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
