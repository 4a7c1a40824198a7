#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace navrel {

/// More changed files are left out.
inline constexpr std::size_t kMaximumChangedFiles = 10'000;
/// A comparison that takes longer is given up; the repository counts as unavailable then.
inline constexpr std::chrono::seconds kMaximumComparingTime{10};

/// A symbol whose lines changed.
struct ChangedSymbol {
    std::string name;
    std::uint32_t line = 0; ///< from 1
};

enum class ChangeStatus : std::uint8_t { added, modified, deleted, renamed };

struct ChangedFile {
    ChangeStatus status{};
    std::string absolutePath;
    const MapNode* file = nullptr; ///< null for what the project does not list
    std::vector<ChangedSymbol> symbols;
};

enum class ChangesState : std::uint8_t { ok, noRepository, unavailable };

struct BranchChanges {
    ChangesState state = ChangesState::noRepository;
    std::string base;      ///< the branch that this one is compared with
    std::string mergeBase; ///< the commit that both grew from
    std::vector<ChangedFile> files;
};

/// What changed between the working tree, the index included, and the commit where the branch left
/// its base: its upstream, or the default branch where the upstream is only its own copy or where
/// there is none. Files that the project lists, and deleted ones below its folder; with the symbols
/// whose lines changed.
///
/// The repository is untrusted: it must belong to the user, no hook, filter, text conversion or
/// other program of it is run, and nothing is written to it. May take as long as
/// kMaximumComparingTime and longer for a history of unusual size. Any thread.
BranchChanges branchChangesOf(const CodeMapSnapshot& snapshot);

} // namespace navrel
