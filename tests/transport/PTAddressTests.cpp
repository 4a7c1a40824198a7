#include "transport/frames/PTAddress.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>

namespace navrel {
namespace {

PTAddress IPv4Address(const char* text, quint16 port) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    EXPECT_EQ(::inet_pton(AF_INET, text, &address.sin_addr), 1);
    return PTAddress(reinterpret_cast<const sockaddr*>(&address));
}

PTAddress IPv6Address(const char* text, quint16 port) {
    sockaddr_in6 address = {};
    address.sin6_family = AF_INET6;
    address.sin6_port = htons(port);
    EXPECT_EQ(::inet_pton(AF_INET6, text, &address.sin6_addr), 1);
    return PTAddress(reinterpret_cast<const sockaddr*>(&address));
}

TEST(PTAddress, ofTheCompanionAppDescribesItselfByNameAndPort) {
    const PTAddress address = IPv4Address("127.0.0.1", 2345);
    EXPECT_EQ(address.name(), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(address.port(), 2345);
    EXPECT_EQ(address.description(), QStringLiteral("127.0.0.1:2345"));
}

TEST(PTAddress, of14CharactersHasANameAndOf15HasNone) {
    EXPECT_EQ(IPv4Address("255.255.255.25", 1).name(), QStringLiteral("255.255.255.25"));

    const PTAddress longest = IPv4Address("255.255.255.255", 65535);
    EXPECT_EQ(longest.name(), std::nullopt);
    EXPECT_EQ(longest.port(), 65535);
    EXPECT_EQ(longest.description(), QStringLiteral("(null):65535"));
}

TEST(PTAddress, ofIPv6HasItsNumericText) {
    EXPECT_EQ(IPv6Address("::1", 80).description(), QStringLiteral("::1:80"));

    const char* longest = "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff";
    EXPECT_EQ(IPv6Address(longest, 80).name(), QString::fromLatin1(longest));
}

TEST(PTAddress, ofNoFamilyIsEmpty) {
    const sockaddr_storage none = {};
    const PTAddress address(reinterpret_cast<const sockaddr*>(&none));
    EXPECT_TRUE(address.isEmpty());
    EXPECT_EQ(address.name(), std::nullopt);
    EXPECT_EQ(address.port(), 0);
    EXPECT_EQ(address.description(), QStringLiteral("(?)"));
}

TEST(PTAddress, ofAnotherFamilyHasNoName) {
    sockaddr address = {};
    address.sa_family = AF_UNIX;
    EXPECT_FALSE(PTAddress(&address).isEmpty());
    EXPECT_EQ(PTAddress(&address).name(), std::nullopt);
}

TEST(PTAddressDeathTest, ofNothingStopsTheProgram) {
    EXPECT_DEATH(PTAddress(nullptr), "Assertion failed: \\(addr\\)");
}

} // namespace
} // namespace navrel
