#include "tests/web/ServedSite.h"
#include "web/Certificate.h"
#include "web/HostNames.h"
#include "web/NetworkAddresses.h"

#include <QProcess>
#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <atomic>
#include <cstring>
#include <deque>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {
namespace {

/// Gives the loopback interface of this namespace a further address.
void addAddress(const std::string& name, const std::string& address) {
    const int control = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request = {};
    std::strncpy(request.ifr_name, name.c_str(), IFNAMSIZ - 1);
    sockaddr_in value = {};
    value.sin_family = AF_INET;
    ::inet_pton(AF_INET, address.c_str(), &value.sin_addr);
    std::memcpy(&request.ifr_addr, &value, sizeof value);
    ASSERT_EQ(::ioctl(control, SIOCSIFADDR, &request), 0) << std::strerror(errno);
    ::close(control);
}

/// Whether programs can listen on ::1 at all.
bool hasIPv6() {
    const int listener = ::socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in6 address = {};
    address.sin6_family = AF_INET6;
    address.sin6_addr = in6addr_loopback;
    const auto* const name = reinterpret_cast<const sockaddr*>(&address);
    const bool isThere = listener >= 0 && ::bind(listener, name, sizeof address) == 0;
    ::close(listener);
    return isThere;
}

/// Another program that has a port of this machine.
class Occupier {
public:
    explicit Occupier(std::uint16_t port)
        : listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const auto* const name = reinterpret_cast<const sockaddr*>(&address);
        EXPECT_EQ(::bind(listener_, name, sizeof address), 0) << std::strerror(errno);
        EXPECT_EQ(::listen(listener_, 1), 0);
    }
    ~Occupier() { ::close(listener_); }
    Occupier(const Occupier&) = delete;
    Occupier& operator=(const Occupier&) = delete;

private:
    int listener_;
};

constexpr const char* kPrivate = "10.11.12.13";
constexpr const char* kForeign = "203.0.113.5";

class TransportTests : public ServedSite {
protected:
    TransportTests() {
        addAddress("lo:1", kPrivate);
        addAddress("lo:2", kForeign);
        settings.mode = AccessSettings::Mode::network;
        world.privateAddresses = &privateAddresses;
    }

    static std::string request(const std::string& name) {
        return "GET /nothing HTTP/1.1\r\nHost: " + name + "\r\n\r\n";
    }
    bool isServedAt(const std::string& address) const {
        const std::string name = hostOfAddress(address) + ':' + std::to_string(port());
        return WebClient(port(), WebClient::Kind::plain, address).ask(request(name)).status == 404;
    }
    std::string privateHost() const { return std::string(kPrivate) + ':' + std::to_string(port()); }

