#pragma once

#include <QString>

#include <optional>

namespace navrel {

/// Threads that the program has at a time in the worst of usual cases, and memory that it takes to
/// show an empty project.
inline constexpr int kThreadsNeeded = 8;
inline constexpr std::size_t kMemoryNeeded = std::size_t{64} * 1024 * 1024;

/// Looks for what the program cannot do without, before anything needs it: a sentence about what is
/// missing, or nothing. Sets HOME from the user database where it is not set, for this program and
/// those that it starts. To be called first, while there is one thread.
std::optional<QString> missingToStart();

} // namespace navrel
