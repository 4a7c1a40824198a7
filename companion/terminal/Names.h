#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

// Finds the files, groups and symbols that users name. All functions are pure.

/// A file or a group of the tree.
struct NodeName {
    std::string id;
    std::string name;
    std::string path; ///< as the tree has it; may be empty for a group
    bool isGroup = false;
    std::int64_t symbols = 0; ///< how many it declares; 0 where the tree does not say
    bool operator==(const NodeName&) const = default;
};

/// A declaration of an outline.
struct SymbolName {
    std::string name;
    std::string kind;
    std::uint32_t line = 0;
    std::uint32_t endLine = 0;
    bool operator==(const SymbolName&) const = default;
};

/// Every file and group of a tree, in its order.
std::vector<NodeName> nodesOf(const boost::json::object& tree);

/// The nodes that a text names. The first of these readings that matches any node counts: an
/// identifier; a path in the project; an absolute path (`absolute` is the text made absolute); the
/// end of a path; a name; then, in any letter case, a name, a name without its extension, a part of
/// a name or the end of a path, and a part of a path if the text has a slash. Empty if none
/// matches; several nodes if the text is ambiguous.
std::vector<NodeName> nodesNamed(const std::vector<NodeName>& nodes, std::string_view text,
                                 std::string_view absolute);

/// Every declaration of an outline with a name, in its order.
std::vector<SymbolName> symbolsOf(const boost::json::object& outline);

/// The declarations that a text names. The first of these readings that matches any declaration
/// counts: the name; the name without sign and parameters; either in any letter case; a part of the
/// name, in any letter case.
std::vector<SymbolName> symbolsNamed(const std::vector<SymbolName>& symbols, std::string_view text);

/// A place as users type it: "FILE", "FILE:LINE", "FILE:LINE:COLUMN", "FILE:SYMBOL" or "FILE LINE".
struct PlaceText {
    std::string file;
    std::string symbol;       ///< empty for none
    std::uint32_t line = 0;   ///< 0 for none
    std::uint32_t column = 0; ///< 0 for none
    bool operator==(const PlaceText&) const = default;
};
/// The ways to read a text as a place, the likeliest first: several, since file names and symbols
/// may contain colons. Never empty.
std::vector<PlaceText> placesIn(std::string_view text);

} // namespace navrel
