#pragma once

#include <optional>
#include <string>

namespace navrel {

/// Moves the calling thread, and every thread and process that it starts afterwards, into a new
/// network namespace whose loopback interface is up, so that fixed ports belong to this test alone.
/// Call it before any other thread exists. Returns what failed, or nothing.
std::optional<std::string> enterOwnNetworkNamespace();

} // namespace navrel
