#include "support/dispatch/WriteOperation.h"

#include <algorithm>

namespace navrel {

void WriteVectors::add(const char* bytes, size_t size) {
    vectors_[count_++] = {const_cast<char*>(bytes), size}; // writing only reads them
    size_ += size;
}

void WriteOperation::gather(WriteVectors& vectors) const {
    size_t skipped = offset_;
    for (const DispatchData::Region& region : data_.regions().subspan(region_)) {
        if (vectors.isFull()) {
            return;
        }
        vectors.add(region.bytes.get() + skipped, region.size - skipped);
        skipped = 0;
    }
}

size_t WriteOperation::advance(size_t count) {
    const size_t mine = std::min(count, unwritten_);
    unwritten_ -= mine;
    offset_ += mine;
    const auto regions = data_.regions();
    while (region_ < regions.size() && offset_ >= regions[region_].size) {
        offset_ -= regions[region_++].size;
    }
    return mine;
}

} // namespace navrel
