#pragma once

#include "web/HTTPMessage.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// The names under which browsers reach this server. A page of another site whose name was made to
/// point here sends its own name, and is refused by that.
class HostNames {
public:
    HostNames() = default;
    /// `addresses` are those that are listened on, as text; `machine` is this machine's name;
    /// `further` the user's names. The port counts for addresses of the network and the machine's
    /// name: the others are reached through tunnels and proxies, whose ports differ.
    HostNames(const std::vector<std::string>& addresses, std::uint16_t port,
              const std::string& machine, const std::vector<std::string>& further);

    /// Whether a Host field is one of ours.
    bool isOurs(std::string_view host) const;

    /// Whether a page of this origin came from us, given the Host field of the same request, which
    /// must be ours. Behind a name of the user's, a proxy may speak HTTPS for us.
    bool isOrigin(std::string_view origin, std::string_view host, bool isTLS) const;

private:
    bool isFurther(std::string_view host) const;

    std::set<std::string, std::less<>> withPort_;
    std::set<std::string, std::less<>> withAnyPort_;
    std::set<std::string, std::less<>> further_;
};

/// An address as it stands in a URL: IPv6 in brackets.
std::string hostOfAddress(const std::string& address);

} // namespace navrel
