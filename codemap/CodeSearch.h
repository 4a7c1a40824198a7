#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace navrel {

/// No search gives more results.
inline constexpr std::size_t kMaximumSearchLimit = 1000;

struct SearchRequest {
    std::string_view query;
    std::vector<std::string_view>
        kinds; ///< "file", "mark", "note" or a symbol's kind; empty for all
    std::size_t limit = 50;
};

/// One result. Its texts live as long as the snapshot.
struct SearchResult {
    std::string_view kind; ///< "file", "mark", "note" or a symbol's kind
    std::string_view name;
    /// The type that declares it, the group that holds a file, the declaration around a comment.
    std::string_view container;
    const MapNode* file = nullptr;
    std::uint32_t line = 0;               ///< 0 for files
    std::vector<std::uint32_t> positions; ///< matched characters, in UTF-16 units, ascending
};

struct SearchResults {
    std::vector<SearchResult> items; ///< the best first
    bool truncated = false;          ///< whether there are more
};

/// Searches the names of files and symbols, headings and notes: the best matches first, of equal
/// ones the shorter, then the one whose file changed last, then types before functions, members,
/// files, marks and notes, then in the order of the tree. An empty query finds nothing.
SearchResults searchIn(const CodeMapSnapshot& snapshot, const SearchRequest& request);

} // namespace navrel
