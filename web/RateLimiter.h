#pragma once

#include "web/Limits.h"

#include <chrono>
#include <string>
#include <unordered_map>

namespace navrel {

/// How many requests an address may make: so many a second, and a burst. Network thread.
class RateLimiter {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit RateLimiter(const Limits& limits) : limits_(limits) {}

    /// Whether a request of an address, made now, is within its rate. It counts if it is.
    bool allows(const std::string& address, Time now);

private:
    struct Budget {
        double requests = 0;
        Time at;
    };

    void makeRoom(Time now);
    double requestsAt(const Budget& budget, Time now) const;

    const Limits& limits_;
    std::unordered_map<std::string, Budget> budgets_;
};

} // namespace navrel
