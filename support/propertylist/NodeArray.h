#pragma once

#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListNode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// Internal to PropertyListDocument: only its readers may include this.
namespace navrel::propertylist {

/// The nodes of one list: a vector whose `append` costs one comparison, and which keeps its memory
/// from one list to the next.
class NodeArray {
public:
    explicit NodeArray(std::size_t most = kMaxPropertyListNodes) : most_(most) {}

    const Node& at(std::uint32_t index) const { return nodes_[index]; }
    Node& at(std::uint32_t index) { return nodes_[index]; }
    std::uint32_t size() const { return size_; }
    /// How many nodes there is memory for.
    std::size_t capacity() const { return nodes_.size(); }
    bool isEmpty() const { return size_ == 0; }
    void clear() { size_ = 0; }

    /// False, with nothing appended, if there are already `most` nodes.
    [[nodiscard]] bool append(Node node) {
        if (size_ == nodes_.size() && !grow()) [[unlikely]] {
            return false;
        }
        nodes_[size_++] = node;
        return true;
    }

    /// Frees memory if it is many times what the nodes need, as after a far larger list.
    void trim();

private:
    bool grow();

    std::size_t most_;
    std::vector<Node> nodes_;
    std::uint32_t size_ = 0;
};

} // namespace navrel::propertylist
