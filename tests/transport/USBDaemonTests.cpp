#include "tests/FakeUSBDaemon.h"
#include "tests/LogRecorder.h"
#include "tests/transport/RawPeer.h"
#include "transport/USBDaemon.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace navrel {
namespace {

std::optional<USBDaemonAddress> address(const char* text) {
    return USBDaemonAddress::fromText(QString::fromUtf8(text));
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

TEST(USBDaemonAddress, aHostIsANumberSinceNamesAreNotLookedUp) {
    for (const char* text : {"example.invalid:27015", "localhost.:27015", "ip6-localhost:27015",
                             "1.2.3.4.5:27015", "[::1::2]:27015"}) {
        EXPECT_FALSE(address(text).has_value()) << text;
    }
    EXPECT_TRUE(address("192.0.2.1:27015").has_value());
    EXPECT_TRUE(address("[2001:db8::1]:27015").has_value());
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
