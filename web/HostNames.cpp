#include "web/HostNames.h"

#include "codemap/Characters.h"

#include <algorithm>

namespace navrel {

namespace {

/// The name without its port, which must be digits.
std::string_view nameWithoutPort(std::string_view host) {
    const auto colon = host.rfind(':');
    const auto bracket = host.rfind(']');
    const bool hasPort = colon != std::string_view::npos &&
                         (bracket == std::string_view::npos || bracket + 1 == colon);
    if (!hasPort) {
        return host;
    }
    const std::string_view port = host.substr(colon + 1);
    const bool isNumber =
        !port.empty() && port.find_first_not_of("0123456789") == std::string_view::npos;
    return isNumber ? host.substr(0, colon) : host;
}

bool isLoopback(const std::string& address) {
    return address == "127.0.0.1" || address == "::1";
}

} // namespace

HostNames::HostNames(const std::vector<std::string>& addresses, std::uint16_t port,
                     const std::string& machine, const std::vector<std::string>& further)
    : withAnyPort_{"localhost", "127.0.0.1", "[::1]"} {
    const std::string suffix = ':' + std::to_string(port);
    for (const std::string& address : addresses) {
        if (!isLoopback(address)) {
            withPort_.insert(lowered(hostOfAddress(address)) + suffix);
        }
    }
    if (!machine.empty()) {
        withPort_.insert(lowered(machine) + suffix);
        withPort_.insert(lowered(machine) + ".local" + suffix);
    }
    for (const std::string& name : further) {
        further_.insert(lowered(nameWithoutPort(name)));
    }
}

bool HostNames::isFurther(std::string_view host) const {
    return further_.contains(lowered(nameWithoutPort(host)));
}

bool HostNames::isOurs(std::string_view host) const {
    const std::string name = lowered(host);
    return withPort_.contains(name) || withAnyPort_.contains(nameWithoutPort(name)) ||
           isFurther(name);
}

bool HostNames::isOrigin(std::string_view origin, std::string_view host, bool isTLS) const {
    const std::string ours = (isTLS ? "https://" : "http://") + std::string(host);
    const bool isProxied = !isTLS && isFurther(host) && origin == "https://" + std::string(host);
    return origin == ours || isProxied;
}

std::string hostOfAddress(const std::string& address) {
    return address.find(':') == std::string::npos ? address : '[' + address + ']';
}

} // namespace navrel
