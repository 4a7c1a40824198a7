#pragma once

#include "support/text/RegularExpression.h"

#include <algorithm>

namespace navrel {

/// Limits the search steps for headers whose base names are patterns: "(a+)+b.h" would take years,
/// and a project may name it a hundred thousand times. Each header adds an allowance to the budget,
/// which is more than ordinary headers spend; what is left over is saved for those that need more.
/// When the budget is used up, headers get no superclass until others have added enough. Counts
/// steps and not time, so that a project has the same superclasses on every machine. One thread at
/// a time.
class SuperclassBudget {
public:
    /// As an expression counts them; 20 to 40 nanoseconds each.
    using Steps = RegularExpression::Steps;

    /// How much a header adds. One like "Foo+Bar.h" spends a little less.
    static constexpr Steps kAllowance = 2'000;
    /// How much one header may spend, however much is saved: some milliseconds.
    static constexpr Steps kMostForHeader = 150'000;
    /// How much can be saved, and is at first: a tenth of a second.
    static constexpr Steps kMostSaved = 3'000'000;

    SuperclassBudget() = default;
    /// For checks that must see all that a pattern finds: each header may spend `forOneHeader`.
    explicit SuperclassBudget(Steps forOneHeader)
        : mostForHeader_(forOneHeader), saved_(forOneHeader) {}

    /// Begins the next header, and adds its allowance.
    void beginHeader() {
        saved_ = std::min(saved_ + kAllowance, std::max(kMostSaved, mostForHeader_));
        left_ = std::min(saved_, mostForHeader_);
    }

    /// How much the header may still spend.
    Steps left() const { return left_; }

    /// Notes that the header has spent this much. More than `left` counts as `left`.
    void spend(Steps steps) {
        const Steps spent = std::min(steps, left_);
        saved_ -= spent;
        left_ -= spent;
    }

private:
    Steps mostForHeader_ = kMostForHeader;
    Steps saved_ = kMostSaved;
    Steps left_ = 0;
};

} // namespace navrel
