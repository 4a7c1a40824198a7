#include "support/propertylist/NodeArray.h"

#include <algorithm>

namespace navrel::propertylist {

namespace {
// Enough for any small list, so that a first reading does not grow its memory too often.
constexpr std::size_t kFirstNodes = 1024;

// 1 MiB is never given back, nor is what a list takes that grows and shrinks while it is edited.
constexpr std::size_t kKeptNodes = std::size_t{128} << 10;
constexpr std::size_t kMostSpareTimes = 4;
} // namespace

bool NodeArray::grow() {
    if (nodes_.size() == most_) {
        return false;
    }
    nodes_.resize(std::min(most_, std::max(kFirstNodes, nodes_.size() * 2)));
    return true;
}

void NodeArray::trim() {
    if (nodes_.size() > kKeptNodes && nodes_.size() / kMostSpareTimes > size_) {
        nodes_.resize(size_);
        nodes_.shrink_to_fit();
    }
}

} // namespace navrel::propertylist
