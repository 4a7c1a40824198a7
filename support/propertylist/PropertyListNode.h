#pragma once

#include "support/propertylist/PropertyListLimits.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// The inside of PropertyListDocument: nobody else includes this for its own use.
namespace navrel::propertylist {

enum class NodeKind : std::uint8_t {
    string,        ///< the text is the bytes as they stand
    escapedString, ///< the bytes hold escapes
    data,          ///< the bytes are hexadecimal digits and white space
    array,
    dictionary, ///< keys and values take turns
    scalar,     ///< a number, boolean or date of an XML list, whose value is not kept
};

/// One value of a list. The nodes of a list stand in the order of its bytes: a container comes
/// right before what is in it. 8 bytes, since a project file has one for every 11 of its bytes.
class Node {
public:
    static constexpr std::uint32_t kMaxSize = (std::uint32_t{1} << 29) - 1;

    Node() = default;
    Node(NodeKind kind, std::uint32_t position, std::uint32_t size)
        : position_(position), sizeAndKind_(size << 3 | static_cast<std::uint32_t>(kind)) {}

    NodeKind kind() const { return static_cast<NodeKind>(sizeAndKind_ & 7); }
    bool isContainer() const { return kind() == NodeKind::array || kind() == NodeKind::dictionary; }

    /// Strings and data: where the bytes begin. Containers: the node after the last one inside.
    std::uint32_t position() const { return position_; }
    void setPosition(std::uint32_t position) { position_ = position; }

    /// Strings and data: how many bytes. Containers: how many elements or entries.
    std::uint32_t size() const { return sizeAndKind_ >> 3; }
    void countOne() { sizeAndKind_ += 1 << 3; }

private:
    std::uint32_t position_ = 0;
    std::uint32_t sizeAndKind_ = 0;
};
static_assert(sizeof(Node) == 8);

/// The nodes of one list: a vector that hands out the next place at the cost of one comparison, and
/// keeps its memory from one list to the next.
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

    /// False, with nothing appended, when there are as many as there may be.
    [[nodiscard]] bool append(Node node) {
        if (size_ == nodes_.size() && !grow()) [[unlikely]] {
            return false;
        }
        nodes_[size_++] = node;
        return true;
    }

    /// Gives memory back that is many times what the nodes take, as a far larger list before left
    /// it.
    void trim();

private:
    bool grow();

    std::size_t most_;
    std::vector<Node> nodes_;
    std::uint32_t size_ = 0;
};

} // namespace navrel::propertylist
