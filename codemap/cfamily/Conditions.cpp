#include "codemap/cfamily/Conditions.h"

namespace navrel::cfamily {

namespace {

/// Conditions that nest deeper do not bring back places.
constexpr std::size_t kMaximumDepth = 64;

} // namespace

void Conditions::begin(const Place& place, bool isNever) {
    if (open_.size() >= kMaximumDepth) {
        ++untracked_;
        return;
    }
    open_.push_back({place, isNever, false, std::nullopt});
}

std::optional<Place> Conditions::next(const Place& place) {
    if (open_.empty() || untracked_ > 0) {
        return std::nullopt;
    }
    Condition& condition = open_.back();
    if (!condition.isNever && !condition.end) {
        condition.end = place;
    }
    condition.isNever = false;
    condition.hasAlternative = true;
    return condition.begin;
}

std::optional<Place> Conditions::end() {
    if (untracked_ > 0) {
        --untracked_;
        return std::nullopt;
    }
    if (open_.empty()) {
        return std::nullopt;
    }
    const Condition condition = open_.back();
    open_.pop_back();
    if (condition.isNever && !condition.hasAlternative) {
        return condition.begin;
    }
    return condition.end;
}

void Conditions::cutBack(std::size_t depth) {
    if (depth < open_.size()) {
        open_.resize(depth);
        untracked_ = 0;
    }
}

} // namespace navrel::cfamily
