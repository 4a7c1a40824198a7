#pragma once

#include "codemap/CodeMapSnapshot.h"
#include "web/BrowserAccess.h"
#include "web/ProgramState.h"

#include <boost/json/value.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

namespace navrel {

/// What the editor shows.
struct ActivePlace {
    std::string path;       ///< absolute; empty for none
    std::uint32_t line = 0; ///< from 1; 0 where unknown
    bool operator==(const ActivePlace&) const = default;
};

/// Everything that the state shows.
struct StateParts {
    const CodeMapSnapshot& snapshot;
    const ProgramState& program;
    const ActivePlace& active;
    const AccessStatus& access;
    const std::string& programName;
    const std::string& version;
    std::size_t devices = 0;
    bool readOnly = false; ///< for the client that asks
};

/// The views of what is not in the code map, as the shapes of protocol/shapes.schema.json. Pure.
boost::json::object stateView(const StateParts& parts);
/// The data of the event `active`.
boost::json::object activeView(const CodeMapSnapshot& snapshot, const ActivePlace& active);
/// The data of the event `hello`.
boost::json::object helloView(const CodeMapSnapshot& snapshot, const ActivePlace& active);
/// The data of the event `opened`.
boost::json::object openedView(std::uint64_t request, const OpenOutcome& outcome);

} // namespace navrel
