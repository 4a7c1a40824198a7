#include "tests/FakeUSBDaemon.h"
#include "tests/LogRecorder.h"
#include "tests/WaitUntil.h"
#include "tests/transport/RawPeer.h"
#include "transport/usb/daemon/USBDaemonSocket.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <netdb.h>

namespace navrel {
namespace {

std::optional<USBDaemonAddress> address(const char* text) {
    return USBDaemonAddress::fromText(QString::fromUtf8(text));
}

bool knowsName(const char* name) {
    addrinfo* found = nullptr;
    if (::getaddrinfo(name, nullptr, nullptr, &found) != 0) {
        return false;
    }
    ::freeaddrinfo(found);
    return true;
}

TEST(USBDaemonAddress, aPathStandsBehindItsPrefix) {
    ASSERT_TRUE(address("UNIX:/tmp/a:1").has_value());
    EXPECT_EQ(address("UNIX:/tmp/a:1")->path, QStringLiteral("/tmp/a:1"));
}

TEST(USBDaemonAddress, anythingElseIsAHostAndAPort) {
    ASSERT_TRUE(address("localhost:27015").has_value());
    EXPECT_EQ(address("localhost:27015")->host, QStringLiteral("localhost"));
    EXPECT_EQ(address("localhost:27015")->port, QStringLiteral("27015"));
    EXPECT_EQ(address("localhost:27015")->path, QString());
    EXPECT_EQ(address("[::1]:27015")->host, QStringLiteral("::1"));
}

TEST(USBDaemonAddress, aTextWithoutPathOrHostOrPortIsNone) {
    for (const char* text : {"", "UNIX:", "localhost", ":27015", "localhost:", "localhost:0",
                             "localhost:65536", "localhost:http", "/var/run/usbmuxd"}) {
        EXPECT_FALSE(address(text).has_value()) << text;
    }
}

TEST(USBDaemonAddress, aHostIsANumberOrAName) {
    for (const char* text : {"192.0.2.1:27015", "[2001:db8::1]:27015", "mac:27015",
                             "build-mac_2.example:27015", "localhost.:27015"}) {
        EXPECT_TRUE(address(text).has_value()) << text;
    }
    for (const char* text : {"1.2.3.4.5:27015", "[::1::2]:27015", "[mac]:27015", ".mac:27015",
                             "two words:27015", "a/b:27015", "-:\x01:27015"}) {
        EXPECT_FALSE(address(text).has_value()) << text;
    }
}

TEST(USBDaemonAddress, withoutTheVariableItIsTheDaemonsOwn) {
    qunsetenv("USBMUXD_SOCKET_ADDRESS");
    EXPECT_EQ(USBDaemonAddress::fromEnvironment().path, QStringLiteral("/var/run/usbmuxd"));
}

TEST(USBDaemonAddress, aVariableThatCannotBeReadIsLoggedAndIgnored) {
    const LogRecorder log;
    qputenv("USBMUXD_SOCKET_ADDRESS", "nonsense");
    EXPECT_EQ(USBDaemonAddress::fromEnvironment().path, QStringLiteral("/var/run/usbmuxd"));
    qunsetenv("USBMUXD_SOCKET_ADDRESS");
    ASSERT_EQ(log.messages().size(), 1);
    EXPECT_TRUE(log.messages()[0].endsWith(QStringLiteral(": nonsense")));
}

TEST(USBDaemonSocket, connectsToAPath) {
    FakeUSBDaemon daemon;
    ASSERT_TRUE(daemon.start());
    EXPECT_TRUE(
        USBDaemonSocket(*USBDaemonAddress::fromText(daemon.address())).openStream().isValid());
}

TEST(USBDaemonSocket, connectsToAHostAndPort) {
    const RawListener listener(27015);
    for (const char* text : {"127.0.0.1:27015", "localhost:27015"}) {
        const OwnedDescriptor stream = USBDaemonSocket(*address(text)).openStream();
        ASSERT_TRUE(stream.isValid()) << text;
        EXPECT_GE(listener.accept().descriptor(), 0) << text;
    }
}

TEST(USBDaemonSocket, connectsToANameThatTheSystemKnows) {
    // Another spelling of the one name that machines know: only "localhost" is not looked up.
    if (!knowsName("LOCALHOST")) {
        GTEST_SKIP() << "this system cannot look up localhost: has it no /etc/hosts?";
    }
    const RawListener listener(27015);
    USBDaemonSocket socket(*address("LOCALHOST:27015"));
    OwnedDescriptor stream;
    ASSERT_TRUE(waitUntil([&] {
        stream = socket.openStream();
        return stream.isValid();
    }));
    EXPECT_GE(listener.accept().descriptor(), 0);
}

TEST(USBDaemonSocket, aNameThatHasNoAddressIsAFailureNowAndMayHaveOneLater) {
    USBDaemonSocket socket(*address("nothing.invalid:27015"));
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(socket.openStream().isValid());
        EXPECT_EQ(errno, EHOSTUNREACH);
    }
}

TEST(USBDaemonSocket, failsWithTheReason) {
    FakeUSBDaemon daemon;
    USBDaemonSocket socket(*USBDaemonAddress::fromText(daemon.address()));
    EXPECT_FALSE(socket.openStream().isValid());
    EXPECT_EQ(errno, ENOENT);
    ASSERT_TRUE(daemon.start());
    daemon.stop(); // its file stays
    EXPECT_FALSE(socket.openStream().isValid());
    EXPECT_EQ(errno, ECONNREFUSED);
    const QString longPath = QStringLiteral("/") + QString(200, QLatin1Char('x'));
    EXPECT_FALSE(USBDaemonSocket({longPath, {}, {}}).openStream().isValid());
    EXPECT_EQ(errno, ENAMETOOLONG);
}

TEST(USBDaemonSocket, aDaemonThatAcceptsNobodyIsAFailureAndDoesNotHoldTheCaller) {
    FakeUSBDaemon daemon;
    ASSERT_TRUE(daemon.start());
    USBDaemonSocket socket(*USBDaemonAddress::fromText(daemon.address()));
    std::vector<OwnedDescriptor> waiting;
    constexpr size_t kMoreThanAnyBacklog = 64;
    while (waiting.size() < kMoreThanAnyBacklog && (waiting.empty() || waiting.back().isValid())) {
        waiting.push_back(socket.openStream()); // the event loop does not run: nobody accepts
    }
    EXPECT_FALSE(waiting.back().isValid());
    EXPECT_EQ(errno, EAGAIN);
}

} // namespace
} // namespace navrel
