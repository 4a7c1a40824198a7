#include "support/sockets/IPv4Socket.h"
#include "tests/transport/RawPeer.h"
#include "transport/peers/LoopbackPeer.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <optional>
#include <unistd.h>

namespace navrel {
namespace {

constexpr quint32 kLoopbackAddress = 0x7F000001;
constexpr char kTableHead[] = "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when "
                              "retrnsmt   uid  timeout inode\n";

/// The program's end is 127.0.0.1:54002 (D2F2), the peer's 127.0.0.1:2345 (0929).
std::optional<uid_t> owner(const QByteArray& rows) {
    return ownerOfPeer(kTableHead + rows, IPv4SocketAddress(54002, kLoopbackAddress),
                       IPv4SocketAddress(2345, kLoopbackAddress));
}

const QByteArray kOwnRow =
    "   2: 0100007F:D2F2 0100007F:0929 01 00000000:00000000 00:00000000 00000000  1000        0 "
    "31337 1 0000000000000000 20 4 30 10 -1\n";
const QByteArray kAcceptedBy1001 =
    "   1: 0100007F:0929 0100007F:D2F2 01 00000000:00000000 00:00000000 00000000  1001        0 "
    "31338 1 0000000000000000 20 4 30 10 -1\n";
const QByteArray kNotAccepted =
    "   1: 0100007F:0929 0100007F:D2F2 01 00000000:00000000 00:00000000 00000000     0        0 "
    "0 1 0000000000000000 20 4 30 10 -1\n";
const QByteArray kListener1002 =
    "   0: 0100007F:0929 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1002        0 "
    "31336 1 0000000000000000 100 0 0 10 0\n";
const QByteArray kListenerAnywhere1003 =
    "   0: 00000000:0929 00000000:0000 0A 00000000:00000000 00:00000000 00000000  1003        0 "
    "31336 1 0000000000000000 100 0 0 10 0\n";

TEST(LoopbackPeer, isOwnedByWhoeverAcceptedTheConnection) {
    EXPECT_EQ(owner(kListener1002 + kOwnRow + kAcceptedBy1001), 1001U);
    EXPECT_EQ(owner(kAcceptedBy1001 + kListener1002), 1001U);
}

TEST(LoopbackPeer, isOwnedByTheListenerWhileItIsNotAccepted) {
    // Its row says user 0 then, which must not pass for root.
    EXPECT_EQ(owner(kListener1002 + kOwnRow + kNotAccepted), 1002U);
    EXPECT_EQ(owner(kNotAccepted + kListenerAnywhere1003), 1003U);
}

TEST(LoopbackPeer, isOwnedByTheListenerOnItsVeryAddressBeforeOneOnAny) {
    EXPECT_EQ(owner(kListenerAnywhere1003 + kListener1002), 1002U);
    EXPECT_EQ(owner(kListener1002 + kListenerAnywhere1003), 1002U);
}

TEST(LoopbackPeer, isUnknownWithoutAnAcceptedConnectionOrAListener) {
    EXPECT_EQ(owner(""), std::nullopt);
    EXPECT_EQ(owner(kOwnRow), std::nullopt);
    EXPECT_EQ(owner(kNotAccepted), std::nullopt);
}

TEST(LoopbackPeer, isNotSomebodyElsesConnectionOrListener) {
    EXPECT_EQ(owner("   1: 0100007F:0929 0100007F:D2F3 01 00000000:00000000 00:00000000 00000000  "
                    "1001        0 31338 1\n"
                    "   0: 0100007F:092A 00000000:0000 0A 00000000:00000000 00:00000000 00000000  "
                    "1002        0 31336 1\n"),
              std::nullopt);
}

TEST(LoopbackPeer, mayListenOnIPv6AsWell) {
    const QByteArray listener =
        "   0: 00000000000000000000000000000000:0929 00000000000000000000000000000000:0000 0A "
        "00000000:00000000 00:00000000 00000000  1004        0 41 1\n";
    const QByteArray accepted =
        "   1: 0000000000000000FFFF00000100007F:0929 0000000000000000FFFF00000100007F:D2F2 01 "
        "00000000:00000000 00:00000000 00000000  1005        0 42 1\n";
    EXPECT_EQ(owner(listener), 1004U);
    EXPECT_EQ(owner(listener + accepted), 1005U);
}

TEST(LoopbackPeer, rowsThatAreNoneArePassedOver) {
    EXPECT_EQ(owner("garbage\n\n   1: 0100007F:0929 0100007F:D2F2 01 a b c x 0 7\n   1: "
                    "0100007F:0929 0100007F:D2F2 01\n" +
                    kAcceptedBy1001),
              1001U);
}

TEST(LoopbackPeer, ofThisProcessBelongsToItsUser) {
    const RawListener listener(2345);
    const RawPeer connection = RawPeer::connectedTo(2345);
    EXPECT_EQ(ownerOfPeer(connection.descriptor()), ::geteuid());
    const RawPeer accepted = listener.accept();
    EXPECT_EQ(ownerOfPeer(connection.descriptor()), ::geteuid());
}

TEST(LoopbackPeer, thatHasGoneHasNoOwnerAndHasEnded) {
    std::optional<RawListener> listener(2345);
    const RawPeer connection = RawPeer::connectedTo(2345);
    RawPeer accepted = listener->accept();
    EXPECT_FALSE(hasPeerEnded(connection.descriptor()));
    listener.reset();
    accepted.close();
    EXPECT_TRUE(hasPeerEnded(connection.descriptor()));
    EXPECT_EQ(ownerOfPeer(connection.descriptor()), std::nullopt);
}

TEST(LoopbackPeer, ofASocketThatIsNotConnectedIsUnknown) {
    EXPECT_EQ(ownerOfPeer(makeIPv4StreamSocket().value()), std::nullopt);
}

} // namespace
} // namespace navrel
