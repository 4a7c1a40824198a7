#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <string_view>
#include <vector>

namespace navrel {

/// The names of a symbol's list of superclass and protocols.
std::vector<std::string_view> namesIn(std::string_view inherits);

/// A type, or what adds to one.
struct TypeEntry {
    std::string_view name;
    const MapNode* file = nullptr;  ///< null where only the name is known
    const Symbol* symbol = nullptr; ///< null where only the name is known

    /// Superclass and protocols in their order.
    std::vector<std::string_view> inherits() const;
};

/// Who derives from whom, conforms to what and extends what, over all languages: every declared
/// type, category and extension in the order of their names, then of the tree, and once each name
/// that is only derived from, conformed to or extended. An @implementation counts only where
/// nothing else declares its class. The entries live as long as the snapshot.
std::vector<TypeEntry> typesOf(const CodeMapSnapshot& snapshot);

} // namespace navrel
