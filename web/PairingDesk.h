#pragma once

#include "web/BrowserAccess.h"

#include <functional>
#include <mutex>
#include <string_view>

namespace navrel {

/// Decides who is let in: one offer at a time, of a ticket in a link and a code to type. Any
/// thread.
class PairingDesk {
public:
    using Time = PairingOffer::Time;
    using Clock = std::function<Time()>;

    static constexpr std::chrono::minutes kTicketLife{5};
    static constexpr std::chrono::minutes kCodeLife{2};
    /// In all, of whatever address: a million codes are not guessed in five.
    static constexpr int kWrongCodes = 5;

    enum class Outcome {
        paired,
        wrong,  ///< or expired, or used, or never offered
        closed, ///< too many wrong codes: none is taken until the next offer
    };

    explicit PairingDesk(Clock clock) : clock_(std::move(clock)) {}

    /// A new offer, which voids the former one and its wrong tries.
    PairingOffer offer();
    /// The present offer, its expired parts renewed; wrong tries stay counted. An empty one where
    /// nothing was offered.
    PairingOffer current();

    /// Takes a ticket. A right one is used up by that: the next offer is made at once.
    Outcome tryTicket(std::string_view ticket);
    /// Takes a code, likewise.
    Outcome tryCode(std::string_view code);

private:
    Outcome settle(bool isRight);
    PairingOffer freshOffer();
    void renewTicket();
    void renewCode();

    const Clock clock_;
    std::mutex mutex_;
    PairingOffer offer_;
    int wrongCodes_ = 0;
};

} // namespace navrel
