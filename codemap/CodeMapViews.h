#pragma once

#include "codemap/CodeMapSnapshot.h"
#include "codemap/CodeSearch.h"

#include <boost/json/value.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace navrel {

/// The views that clients see, as the shapes of protocol/shapes.schema.json: functions from a
/// snapshot to a JSON value. Any thread.

boost::json::object fileReference(const MapNode& file, std::uint32_t line = 0);

/// The whole tree.
boost::json::object treeView(const CodeMapSnapshot& snapshot);
/// What changed since an earlier snapshot of the same map; the whole tree where that is shorter.
boost::json::object treeChangesView(const CodeMapSnapshot& since, const CodeMapSnapshot& snapshot);
/// Nothing where no file has the identifier.
std::optional<boost::json::object> outlineView(const CodeMapSnapshot& snapshot, NodeID file);
boost::json::object typesView(const CodeMapSnapshot& snapshot);
boost::json::object notesView(const CodeMapSnapshot& snapshot);

boost::json::object searchView(const CodeMapSnapshot& snapshot, const SearchRequest& request);

/// Which files and symbols changed on this branch. Reads the repository: may take long.
boost::json::object changesView(const CodeMapSnapshot& snapshot);

} // namespace navrel
