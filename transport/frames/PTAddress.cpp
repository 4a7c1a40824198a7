#include "transport/frames/PTAddress.h"

#include "support/core/Assertion.h"

#include <QtEndian>

#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <netinet/in.h>

namespace navrel {

namespace {

/// Bytes of an address of the family; on Linux no field of the address says so.
size_t lengthOfFamily(sa_family_t family) {
    switch (family) {
    case AF_UNSPEC:
        return 0;
    case AF_INET6:
        return sizeof(sockaddr_in6);
    default:
        return sizeof(sockaddr_in); // as many as the plain sockaddr that every address has
    }
}

} // namespace

PTAddress::PTAddress(const sockaddr* addr) {
    NAVREL_ASSERT_AS(addr != nullptr, "addr");
    std::memcpy(&sockaddr_, addr, lengthOfFamily(addr->sa_family));
}

std::optional<QString> PTAddress::name() const {
    if (isEmpty()) {
        return std::nullopt;
    }
    const bool isIPv6 = sockaddr_.ss_family == AF_INET6;
    const char* storage = reinterpret_cast<const char*>(&sockaddr_);
    const char* address =
        storage + (isIPv6 ? offsetof(sockaddr_in6, sin6_addr) : offsetof(sockaddr_in, sin_addr));
    // Deliberate: the limits that the conversion is given are two bytes less than the room there
    // is, and count the terminator. An IPv4 address of 15 characters (255.255.255.255) has no name,
    // and peers know addresses by the same rule.
    constexpr socklen_t kIPv6Limit = 45;
    constexpr socklen_t kIPv4Limit = 15;
    std::array<char, kIPv6Limit + 2> text = {};
    if (::inet_ntop(sockaddr_.ss_family, address, text.data(), isIPv6 ? kIPv6Limit : kIPv4Limit) ==
        nullptr) {
        return std::nullopt;
    }
    return QString::fromLatin1(text.data());
}

quint16 PTAddress::port() const {
    // IPv4 and IPv6 addresses have it in the same place.
    return isEmpty() ? 0 : ntohs(reinterpret_cast<const sockaddr_in*>(&sockaddr_)->sin_port);
}

QString PTAddress::description() const {
    if (isEmpty()) {
        return QStringLiteral("(?)");
    }
    return QStringLiteral("%1:%2").arg(name().value_or(QStringLiteral("(null)"))).arg(port());
}

} // namespace navrel
