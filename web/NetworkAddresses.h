#pragma once

#include <string>
#include <string_view>
#include <sys/socket.h>
#include <vector>

namespace navrel {

/// Whether an address, as text, belongs to a private network: RFC 1918, 100.64.0.0/10, fc00::/7,
/// fe80::/10. False for anything else, and for what is no address.
bool isPrivateAddress(std::string_view address);

/// 127.0.0.0/8 and ::1.
bool isLoopbackAddress(std::string_view address);

/// The private addresses of the interfaces that are up: the one from which the default route leads
/// first, IPv4 before IPv6, link-local ones last and with their interface ("fe80::1%eth0").
std::vector<std::string> privateAddresses();

/// The order of `privateAddresses`. Pure.
std::vector<std::string> likeliestFirst(std::vector<std::string> addresses,
                                        std::string_view routed);

/// An address as text, IPv6 with its interface where that matters; empty for another kind.
std::string textOfAddress(const sockaddr* address);

/// This machine's name, without its domain; empty where it has none.
std::string machineName();

} // namespace navrel
