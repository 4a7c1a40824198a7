#include "web/HostNames.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

class HostNamesTests : public ::testing::Test {
protected:
    const HostNames names{{"127.0.0.1", "::1", "192.168.1.5", "fd00::5"},
                          2346,
                          "Desk",
                          {"desk.tailnet.example", "Proxy.example:8443"}};
};

TEST_F(HostNamesTests, addressesAndTheMachinesNameAreOursAtOurPort) {
    for (const char* host : {"192.168.1.5:2346", "[fd00::5]:2346", "[FD00::5]:2346", "desk:2346",
                             "DESK:2346", "desk.local:2346"}) {
        EXPECT_TRUE(names.isOurs(host)) << host;
    }
    for (const char* host :
         {"192.168.1.5", "192.168.1.5:2347", "192.168.1.6:2346", "fd00::5:2346", "[fd00::5]",
          "[fd00::6]:2346", "desk", "desk.local", "desk.attacker.example:2346", ""}) {
        EXPECT_FALSE(names.isOurs(host)) << host;
    }
}

/// A tunnel's end may have another port.
TEST_F(HostNamesTests, loopbackAndTheUsersOwnNamesAreOursAtAnyPort) {
    for (const char* host : {"localhost", "localhost:9000", "127.0.0.1:1", "[::1]", "[::1]:9000",
                             "desk.tailnet.example", "DESK.tailnet.example:443", "proxy.example",
                             "proxy.example:80"}) {
        EXPECT_TRUE(names.isOurs(host)) << host;
    }
    for (const char* host : {"tailnet.example", "x.desk.tailnet.example", "localhost:", "::1"}) {
        EXPECT_FALSE(names.isOurs(host)) << host;
    }
}

TEST_F(HostNamesTests, anOriginIsThatOfTheHostThatWasAskedFor) {
    EXPECT_TRUE(names.isOrigin("http://localhost:2346", "localhost:2346", false));
    EXPECT_TRUE(names.isOrigin("https://192.168.1.5:2346", "192.168.1.5:2346", true));
    EXPECT_FALSE(names.isOrigin("http://192.168.1.5:2346", "192.168.1.5:2346", true));
    EXPECT_FALSE(names.isOrigin("https://192.168.1.5:2346", "192.168.1.5:2346", false));
    EXPECT_FALSE(names.isOrigin("http://localhost:2346", "127.0.0.1:2346", false));
    EXPECT_FALSE(names.isOrigin("", "localhost:2346", false));
}

/// What comes by such a name over HTTP may have come to a proxy of the user's by HTTPS.
TEST_F(HostNamesTests, behindAProxyOfTheUsersTheOriginMayBeHTTPS) {
    EXPECT_TRUE(names.isOrigin("https://desk.tailnet.example", "desk.tailnet.example", false));
    EXPECT_TRUE(names.isOrigin("http://desk.tailnet.example", "desk.tailnet.example", false));
    EXPECT_FALSE(names.isOrigin("https://proxy.example", "desk.tailnet.example", false));
    EXPECT_FALSE(names.isOrigin("http://desk.tailnet.example", "desk.tailnet.example", true));
}

} // namespace
} // namespace navrel
