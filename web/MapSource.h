#pragma once

#include "codemap/CodeMap.h"

#include <boost/json/fwd.hpp>
#include <cstdint>
#include <functional>

namespace navrel {

/// Where the server finds the code map.
struct MapSource {
    std::function<CodeMapSnapshotPtr()> snapshot; ///< never null; any thread
    std::function<std::uint64_t(CodeMap::Observer)> addObserver;
    std::function<void(std::uint64_t)> removeObserver;
    /// What changed on this branch; may take long. One call at a time, on a thread of its own.
    std::function<boost::json::object(const CodeMapSnapshot&)> changes;
};

/// A map, which must outlive the source.
MapSource mapSourceOf(CodeMap& map);

} // namespace navrel
