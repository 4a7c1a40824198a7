#pragma once

#include "support/text/RegularExpression.h"

#include <algorithm>

namespace navrel {

/// The steps for the superclasses of headers whose base names are patterns of their own:
/// "(a+)+b.h" would take years, and a project may name it a hundred thousand times. So headers save
/// for each other: each brings an allowance, more than an honest one spends, and what is saved up
/// is there for those that need more. Where it has been spent, headers go without a superclass
/// until others have brought enough for one. Steps and no time, so that a project has the same
/// superclasses on every machine. One thread at a time.
class SuperclassBudget {
public:
    /// As an expression counts them; 20 to 40 nanoseconds each.
    using Steps = RegularExpression::Steps;

    /// What a header brings. One like "Foo+Bar.h" spends a little less.
    static constexpr Steps kAllowance = 2'000;
    /// What one header may spend, however much is saved up: some milliseconds.
    static constexpr Steps kMostForHeader = 150'000;
    /// What is saved up at most, and at first: a tenth of a second.
    static constexpr Steps kMostSaved = 3'000'000;

    SuperclassBudget() = default;
    /// For a check that is to see all that a pattern finds: each header may spend that much.
    explicit SuperclassBudget(Steps forOneHeader)
        : mostForHeader_(forOneHeader), saved_(forOneHeader) {}

    /// The next header begins: it brings its allowance.
    void beginHeader() {
        saved_ = std::min(saved_ + kAllowance, std::max(kMostSaved, mostForHeader_));
        left_ = std::min(saved_, mostForHeader_);
    }

    /// What the header may still spend.
    Steps left() const { return left_; }

    /// The header has spent this; what is beyond `left` is nobody's debt.
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
