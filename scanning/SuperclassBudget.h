#pragma once

#include "support/text/RegularExpression.h"

#include <algorithm>
#include <chrono>

namespace navrel {

/// The processor time for the superclasses of headers whose base names are patterns of their own:
/// "(a+)+b.h" would take years, and a project may name it a hundred thousand times. So headers save
/// for each other: each brings an allowance, more than an honest one spends, and what is saved up
/// is there for those that need more. Where it has been spent, headers go without a superclass
/// until others have brought enough for one. One thread at a time.
class SuperclassBudget {
public:
    using Duration = RegularExpression::Clock::duration;

    /// What a header brings. An honest one spends some 15 microseconds.
    static constexpr Duration kAllowance = std::chrono::microseconds(50);
    /// What one header may spend, however much is saved up: a megabyte of ordinary source is
    /// scanned in a tenth of it.
    static constexpr Duration kMostForHeader = std::chrono::milliseconds(2);
    /// What is saved up at most, and at first: a delay that nobody notices.
    static constexpr Duration kMostSaved = std::chrono::milliseconds(100);

    SuperclassBudget() = default;
    /// For a check that is to see all that a pattern finds: the header may spend that much.
    explicit SuperclassBudget(Duration forOneHeader)
        : mostForHeader_(forOneHeader), saved_(forOneHeader) {}

    /// The next header begins: it brings its allowance.
    void beginHeader() {
        saved_ = std::min(saved_ + kAllowance, std::max(kMostSaved, mostForHeader_));
        left_ = saved_ < kAllowance ? Duration::zero() : std::min(saved_, mostForHeader_);
    }

    /// What the header may still spend; nothing where no allowance is left for it.
    Duration left() const { return std::max(left_, Duration::zero()); }

    /// The header has spent this, which may be more than was left: then it is owed, and others go
    /// without.
    void spend(Duration spent) {
        saved_ -= spent;
        left_ -= spent;
    }

private:
    Duration mostForHeader_ = kMostForHeader;
    Duration saved_ = kMostSaved; ///< below zero: owed
    Duration left_ = Duration::zero();
};

} // namespace navrel
