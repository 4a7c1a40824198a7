#include "web/RateLimiter.h"

#include <algorithm>

namespace navrel {

bool RateLimiter::allows(const std::string& address, Time now) {
    auto budget = budgets_.find(address);
    if (budget == budgets_.end()) {
        makeRoom(now);
        budget = budgets_.emplace(address, Budget{limits_.requestBurst, now}).first;
    }
    const double requests = requestsAt(budget->second, now);
    const bool isAllowed = requests >= 1;
    budget->second = {isAllowed ? requests - 1 : requests, now};
    return isAllowed;
}

double RateLimiter::requestsAt(const Budget& budget, Time now) const {
    const double seconds = std::chrono::duration<double>(now - budget.at).count();
    return std::min(limits_.requestBurst, budget.requests + seconds * limits_.requestsPerSecond);
}

/// Forgets those that have their whole burst again; where all are busy, the one that was quiet for
/// longest.
void RateLimiter::makeRoom(Time now) {
    if (budgets_.size() < limits_.ratedAddresses) {
        return;
    }
    std::erase_if(budgets_, [&](const auto& entry) {
        return requestsAt(entry.second, now) >= limits_.requestBurst;
    });
    if (budgets_.size() >= limits_.ratedAddresses) {
        budgets_.erase(std::min_element(
            budgets_.begin(), budgets_.end(),
            [](const auto& left, const auto& right) { return left.second.at < right.second.at; }));
    }
}

} // namespace navrel
