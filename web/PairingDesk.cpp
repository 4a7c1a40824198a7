#include "web/PairingDesk.h"

#include "web/Secrets.h"

namespace navrel {

namespace {

constexpr std::size_t kTicketBytes = 16;
constexpr std::size_t kCodeDigits = 6;

} // namespace

PairingOffer PairingDesk::offer() {
    const std::lock_guard lock(mutex_);
    return freshOffer();
}

PairingOffer PairingDesk::current() {
    const std::lock_guard lock(mutex_);
    if (!offer_.ticket.empty() && offer_.ticketExpires <= clock_()) {
        renewTicket();
    }
    if (!offer_.code.empty() && offer_.codeExpires <= clock_()) {
        renewCode();
    }
    return offer_;
}

PairingDesk::Outcome PairingDesk::tryTicket(std::string_view ticket) {
    const std::lock_guard lock(mutex_);
    return settle(!offer_.ticket.empty() && isSameSecret(ticket, offer_.ticket) &&
                  clock_() < offer_.ticketExpires);
}

PairingDesk::Outcome PairingDesk::tryCode(std::string_view code) {
    const std::lock_guard lock(mutex_);
    if (wrongCodes_ >= kWrongCodes) {
        return Outcome::closed;
    }
    const bool isRight =
        !offer_.code.empty() && isSameSecret(code, offer_.code) && clock_() < offer_.codeExpires;
    if (!isRight && ++wrongCodes_ == kWrongCodes) {
        offer_.code.clear();
    }
    return settle(isRight);
}

PairingDesk::Outcome PairingDesk::settle(bool isRight) {
    if (isRight) {
        freshOffer();
    }
    return isRight ? Outcome::paired : Outcome::wrong;
}

PairingOffer PairingDesk::freshOffer() {
    wrongCodes_ = 0;
    renewTicket();
    renewCode();
    return offer_;
}

void PairingDesk::renewTicket() {
    offer_.ticket = randomText(kTicketBytes);
    offer_.ticketExpires = clock_() + kTicketLife;
}

void PairingDesk::renewCode() {
    offer_.code = randomDigits(kCodeDigits);
    offer_.codeExpires = clock_() + kCodeLife;
}

std::string pairingURL(std::string_view address, const PairingOffer& offer) {
    return std::string(address) + "/#p=" + offer.ticket;
}

} // namespace navrel
