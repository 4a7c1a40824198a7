#include "tests/LogRecorder.h"
#include "tests/web/ServedSite.h"
#include "web/DeviceList.h"
#include "web/PairingDesk.h"

#include <QDir>
#include <QFile>
#include <gmock/gmock.h>

#include <sys/stat.h>

namespace navrel {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;
using Outcome = PairingDesk::Outcome;

class PairingDeskTests : public ::testing::Test {
protected:
    /// Six digits that are not the code.
    static std::string wrongCode(const PairingOffer& offer) {
        return offer.code == "000000" ? "000001" : "000000";
    }

    StillClock clock;
    PairingDesk desk{[this] { return clock.wallTime(); }};
};

TEST_F(PairingDeskTests, anOfferHasATicketOf128BitsAndSixDigits) {
    const PairingOffer offer = desk.offer();
    EXPECT_THAT(offer.ticket, ::testing::MatchesRegex("[A-Za-z0-9_-]{22}"));
    EXPECT_THAT(offer.code, ::testing::MatchesRegex("[0-9]{6}"));
    EXPECT_EQ(offer.ticketExpires, clock.wallTime() + minutes(5));
    EXPECT_EQ(offer.codeExpires, clock.wallTime() + minutes(2));
    EXPECT_EQ(pairingURL("https://192.168.1.5:2346", offer),
              "https://192.168.1.5:2346/#p=" + offer.ticket);
}

TEST_F(PairingDeskTests, nothingIsTakenBeforeAnOffer) {
    EXPECT_EQ(desk.tryTicket(""), Outcome::wrong);
    EXPECT_EQ(desk.tryCode(""), Outcome::wrong);
    EXPECT_EQ(desk.current().ticket, "");
}

TEST_F(PairingDeskTests, aTicketIsTakenOnce) {
    const std::string ticket = desk.offer().ticket;
    EXPECT_EQ(desk.tryTicket(ticket), Outcome::paired);
    EXPECT_EQ(desk.tryTicket(ticket), Outcome::wrong);
}

TEST_F(PairingDeskTests, pairingRenewsTicketAndCode) {
    const PairingOffer first = desk.offer();
    EXPECT_EQ(desk.tryCode(first.code), Outcome::paired);
    const PairingOffer second = desk.current();
    EXPECT_NE(second.ticket, first.ticket);
    EXPECT_EQ(desk.tryTicket(first.ticket), Outcome::wrong);
    EXPECT_EQ(desk.tryTicket(second.ticket), Outcome::paired);
}

TEST_F(PairingDeskTests, anOfferVoidsTheFormerOne) {
    const PairingOffer first = desk.offer();
    desk.offer();
    EXPECT_EQ(desk.tryTicket(first.ticket), Outcome::wrong);
}

TEST_F(PairingDeskTests, ticketsLastFiveMinutes) {
    const std::string ticket = desk.offer().ticket;
    clock.advance(minutes(5) - seconds(1));
    EXPECT_EQ(desk.current().ticket, ticket);
    clock.advance(seconds(1));
    EXPECT_EQ(desk.tryTicket(ticket), Outcome::wrong);
    EXPECT_NE(desk.current().ticket, ticket);
}

TEST_F(PairingDeskTests, codesLastTwoMinutes) {
    const PairingOffer offer = desk.offer();
    clock.advance(minutes(2));
    EXPECT_EQ(desk.tryCode(offer.code), Outcome::wrong);
    EXPECT_EQ(desk.current().ticket, offer.ticket);
    EXPECT_EQ(desk.tryCode(desk.current().code), Outcome::paired);
}

TEST_F(PairingDeskTests, fiveWrongCodesCloseTheCodeButNotTheTicket) {
    const PairingOffer offer = desk.offer();
    for (int wrong = 0; wrong < 5; ++wrong) {
        EXPECT_EQ(desk.tryCode(wrongCode(offer)), Outcome::wrong) << wrong;
    }
    EXPECT_EQ(desk.tryCode(offer.code), Outcome::closed);
    EXPECT_EQ(desk.current().code, "");
    EXPECT_EQ(desk.tryTicket(offer.ticket), Outcome::paired);
    EXPECT_EQ(desk.tryCode(desk.current().code), Outcome::paired);
}

TEST_F(PairingDeskTests, renewedCodesShareTheirWrongTries) {
    PairingOffer offer = desk.offer();
    for (int wrong = 0; wrong < 5; ++wrong) {
        EXPECT_EQ(desk.tryCode(wrongCode(offer)), Outcome::wrong) << wrong;
        clock.advance(minutes(2));
        offer = desk.current();
    }
    EXPECT_EQ(offer.code, "");
    EXPECT_EQ(desk.tryCode("123456"), Outcome::closed);
    EXPECT_EQ(desk.tryCode(desk.offer().code), Outcome::paired);
}

class DeviceListTests : public ::testing::Test {
protected:
    std::string path() const {
        return folder.filePath(QStringLiteral("kept/devices.json")).toStdString();
    }
    DeviceList list() const {
        return {path(), [this] { return clock.wallTime(); }};
    }
    QByteArray bytes() const {
        QFile file(QString::fromStdString(path()));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder;
    StillClock clock;
};

TEST_F(DeviceListTests, devicesSurviveARestart) {
    std::string token;
    std::string instance;
    {
        DeviceList devices = list();
        token = devices.add("iPad, Safari").token;
        devices.setReadOnly(1, true);
        instance = devices.instance();
    }
    DeviceList devices = list();
    EXPECT_EQ(devices.instance(), instance);
    const auto visitor = devices.recognize(token);
    ASSERT_TRUE(visitor.has_value());
    EXPECT_EQ(visitor->number, 1);
    EXPECT_TRUE(visitor->readOnly);
    EXPECT_EQ(devices.devices().at(0).label, "iPad, Safari");
}

TEST_F(DeviceListTests, theFileHoldsNoSecretAndIsTheUsersAlone) {
    DeviceList devices = list();
    const std::string token = devices.add("iPad").token;
    EXPECT_EQ(token.size(), 43U); // 256 bits
    EXPECT_FALSE(bytes().contains(token.c_str()));
    struct stat status = {};
    ASSERT_EQ(::stat(path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    ASSERT_EQ(
        ::stat(QFileInfo(QString::fromStdString(path())).path().toStdString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(DeviceListTests, aForgottenDeviceIsUnknownAndItsNumberNotUsedAgain) {
    DeviceList devices = list();
    const auto first = devices.add("one");
    EXPECT_TRUE(devices.forget(first.number));
    EXPECT_FALSE(devices.forget(first.number));
    EXPECT_FALSE(devices.recognize(first.token).has_value());
    EXPECT_EQ(devices.add("two").number, first.number + 1);
}

TEST_F(DeviceListTests, cookiesLast90DaysAndAreRenewedWeekly) {
    DeviceList devices = list();
    const std::string token = devices.add("iPad").token;
    clock.advance(hours(24 * 7) - seconds(1));
    EXPECT_FALSE(devices.recognize(token)->isCookieDue);
    clock.advance(seconds(1));
    EXPECT_TRUE(devices.recognize(token)->isCookieDue);
    EXPECT_FALSE(devices.recognize(token)->isCookieDue);
    clock.advance(hours(24 * 90) - seconds(1));
    EXPECT_TRUE(devices.recognize(token).has_value());
    clock.advance(hours(24 * 90));
    EXPECT_FALSE(devices.recognize(token).has_value());
    EXPECT_EQ(list().count(), 0U);
}

TEST_F(DeviceListTests, aDamagedFileIsSetAside) {
    for (const char* damage :
         {"{", "[]", "{\"instance\":\"../../..\",\"lastNumber\":0,\"devices\":[]}",
          "{\"instance\":\"01234567\",\"lastNumber\":1,\"devices\":[{}]}"}) {
        QDir().mkpath(folder.filePath(QStringLiteral("kept")));
        QFile file(QString::fromStdString(path()));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(damage);
        file.close();
        const LogRecorder log;
        DeviceList devices = list();
        EXPECT_EQ(devices.count(), 0U) << damage;
        EXPECT_EQ(log.messages().size(), 1) << damage;
        EXPECT_TRUE(QFile::exists(QString::fromStdString(path() + ".damaged"))) << damage;
        EXPECT_EQ(devices.add("iPad").number, 1) << damage;
    }
}

TEST_F(DeviceListTests, aHundredDevicesAreKept) {
    DeviceList devices = list();
    const std::string first = devices.add("first").token;
    for (int device = 0; device < 100; ++device) {
        clock.advance(seconds(1));
        devices.add("another");
    }
    EXPECT_EQ(devices.count(), 100U);
    EXPECT_FALSE(devices.recognize(first).has_value());
}

TEST(HarmlessLabelTests, labelsAreShortPlainText) {
    EXPECT_EQ(harmlessLabel("iPad,  Safari\n"), "iPad, Safari");
    EXPECT_EQ(harmlessLabel(std::string("a\x1b[31m\x07\0b", 9)), "a[31mb");
    EXPECT_EQ(harmlessLabel("a\xe2\x80\xae"
                            "b"),
              "ab"); // turns the writing direction
    EXPECT_EQ(harmlessLabel("\xff\xfe"), "\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(harmlessLabel(""), "Unnamed");
    EXPECT_EQ(harmlessLabel(std::string(1000, 'x')).size(), 64U);
}

class PairingTests : public ServedSite {
protected:
    PairingTests() { start(); }

    WebAnswer pairBy(const std::string& key, const std::string& value,
                     const std::string& cookie = {}) const {
        return post("/api/pair", R"({")" + key + R"(":")" + value + R"(","label":"iPad"})", cookie);
    }
};

TEST_F(PairingTests, theCookieIsForThisSiteAlone) {
    const WebAnswer answer = pairBy("ticket", service_->offerPairing().ticket);
    ASSERT_EQ(answer.status, 204);
    EXPECT_THAT(answer.fields.at("set-cookie"),
                ::testing::MatchesRegex("navrel-[0-9a-f]{8}=[A-Za-z0-9_-]{43}; Path=/; "
                                        "Max-Age=7776000; HttpOnly; SameSite=Strict"));
    EXPECT_EQ(host.asked(), std::vector<std::string>{"paired iPad"});
}

TEST_F(PairingTests, aLinkIsUsedOnce) {
    const std::string ticket = service_->offerPairing().ticket;
    EXPECT_EQ(pairBy("ticket", ticket).status, 204);
    EXPECT_EQ(pairBy("ticket", ticket).status, 403);
    EXPECT_EQ(service_->devices().size(), 1U);
}

TEST_F(PairingTests, sixDigitsPairToo) {
    EXPECT_EQ(pairBy("code", service_->offerPairing().code).status, 204);
}

TEST_F(PairingTests, fiveWrongCodesCloseIt) {
    const std::string right = service_->offerPairing().code;
    const std::string wrong = right == "000000" ? "000001" : "000000";
    for (int count = 0; count < 5; ++count) {
        EXPECT_EQ(pairBy("code", wrong).status, 403) << count;
    }
    EXPECT_EQ(pairBy("code", right).status, 429);
    EXPECT_TRUE(service_->devices().empty());
}

TEST_F(PairingTests, oneOfTicketAndCodeIsNeeded) {
    const PairingOffer offer = service_->offerPairing();
    EXPECT_EQ(post("/api/pair", R"({"label":"iPad"})", "").status, 400);
    EXPECT_EQ(post("/api/pair", R"({"code":")" + offer.code + "\"}", "").status, 400);
    EXPECT_EQ(
        post("/api/pair",
             R"({"label":"iPad","code":")" + offer.code + R"(","ticket":")" + offer.ticket + "\"}",
             "")
            .status,
        400);
}

TEST_F(PairingTests, aBrowserThatPairsAgainReplacesItself) {
    const std::string first = pair();
    EXPECT_EQ(pairBy("ticket", service_->offerPairing().ticket, first).status, 204);
    EXPECT_EQ(service_->devices().size(), 1U);
    EXPECT_EQ(get("/api/state", first).status, 401);
}

TEST_F(PairingTests, aForgottenDeviceLosesItsStreamAtOnce) {
    const std::string cookie = pair();
    const std::string other = pair("phone");
    WebClient stream = events(cookie);
    WebClient kept = events(other);
    service_->forget(1);
    EXPECT_TRUE(stream.ends());
    EXPECT_EQ(get("/api/state", cookie).status, 401);
    EXPECT_EQ(get("/api/state", other).status, 200);
    EXPECT_THAT(kept.readUntil("\n\n"), ::testing::HasSubstr("\"devices\":1"));
}

TEST_F(PairingTests, aDeviceThatMakesRoomLosesItsStream) {
    const std::string cookie = pair("first");
    WebClient stream = events(cookie);
    clock.advance(std::chrono::seconds(1));
    for (std::size_t count = 0; count < DeviceList::kMaximumDevices; ++count) {
        pair();
    }
    EXPECT_TRUE(stream.ends());
    EXPECT_EQ(get("/api/state", cookie).status, 401);
}

TEST_F(PairingTests, aReadOnlyDeviceMayLookButNotOpen) {
    const std::string cookie = pair();
    service_->setReadOnly(1, true);
    EXPECT_EQ(get("/api/tree", cookie).status, 200);
    EXPECT_THAT(get("/api/state", cookie).body, ::testing::HasSubstr("\"readOnly\":true"));
    for (const char* target : {"/api/open", "/api/back", "/api/filetypes"}) {
        EXPECT_EQ(post(target, R"({"file":"0000000000000002"})", cookie).status, 403) << target;
    }
    service_->setReadOnly(1, false);
    EXPECT_EQ(post("/api/back", "{}", cookie).status, 202);
}

TEST_F(PairingTests, theCookieIsSetAgainAfterAWeek) {
    const std::string cookie = pair();
    EXPECT_EQ(get("/api/state", cookie).fields.count("set-cookie"), 0U);
    clock.advance(hours(24 * 7));
    EXPECT_THAT(get("/api/state", cookie).fields["set-cookie"],
                ::testing::StartsWith(cookie + "; Path=/; Max-Age=7776000"));
    EXPECT_EQ(get("/api/state", cookie).fields.count("set-cookie"), 0U);
}

TEST_F(PairingTests, cookiesOutliveTheProgram) {
    const std::string cookie = pair();
    stop();
    start();
    EXPECT_EQ(get("/api/state", cookie).status, 200);
}

TEST_F(PairingTests, noSecretIsLogged) {
    const LogRecorder log;
    const PairingOffer offer = service_->offerPairing();
    const std::string wrong = offer.code == "000000" ? "000001" : "000000";
    EXPECT_EQ(pairBy("code", wrong).status, 403);
    const WebAnswer answer = pairBy("ticket", offer.ticket);
    ASSERT_EQ(answer.status, 204);
    stop();
    const QString text = log.messages().join(QLatin1Char('\n'));
    EXPECT_THAT(text.toStdString(), ::testing::HasSubstr("iPad"));
    for (const std::string& secret :
         {offer.ticket, offer.code, answer.fields.at("set-cookie").substr(16, 43)}) {
        EXPECT_THAT(text.toStdString(), ::testing::Not(::testing::HasSubstr(secret)));
    }
}

} // namespace
} // namespace navrel