    /// What `openssl s_client` says when it connects by these arguments.
    QString sayOfOpenSSL(const QStringList& arguments) const {
        QProcess openssl;
        openssl.start(QStringLiteral("openssl"),
                      QStringList{QStringLiteral("s_client"), QStringLiteral("-connect"),
                                  QString::fromStdString(privateHost())} +
                          arguments);
        openssl.closeWriteChannel();
        EXPECT_TRUE(openssl.waitForFinished(60'000));
        return QString::fromUtf8(openssl.readAll()) +
               QString::fromUtf8(openssl.readAllStandardError());
    }
};

TEST_F(TransportTests, theNetworkIsServedByTLSAndThisMachineByHTTP) {
    start();
    const AccessStatus status = service_->status();
    EXPECT_EQ(status.addresses,
              (std::vector<std::string>{"https://" + privateHost(),
                                        "http://localhost:" + std::to_string(port())}));
    EXPECT_EQ(status.problem, "");
    EXPECT_THAT(status.fingerprint, ::testing::MatchesRegex("([0-9A-F]{2}:){31}[0-9A-F]{2}"));
    EXPECT_EQ(WebClient(port(), WebClient::Kind::tls, kPrivate).ask(request(privateHost())).status,
              404);
    EXPECT_EQ(WebClient(port()).ask(request(hostField())).status, 404);
}

TEST_F(TransportTests, theCookieOfTLSIsBoundToHostAndScheme) {
    start();
    const std::string body =
        R"({"label":"iPad","ticket":")" + service_->offerPairing().ticket + "\"}";
    WebClient client(port(), WebClient::Kind::tls, kPrivate);
    const WebAnswer answer = client.ask(
        "POST /api/pair HTTP/1.1\r\nHost: " + privateHost() + "\r\nOrigin: https://" +
        privateHost() + "\r\nX-Navrel: 1\r\nContent-Type: application/json\r\nContent-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body);
    ASSERT_EQ(answer.status, 204);
    const std::string field = answer.fields.at("set-cookie");
    EXPECT_THAT(field, ::testing::StartsWith("__Host-navrel-"));
    EXPECT_THAT(field, ::testing::EndsWith("; HttpOnly; SameSite=Strict; Secure"));
    // It opens nothing over plain HTTP, under its own name or the other.
    const std::string cookie = field.substr(0, field.find(';'));
    EXPECT_EQ(get("/api/state", cookie).status, 401);
    EXPECT_EQ(client
                  .ask("GET /api/state HTTP/1.1\r\nHost: " + privateHost() +
                       "\r\nCookie: " + cookie + "\r\n\r\n")
                  .status,
              200);
}

TEST_F(TransportTests, plainTextOnAPortOfTLSIsSentThere) {
    start();
    WebClient client(port(), WebClient::Kind::plain, kPrivate);
    const WebAnswer answer = client.ask("GET /api/state HTTP/1.1\r\nHost: " + privateHost() +
                                        "\r\nCookie: navrel-0=x\r\n\r\n");
    EXPECT_EQ(answer.status, 308);
    EXPECT_EQ(answer.fields.at("location"), "https://" + privateHost() + "/");
    EXPECT_TRUE(client.ends());
    WebClient foreign(port(), WebClient::Kind::plain, kPrivate);
    EXPECT_EQ(foreign.ask(request("attacker.example")).status, 421);
    WebClient garbage(port(), WebClient::Kind::plain, kPrivate);
    EXPECT_EQ(garbage.ask("SSH-2.0-x\r\n\r\n").status, 400);
}

TEST_F(TransportTests, noRouteAnswersInPlainTextOnAPortOfTLS) {
    start();
    const std::string cookie = pair();
    for (const std::string& route : everyRoute()) {
        WebClient client(port(), WebClient::Kind::plain, kPrivate);
        const WebAnswer answer =
            client.ask(route + " HTTP/1.1\r\nHost: " + privateHost() + "\r\nCookie: " + cookie +
                       "\r\nOrigin: https://" + privateHost() + "\r\nX-Navrel: 1\r\n\r\n");
        EXPECT_EQ(answer.status, 308) << route;
        EXPECT_EQ(answer.fields.at("location"), "https://" + privateHost() + "/") << route;
        EXPECT_EQ(answer.body, R"({"error":"This port speaks HTTPS."})") << route;
    }
    EXPECT_EQ(host.asked(), std::vector<std::string>{"paired iPad, Safari"});
}

TEST_F(TransportTests, aTLSHandshakeOnAPlainPortIsClosed) {
    start();
    WebClient client(port());
    client.send(std::string("\x16\x03\x01\x00\xa5\x01", 6));
    EXPECT_EQ(client.readToEnd(), "");
}

TEST_F(TransportTests, aHandshakeThatStopsIsClosedAfterTenSeconds) {
    start();
    WebClient client(port(), WebClient::Kind::plain, kPrivate);
    client.send(std::string("\x16\x03\x01\x00\xa5\x01", 6));
    WebClient other(port());
    ASSERT_EQ(other.ask(request(hostField())).status, 404); // behind it, in the order of arrival
    clock.advance(std::chrono::seconds(10));
    EXPECT_TRUE(client.ends());
}

TEST_F(TransportTests, peersOfOtherNetworksAreClosedUnread) {
    start();
    WebClient client(port(), WebClient::Kind::plain, kPrivate, kForeign);
    client.send(request(privateHost()));
    EXPECT_EQ(client.readToEnd(), "");
    // Nothing listens on the other address: 0.0.0.0 never is.
    EXPECT_FALSE(WebClient(port(), WebClient::Kind::plain, kForeign).isConnected());
}

TEST_F(TransportTests, thisMachineAloneIsServedWithoutTheNetwork) {
    settings.mode = AccessSettings::Mode::machine;
    start();
    EXPECT_FALSE(WebClient(port(), WebClient::Kind::plain, kPrivate).isConnected());
    EXPECT_EQ(service_->status().fingerprint, "");
}

TEST_F(TransportTests, bothLoopbackAddressesAreServed) {
    settings.mode = AccessSettings::Mode::machine;
    start();
    EXPECT_TRUE(isServedAt("127.0.0.1"));
    if (!WebClient(port(), WebClient::Kind::plain, "::1").isConnected() && !hasIPv6()) {
        GTEST_SKIP() << "needs IPv6";
    }
    EXPECT_TRUE(isServedAt("::1"));
}

TEST_F(TransportTests, plainHTTPInTheNetworkIsTheUsersChoice) {
    settings.plainHTTP = true;
    start();
    EXPECT_EQ(service_->status().addresses.front(), "http://" + privateHost());
    EXPECT_EQ(
        WebClient(port(), WebClient::Kind::plain, kPrivate).ask(request(privateHost())).status,
        404);
}

TEST_F(TransportTests, offMeansTheOwnersSocketAlone) {
    settings.mode = AccessSettings::Mode::off;
    start();
    ASSERT_TRUE(waitUntil([this] { return WebClient(settings.socketPath).isConnected(); }));
    EXPECT_EQ(asOwner("GET", "/api/state").status, 200);
    EXPECT_EQ(asOwner("POST", "/api/pairing").status, 409);
    EXPECT_TRUE(service_->status().addresses.empty());
}

/// Some browsers hold the end of a chunk back until the next arrives, which may be a heartbeat.
TEST_F(TransportTests, eventsAreNotSentInChunks) {
    settings.mode = AccessSettings::Mode::machine;
    start();
    WebClient stream(port());
    stream.send(getBytes("/api/events", pair()));
    const std::string head = stream.readUntil("\r\n\r\n");
    EXPECT_THAT(head, ::testing::StartsWith("HTTP/1.1 200 "));
    EXPECT_THAT(head, ::testing::HasSubstr("\r\nConnection: close\r\n"));
    EXPECT_THAT(head, ::testing::Not(::testing::HasSubstr("Transfer-Encoding")));
    EXPECT_EQ(stream.readUntil("\n").substr(0, 7), "event: ");
}

TEST_F(TransportTests, modesChangeWhileItRuns) {
    start();
    const std::string cookie = pair();
    WebClient stream = events(cookie);
    settings.mode = AccessSettings::Mode::off;
    service_->listen(settings);
    EXPECT_TRUE(stream.readToEnd().has_value());
    EXPECT_TRUE(waitUntil([this] { return service_->status().addresses.empty(); }));
    settings.mode = AccessSettings::Mode::machine;
    service_->listen(settings);
    EXPECT_TRUE(waitUntil([this] { return port() != 0; }));
    EXPECT_EQ(get("/api/state", cookie).status, 200);
}

TEST_F(TransportTests, theNextPortsAreTriedWhereOneIsTaken) {
    settings.mode = AccessSettings::Mode::machine;
    settings.port = 2346;
    start();
    ASSERT_EQ(port(), 2346);
    AccessSettings second = settings;
    second.folder = path("second");
    second.socketPath.clear();
    const WebService other(second, map.source(), host, world);
    EXPECT_TRUE(waitUntil([&] { return other.status().port == 2347; })) << other.status().port;
}

TEST_F(TransportTests, whereElevenPortsAreTakenItSaysSoAndTriesThemAgain) {
    settings.mode = AccessSettings::Mode::machine;
    settings.port = 2346;
    std::deque<Occupier> others;
    for (std::uint16_t port = 2346; port <= 2356; ++port) {
        others.emplace_back(port);
    }
    service_ = std::make_unique<WebService>(settings, map.source(), host, world);
    const std::string problem = "Port 2346 and the ten after it are taken.";
    EXPECT_TRUE(waitUntil([&] { return service_->status().problem == problem; }));
    EXPECT_EQ(port(), 0);
    const WebAnswer offer = asOwner("POST", "/api/pairing");
    EXPECT_EQ(offer.status, 409);
    EXPECT_EQ(valueAt(offer.body, "error"), problem);
    others.pop_back();
    EXPECT_TRUE(waitUntil([&] { return port() == 2356; })) << port();
    EXPECT_EQ(service_->status().problem, "");
}

TEST_F(TransportTests, addressesAreFollowedAsTheyComeAndGo) {
    const auto isThere = std::make_shared<std::atomic<bool>>(false); // the server outlives this
    world.privateAddresses = [isThere] {
        return *isThere ? std::vector<std::string>{kPrivate} : std::vector<std::string>();
    };
    start();
    EXPECT_EQ(service_->status().problem, "This machine has no address in a private network.");
    const std::string before = service_->status().fingerprint;
    *isThere = true;
    EXPECT_TRUE(waitUntil(
        [&] { return service_->status().addresses.front() == "https://" + privateHost(); }));
    EXPECT_EQ(service_->status().problem, "");
    EXPECT_NE(service_->status().fingerprint, before); // the certificate names the address, too
    EXPECT_EQ(WebClient(port(), WebClient::Kind::tls, kPrivate).ask(request(privateHost())).status,
              404);
    *isThere = false;
    EXPECT_TRUE(waitUntil([&] { return service_->status().addresses.size() == 1; }));
    EXPECT_FALSE(WebClient(port(), WebClient::Kind::plain, kPrivate).isConnected());
    EXPECT_TRUE(isServedAt("127.0.0.1"));
}

TEST_F(TransportTests, theUsersCertificateIsReadAgainWhenItChanges) {
    const auto now = std::chrono::system_clock::now();
    const auto keep = [this, now](const std::string& name) {
        const Certificate made = makeCertificate({name}, {kPrivate}, now);
        write("chain.pem", made.chain);
        write("key.pem", made.key);
        return fingerprintOf(made);
    };
    const std::string first = keep("one.example");
    settings.certificateFile = path("chain.pem");
    settings.keyFile = path("key.pem");
    settings.hosts = {"one.example"};
    start();
    EXPECT_EQ(service_->status().fingerprint, first);
    EXPECT_EQ(service_->status().addresses.front(),
              "https://one.example:" + std::to_string(port()));
    const std::string second = keep("two.example");
    EXPECT_TRUE(waitUntil([&] { return service_->status().fingerprint == second; }));
    write("key.pem", "damaged");
    EXPECT_TRUE(waitUntil([&] { return !service_->status().problem.empty(); }));
    EXPECT_EQ(WebClient(port(), WebClient::Kind::tls, kPrivate).ask(request(privateHost())).status,
              404);
}

TEST_F(TransportTests, versionsBefore12AndWeakSuitesAreRefused) {
    start();
    const auto isRefused = [this](const QStringList& arguments) {
        const QString said = sayOfOpenSSL(arguments);
        return !said.contains(QStringLiteral("Cipher is TLS_")) &&
               !said.contains(QStringLiteral("Cipher is ECDHE"));
    };
    const auto words = [](const char* text) {
        return QString::fromLatin1(text).split(QLatin1Char(' '));
    };
    EXPECT_FALSE(isRefused(words("-tls1_3")));
    EXPECT_FALSE(isRefused(words("-tls1_2")));
    for (const char* weak :
         {"-tls1_1 -cipher ALL:@SECLEVEL=0", "-tls1 -cipher ALL:@SECLEVEL=0",
          "-tls1_2 -cipher AES128-GCM-SHA256", "-tls1_2 -cipher AES128-SHA",
          "-tls1_2 -cipher ECDHE-ECDSA-AES128-SHA256", "-tls1_2 -cipher ECDHE-ECDSA-AES128-SHA",
          "-tls1_2 -cipher ECDHE-ECDSA-NULL-SHA:@SECLEVEL=0", "-tls1_2 -cipher aNULL:@SECLEVEL=0",
          "-tls1_2 -cipher DHE:@SECLEVEL=0", "-tls1_2 -cipher CBC:@SECLEVEL=0"}) {
        EXPECT_TRUE(isRefused(words(weak))) << weak << sayOfOpenSSL(words(weak)).toStdString();
    }
}

TEST_F(TransportTests, theOwnersSocketIsTheUsersAlone) {
    start();
    ASSERT_TRUE(waitUntil([this] { return WebClient(settings.socketPath).isConnected(); }));
    struct stat status = {};
    ASSERT_EQ(::stat(settings.socketPath.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
    stop();
    EXPECT_NE(::stat(settings.socketPath.c_str(), &status), 0);
}

/// Even where the system's rights let another user in.
TEST_F(TransportTests, anotherUserOfTheOwnersSocketIsClosedUnread) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs the superuser, to be another user";
    }
    start();
    ASSERT_TRUE(waitUntil([this] { return WebClient(settings.socketPath).isConnected(); }));
    ASSERT_EQ(::chmod(folder_.path().toStdString().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(settings.socketPath.c_str(), 0666), 0);
    const auto curlAs = [this](const QString& user) {
        QProcess curl;
        curl.start(QStringLiteral("setpriv"),
                   {QStringLiteral("--reuid=") + user, QStringLiteral("--clear-groups"),
                    QStringLiteral("curl"), QStringLiteral("--silent"),
                    QStringLiteral("--unix-socket"), QString::fromStdString(settings.socketPath),
                    QStringLiteral("http://localhost/api/state")});
        EXPECT_TRUE(curl.waitForFinished(60'000));
        return curl.readAllStandardOutput();
    };
    EXPECT_THAT(curlAs(QStringLiteral("0")).toStdString(),
                ::testing::HasSubstr(R"("program":"Navrel")"));
    EXPECT_EQ(curlAs(QStringLiteral("65534")), QByteArray());
}

TEST_F(TransportTests, theOwnerPairsListsAndForgets) {
    start();
    const WebAnswer offer = asOwner("POST", "/api/pairing");
    ASSERT_EQ(offer.status, 200);
    EXPECT_THAT(valueAt(offer.body, "url"),
                ::testing::StartsWith("https://" + privateHost() + "/#p="));
    const std::string cookie = pair();
    EXPECT_EQ(get("/api/state", cookie).status, 200);
    EXPECT_EQ(asOwner("PATCH", "/api/devices/1", R"({"readOnly":true})").status, 204);
    EXPECT_THAT(asOwner("GET", "/api/devices").body, ::testing::HasSubstr("\"readOnly\":true"));
    EXPECT_EQ(asOwner("DELETE", "/api/devices/1").status, 204);
    EXPECT_EQ(asOwner("DELETE", "/api/devices/1").status, 404);
    EXPECT_EQ(get("/api/state", cookie).status, 401);
}

TEST(CertificateTests, anOwnCertificateCoversItsNamesForTwoYears) {
    const auto now = std::chrono::system_clock::now();
    const std::vector<std::string> names = {"localhost", "desk"};
    const Certificate made = makeCertificate(names, {"10.0.0.1", "fd00::1", "fe80::1%eth0"}, now);
    EXPECT_TRUE(isUsable(made));
    EXPECT_TRUE(covers(made, names, {"10.0.0.1", "fd00::1", "fe80::1%eth0"}, now));
    EXPECT_FALSE(covers(made, names, {"10.0.0.2"}, now));
    EXPECT_FALSE(covers(made, {"other"}, {}, now));
    EXPECT_TRUE(covers(made, names, {}, now + std::chrono::hours(24 * 690)));
    EXPECT_FALSE(covers(made, names, {}, now + std::chrono::hours(24 * 710)));
    EXPECT_FALSE(isUsable({made.chain, makeCertificate(names, {}, now).key}));
    EXPECT_FALSE(isUsable({"", ""}));
}

TEST(CertificateTests, aKeptCertificateIsRenewedWhenAddressesChange) {
    const QTemporaryDir folder;
    const std::string path = folder.path().toStdString();
    const auto now = std::chrono::system_clock::now();
    const Certificate first = keptCertificate(path, {"localhost"}, {"10.0.0.1"}, now);
    EXPECT_EQ(fingerprintOf(keptCertificate(path, {"localhost"}, {"10.0.0.1"}, now)),
              fingerprintOf(first));
    EXPECT_NE(fingerprintOf(keptCertificate(path, {"localhost"}, {"10.0.0.2"}, now)),
              fingerprintOf(first));
    struct stat status = {};
    ASSERT_EQ(::stat((path + "/browser-certificate.pem").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(NetworkAddressTests, privateNetworksAreKnownByTheirEdges) {
    for (const char* address :
         {"10.0.0.0", "10.255.255.255", "172.16.0.0", "172.31.255.255", "192.168.0.1", "100.64.0.0",
          "100.127.255.255", "fc00::1", "fdff::1", "fe80::1", "fe80::1%eth0", "febf::1"}) {
        EXPECT_TRUE(isPrivateAddress(address)) << address;
    }
    for (const char* address : {"9.255.255.255",
                                "11.0.0.0",
                                "172.15.255.255",
                                "172.32.0.0",
                                "192.167.255.255",
                                "192.169.0.0",
                                "100.63.255.255",
                                "100.128.0.0",
                                "8.8.8.8",
                                "127.0.0.1",
                                "169.254.1.1",
                                "0.0.0.0",
                                "::1",
                                "::",
                                "2001:db8::1",
                                "fbff::1",
                                "fec0::1",
                                "::ffff:10.0.0.1",
                                "",
                                "localhost"}) {
        EXPECT_FALSE(isPrivateAddress(address)) << address;
    }
}

TEST(NetworkAddressTests, theDefaultRoutesAddressComesFirst) {
    EXPECT_EQ(likeliestFirst({"fe80::1%eth0", "fd00::1", "10.0.0.1", "192.168.1.5"}, "192.168.1.5"),
              (std::vector<std::string>{"192.168.1.5", "10.0.0.1", "fd00::1", "fe80::1%eth0"}));
}

} // namespace
} // namespace navrel
