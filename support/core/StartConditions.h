#pragma once

#include <QString>

#include <optional>

namespace navrel {

/// How many threads the program runs at a time in ordinary use at most, and how many bytes it needs
/// to show an empty project.
inline constexpr int kThreadsNeeded = 8;
inline constexpr std::size_t kMemoryNeeded = std::size_t{64} * 1024 * 1024;

/// Checks for what the program cannot run without. Returns a sentence about what is missing, or
/// nil. If HOME is not set, sets it from the user database, for this program and those that it
/// starts. Must be called first, while there is only one thread.
std::optional<QString> missingToStart();

} // namespace navrel
