#include "support/dispatch/WriteOperation.h"

#include <algorithm>

namespace navrel {

void WriteVectors::add(const char* bytes, size_t size) {
    vectors_[count_++] = {const_cast<char*>(bytes), size}; // writing only reads them
    size_ += size;
}

void WriteOperation::gather(WriteVectors& vectors) const {
    const auto prefix = prefix_.bytes().subspan(writtenPrefix_);
    if (!prefix.empty()) { // there is room: this is asked only then
        vectors.add(prefix.data(), prefix.size());
    }
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
    const size_t ofPrefix = std::min(mine, prefix_.bytes().size() - writtenPrefix_);
    unwritten_ -= mine;
    writtenPrefix_ += ofPrefix;
    offset_ += mine - ofPrefix;
    const auto regions = data_.regions();
    while (region_ < regions.size() && offset_ >= regions[region_].size) {
        offset_ -= regions[region_++].size;
    }
    return mine;
}

} // namespace navrel
