#include "desktop/windows/PairingContents.h"

#include <gtest/gtest.h>

namespace navrel {
namespace {

using Mode = AccessSettings::Mode;

const QDateTime kNow = QDateTime::fromSecsSinceEpoch(1'700'000'000);

PairedDevice device(int number, qint64 secondsAgo, bool connected = false) {
    PairedDevice device;
    device.number = number;
    device.label = "iPad, Safari";
    device.seen = PairedDevice::Time(std::chrono::seconds(kNow.toSecsSinceEpoch() - secondsAgo));
    device.connected = connected;
    return device;
}

class PairingContentsTest : public ::testing::Test {
protected:
    PairingContentsTest() {
        settings_.mode = Mode::network;
        status_.mode = Mode::network;
        status_.addresses = {"https://192.168.1.5:2346", "https://10.0.0.7:2346"};
        status_.fingerprint = "00:11:22:33:44:55:66:77:88:99:AA:BB:CC:DD:EE:FF";
        offer_.ticket = "ABCDEFGHIJKLMNOPQRSTUV";
        offer_.code = "123456";
    }

    PairingContents contents(const QString& chosen = {}) const {
        return pairingContents(settings_, status_, offer_, devices_, chosen, kNow);
    }

    AccessSettings settings_;
    AccessStatus status_;
    PairingOffer offer_;
    std::vector<PairedDevice> devices_;
};

TEST_F(PairingContentsTest, theLikeliestAddressIsTakenUntilAnotherIsChosen) {
    EXPECT_EQ(contents().address, QStringLiteral("https://192.168.1.5:2346"));
    EXPECT_EQ(contents().url, QStringLiteral("https://192.168.1.5:2346/#p=ABCDEFGHIJKLMNOPQRSTUV"));
    EXPECT_TRUE(contents(QStringLiteral("https://10.0.0.7:2346"))
                    .url.startsWith(QStringLiteral("https://10.0.0.7:2346/")));
    EXPECT_EQ(contents(QStringLiteral("https://gone:1")).address,
              QStringLiteral("https://192.168.1.5:2346"));
}

TEST_F(PairingContentsTest, codeAndFingerprintAreInGroupsToRead) {
    EXPECT_EQ(contents().code, QStringLiteral("123 456"));
    EXPECT_EQ(contents().fingerprint,
              QStringLiteral("00:11:22:33:44:55:66:77\n88:99:AA:BB:CC:DD:EE:FF"));
    offer_.code.clear();
    EXPECT_EQ(contents().code, QString());
}

TEST_F(PairingContentsTest, withoutAnAddressNothingCanBePaired) {
    status_.addresses.clear();
    EXPECT_EQ(contents().url, QString());
    EXPECT_EQ(contents().code, QString());
}

TEST_F(PairingContentsTest, theStateIsToldInPlainWordsAndAProblemFirst) {
    EXPECT_EQ(contents().state, QStringLiteral("Paired devices in this network can reach Navrel at "
                                               "https://192.168.1.5:2346: 0 paired, 0 connected."));
    EXPECT_TRUE(contents().advice.contains(QStringLiteral("fingerprint")));
    settings_.plainHTTP = true;
    EXPECT_TRUE(contents().advice.contains(QStringLiteral("others in the network can read")));
    settings_.mode = Mode::machine;
    EXPECT_TRUE(contents().state.contains(QStringLiteral("this machine")));
    EXPECT_TRUE(contents().advice.contains(QStringLiteral("SSH")));
    settings_.mode = Mode::off;
    EXPECT_EQ(contents().state, QStringLiteral("No browser can reach Navrel."));
    EXPECT_EQ(contents().advice, QString());
    EXPECT_FALSE(contents().isAmiss);
    status_.problem = "Ports 2346 to 2356 are taken.";
    EXPECT_EQ(contents().state, QStringLiteral("Ports 2346 to 2356 are taken."));
    EXPECT_TRUE(contents().isAmiss);
}

TEST_F(PairingContentsTest, theLastUseIsTold) {
    devices_ = {device(1, 5, true), device(2, 5),          device(3, 60),
                device(4, 7'199),   device(5, 3 * 86'400), device(6, -100)};
    QStringList uses;
    for (const auto& one : contents().devices) {
        uses.append(one.lastUse);
    }
    EXPECT_EQ(uses,
              (QStringList{QStringLiteral("connected now"), QStringLiteral("used just now"),
                           QStringLiteral("used 1 minute ago"), QStringLiteral("used 1 hour ago"),
                           QStringLiteral("used 3 days ago"), QStringLiteral("used just now")}));
    EXPECT_EQ(contents().devices.at(0).label, QStringLiteral("iPad, Safari"));
}

} // namespace
} // namespace navrel
