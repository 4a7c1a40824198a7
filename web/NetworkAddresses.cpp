#include "web/NetworkAddresses.h"

#include "support/files/OwnedDescriptor.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstdint>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>

namespace navrel {

namespace {

/// The leading bits of an address that make it part of a network.
struct Network {
    std::array<std::uint8_t, 4> start;
    int bits;
};

constexpr std::array<Network, 4> kPrivateIPv4 = {{
    {{10, 0, 0, 0}, 8},
    {{172, 16, 0, 0}, 12},
    {{192, 168, 0, 0}, 16},
    {{100, 64, 0, 0}, 10}, // shared by carriers, and by networks laid over others
}};
constexpr std::array<Network, 2> kPrivateIPv6 = {{
    {{0xfc, 0, 0, 0}, 7},
    {{0xfe, 0x80, 0, 0}, 10},
}};

std::uint32_t wordOf(const std::uint8_t* bytes) {
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return ntohl(word);
}

template <typename Networks>
bool isIn(const Networks& networks, const std::uint8_t* address) {
    return std::any_of(networks.begin(), networks.end(), [address](const Network& network) {
        const int ignored = 32 - network.bits;
        return wordOf(address) >> ignored == wordOf(network.start.data()) >> ignored;
    });
}

std::optional<std::array<std::uint8_t, 4>> parsedIPv4(std::string_view text) {
    std::array<std::uint8_t, 4> bytes = {};
    return ::inet_pton(AF_INET, std::string(text).c_str(), bytes.data()) == 1 ? std::optional(bytes)
                                                                              : std::nullopt;
}

std::optional<std::array<std::uint8_t, 16>> parsedIPv6(std::string_view text) {
    std::array<std::uint8_t, 16> bytes = {};
    const std::string address(text.substr(0, text.find('%')));
    return ::inet_pton(AF_INET6, address.c_str(), bytes.data()) == 1 ? std::optional(bytes)
                                                                     : std::nullopt;
}

bool isLinkLocal(std::string_view address) {
    return address.find('%') != std::string_view::npos;
}

/// The address from which packets to the rest of the world leave: that of the default route. The
/// system is asked by a socket that is given a far address (one kept for documents) and sends
/// nothing.
std::string routedAddress() {
    constexpr const char* kFar = "192.0.2.1";
    const OwnedDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    ::inet_pton(AF_INET, kFar, &address.sin_addr);
    auto* const name = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof address;
    const bool isRouted = socket.isValid() && ::connect(socket.value(), name, length) == 0 &&
                          ::getsockname(socket.value(), name, &length) == 0;
    return isRouted ? textOfAddress(name) : std::string();
}

struct FreeInterfaces {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

bool isUsable(const ifaddrs& entry) {
    constexpr unsigned int kUp = IFF_UP | IFF_RUNNING;
    return entry.ifa_addr != nullptr && (entry.ifa_flags & kUp) == kUp &&
           (entry.ifa_addr->sa_family == AF_INET || entry.ifa_addr->sa_family == AF_INET6);
}

} // namespace

bool isPrivateAddress(std::string_view address) {
    if (const auto four = parsedIPv4(address)) {
        return isIn(kPrivateIPv4, four->data());
    }
    const auto six = parsedIPv6(address);
    return six && isIn(kPrivateIPv6, six->data());
}

bool isLoopbackAddress(std::string_view address) {
    constexpr std::uint8_t kLoopbackNetwork = 127;
    const auto four = parsedIPv4(address);
    return four ? four->front() == kLoopbackNetwork : address == "::1";
}

std::vector<std::string> privateAddresses() {
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0) {
        return {};
    }
    const std::unique_ptr<ifaddrs, FreeInterfaces> list(first);
    std::vector<std::string> addresses;
    for (const ifaddrs* entry = first; entry != nullptr; entry = entry->ifa_next) {
        std::string text = isUsable(*entry) ? textOfAddress(entry->ifa_addr) : std::string();
        if (isPrivateAddress(text)) {
            addresses.push_back(std::move(text));
        }
    }
    return likeliestFirst(std::move(addresses), routedAddress());
}

std::vector<std::string> likeliestFirst(std::vector<std::string> addresses,
                                        std::string_view routed) {
    const auto rank = [routed](const std::string& address) {
        if (address == routed) {
            return 0;
        }
        const bool isIPv6 = address.find(':') != std::string::npos;
        return isLinkLocal(address) ? 3 : isIPv6 ? 2 : 1;
    };
    std::stable_sort(
        addresses.begin(), addresses.end(),
        [&rank](const auto& left, const auto& right) { return rank(left) < rank(right); });
    addresses.erase(std::unique(addresses.begin(), addresses.end()), addresses.end());
    return addresses;
}

std::string textOfAddress(const sockaddr* address) {
    if (address->sa_family != AF_INET && address->sa_family != AF_INET6) {
        return {};
    }
    std::array<char, NI_MAXHOST> text = {};
    const socklen_t length =
        address->sa_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    return ::getnameinfo(address, length, text.data(), text.size(), nullptr, 0, NI_NUMERICHOST) == 0
               ? std::string(text.data())
               : std::string();
}

std::string machineName() {
    std::array<char, 256> name = {};
    if (::gethostname(name.data(), name.size() - 1) != 0) {
        return {};
    }
    const std::string_view whole(name.data());
    return std::string(whole.substr(0, whole.find('.')));
}

} // namespace navrel
