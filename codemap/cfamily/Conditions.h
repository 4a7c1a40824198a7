#pragma once

#include "codemap/cfamily/Scopes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace navrel::cfamily {

/// Where reading stands, as far as the preprocessor's branches share it.
struct Place {
    Scopes::Number scope = 0;
    std::uint32_t bodyDepth = 0; ///< braces that are open in a body; 0 outside of bodies
    std::size_t headSize = 0;
    std::uint64_t headNumber = 0; ///< how many heads came before
};

/// The open #if: every branch begins where the first one began, and what follows #endif goes on
/// where the first one ended. A branch of "#if 0" does not count as the first.
class Conditions {
public:
    void begin(const Place& place, bool isNever);
    /// At #else or #elif: the place to go back to; nothing where no #if is open.
    std::optional<Place> next(const Place& place);
    /// At #endif: the place to go on at, if it may be another one than this.
    std::optional<Place> end();

    /// How many are open, and forgetting those that were opened since.
    std::size_t depth() const { return open_.size(); }
    void cutBack(std::size_t depth);

private:
    struct Condition {
        Place begin;
        bool isNever = false; ///< the current branch is never compiled
        bool hasAlternative = false;
        std::optional<Place> end; ///< of the first branch
    };

    std::vector<Condition> open_;
    std::size_t untracked_ = 0; ///< open ones beyond the limit
};

} // namespace navrel::cfamily
