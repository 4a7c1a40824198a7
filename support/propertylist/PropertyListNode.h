#pragma once

#include <cstdint>

// Internal to PropertyListDocument: only its readers may include this.
namespace navrel::propertylist {

enum class NodeKind : std::uint8_t {
    string,        ///< the text is the bytes as they stand
    escapedString, ///< the bytes hold escapes
    data,          ///< the bytes are hexadecimal digits and white space
    array,
    dictionary, ///< keys and values alternate
    scalar,     ///< a number, boolean or date of an XML list, whose value is not kept
};

/// One value of a list. The nodes are in the order of the list's bytes: a container comes right
/// before its contents. Takes 8 bytes, since a project file has a value for every 11 of its bytes.
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

} // namespace navrel::propertylist
