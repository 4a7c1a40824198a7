#pragma once

#include <boost/json/object.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

// What users call files, groups and symbols, found in the views. All functions are pure.

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

/// What a text means, by the first of these that anything fits: an identifier, a path in the
/// project, an absolute path (`absolute` is the text as one), the end of a path, a name, a name in
/// another letter case or without its extension, a part of a path. Empty where nothing fits; more
/// than one where the text does not decide.
std::vector<NodeName> nodesNamed(const std::vector<NodeName>& nodes, std::string_view text,
                                 std::string_view absolute);

/// Every declaration of an outline with a name, in its order.
std::vector<SymbolName> symbolsOf(const boost::json::object& outline);

/// The declarations that a text means: by their name, their name without parameters and sign, the
/// same in another letter case, or a part of it.
std::vector<SymbolName> symbolsNamed(const std::vector<SymbolName>& symbols, std::string_view text);

/// Ways to read "FILE", "FILE:LINE", "FILE:LINE:COLUMN" and "FILE:SYMBOL", the likeliest first:
/// file names and symbols may contain colons. The least likely one is "FILE LINE".
struct PlaceText {
    std::string file;
    std::string symbol;       ///< empty for none
    std::uint32_t line = 0;   ///< 0 for none
    std::uint32_t column = 0; ///< 0 for none
    bool operator==(const PlaceText&) const = default;
};
std::vector<PlaceText> placesIn(std::string_view text);

} // namespace navrel
