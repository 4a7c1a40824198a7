// The server for browsers under a load tool (wrk): requests a second beside a minimal server that
// sends the same bytes, the slowest of a hundred answers while sixteen pages follow, and what a
// connection takes of memory.

#include "bench/Ratio.h"
#include "bench/web/MinimalServer.h"
#include "codemap/CodeMapSnapshot.h"
#include "web/WebService.h"

#include <QTemporaryDir>

#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <boost/json.hpp>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace navrel::bench {
namespace {

constexpr int kLoadRounds = 5;
constexpr int kStreams = 16;
constexpr int kIdleConnections = 512;
constexpr double kKiB = 1024;

class IdleHost final : public CompanionHost {
public:
    void openFile(const std::string&, std::uint32_t, std::uint32_t, Reply reply) override {
        reply({});
    }
    void goBack(Reply reply) override { reply({}); }
    void switchFileTypes(std::vector<FileTypeSwitch>, Reply reply) override { reply({}); }
    void devicePaired(const std::string&) override {}
    void accessChanged() override {}
};

CodeMapSnapshotPtr smallProject() {
    MapNode root;
    root.id = 1;
    root.kind = NodeKind::project;
    root.name = "App";
    CodeMapSnapshot::Content content;
    content.revision = 1;
    content.state = MapState::loaded;
    content.nodes = {std::make_shared<MapNode>(root)};
    return std::make_shared<CodeMapSnapshot>(std::move(content));
}

MapSource sourceOf(CodeMapSnapshotPtr snapshot) {
    return {[snapshot] { return snapshot; }, [](const CodeMap::Observer&) { return 1U; },
            [](std::uint64_t) {}, [](const CodeMapSnapshot&) { return boost::json::object(); }};
}

/// The bounds that keep one client from taking all would be what is measured.
WebWorld world() {
    WebWorld world;
    world.limits.connections = world.limits.connectionsPerAddress = 2 * kIdleConnections;
    world.limits.streamsPerDevice = kStreams;
    world.limits.requestsPerSecond = world.limits.requestBurst = 1e12;
    world.privateAddresses = [] { return std::vector<std::string>(); };
    return world;
}

int connectionTo(std::uint16_t port) {
    const int connection = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return ::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0
               ? connection
               : -1;
}

/// Sends a request; the first bytes of the answer, which are all of a short one.
std::string ask(int connection, const std::string& request) {
    std::array<char, 16384> bytes = {};
    ::send(connection, request.data(), request.size(), MSG_NOSIGNAL);
    const ssize_t size = ::recv(connection, bytes.data(), bytes.size(), 0);
    return size > 0 ? std::string(bytes.data(), static_cast<std::size_t>(size)) : std::string();
}

/// A server with a paired device.
class Subject {
public:
    Subject() {
        settings_.mode = AccessSettings::Mode::machine;
        settings_.port = 0;
        settings_.folder = folder_.path().toStdString();
        service_ =
            std::make_unique<WebService>(settings_, sourceOf(smallProject()), host_, world());
        while (service_->status().port == 0) {
            std::this_thread::yield();
        }
        const std::string body =
            R"({"label":"load","ticket":")" + service_->offerPairing().ticket + "\"}";
        const int connection = connectionTo(port());
        const std::string answer =
            ask(connection, "POST /api/pair HTTP/1.1\r\nHost: localhost\r\nOrigin: "
                            "http://localhost\r\nX-Navrel: 1\r\nContent-Type: "
                            "application/json\r\nContent-Length: " +
                                std::to_string(body.size()) + "\r\n\r\n" + body);
        ::close(connection);
        const auto start = answer.find("Set-Cookie: ");
        cookie_ = answer.substr(start + 12, answer.find(';', start) - start - 12);
    }

    std::uint16_t port() const { return service_->status().port; }
    const std::string& cookie() const { return cookie_; }
    std::string request(const std::string& target) const {
        return "GET " + target + " HTTP/1.1\r\nHost: localhost\r\nCookie: " + cookie_ + "\r\n\r\n";
    }
    WebService& service() { return *service_; }

private:
    QTemporaryDir folder_;
    IdleHost host_;
    AccessSettings settings_;
    std::unique_ptr<WebService> service_;
    std::string cookie_;
};

struct Load {
    double requestsPerSecond = 0;
    double slowestOfHundred = 0; ///< milliseconds
};

double milliseconds(const std::string& text) {
    const double value = std::strtod(text.c_str(), nullptr);
    return text.ends_with("us") ? value / 1000 : text.ends_with("ms") ? value : value * 1000;
}

/// Runs wrk for two seconds over so many connections.
Load load(std::uint16_t port, const std::string& cookie, int connections) {
    const std::string command = "wrk --latency -t1 -d2s -c" + std::to_string(connections) +
                                " -H 'Cookie: " + cookie +
                                "' http://127.0.0.1:" + std::to_string(port) + "/api/state";
    Load load;
    std::FILE* const wrk = ::popen(command.c_str(), "r");
    std::array<char, 256> line = {};
    std::array<char, 32> value = {};
    while (wrk != nullptr && std::fgets(line.data(), line.size(), wrk) != nullptr) {
        if (std::sscanf(line.data(), " 99%% %31s", value.data()) == 1) {
            load.slowestOfHundred = milliseconds(value.data());
        }
        std::sscanf(line.data(), "Requests/sec: %lf", &load.requestsPerSecond);
        if (std::string(line.data()).find("Non-2xx") != std::string::npos) {
            std::fprintf(stderr, "bench_web: %s", line.data());
        }
    }
    if (wrk == nullptr || ::pclose(wrk) != 0) {
        std::fprintf(stderr, "bench_web: wrk does not run\n");
    }
    return load;
}

void measureRate(Subject& subject) {
    const int connection = connectionTo(subject.port());
    const MinimalServer minimal(ask(connection, subject.request("/api/state")));
    ::close(connection);
    std::vector<double> floors;
    std::vector<double> rates;
    for (int round = 0; round < kLoadRounds; ++round) {
        floors.push_back(load(minimal.port(), "none=0", kStreams).requestsPerSecond);
        rates.push_back(load(subject.port(), subject.cookie(), kStreams).requestsPerSecond);
    }
    printRatio("web: requests a second", medianOf(rates), 5000, Bound::atLeast);
    printRatio("web: the same, as a share of a minimal server's",
               medianOf(rates) / medianOf(floors));
}

/// Sixteen pages that get an event each few milliseconds while others ask.
void measureBesideStreams(Subject& subject) {
    std::vector<std::thread> readers;
    std::vector<int> streams;
    for (int count = 0; count < kStreams; ++count) {
        streams.push_back(connectionTo(subject.port()));
        ask(streams.back(), subject.request("/api/events"));
        readers.emplace_back([stream = streams.back()] {
            std::array<char, 16384> bytes = {};
            while (::recv(stream, bytes.data(), bytes.size(), 0) > 0) {
            }
        });
    }
    std::atomic<bool> isOver = false;
    std::thread events([&] {
        for (int number = 0; !isOver; ++number) {
            ProgramState state;
            state.deviceReason = std::to_string(number);
            subject.service().publishState(state);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    });
    std::vector<double> slowest;
    for (int round = 0; round < kLoadRounds; ++round) {
        slowest.push_back(load(subject.port(), subject.cookie(), 4).slowestOfHundred);
    }
    isOver = true;
    events.join();
    for (const int stream : streams) {
        ::shutdown(stream, SHUT_RDWR);
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
    for (const int stream : streams) {
        ::close(stream);
    }
    printRatio("web: ms for 99 of 100 answers beside 16 streams", medianOf(slowest), 5);
}

double residentKiB() {
    std::ifstream file("/proc/self/statm");
    double whole = 0;
    double resident = 0;
    file >> whole >> resident;
    return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / kKiB;
}

void measureMemory(Subject& subject) {
    std::vector<int> connections;
    const auto open = [&](int count) {
        for (int index = 0; index < count; ++index) {
            connections.push_back(connectionTo(subject.port()));
            ask(connections.back(), subject.request("/api/state"));
        }
    };
    open(kStreams); // what the first ones take stays for others
    const double before = residentKiB();
    open(kIdleConnections);
    printRatio("web: KiB a connection", (residentKiB() - before) / kIdleConnections, 64);
    for (const int connection : connections) {
        ::close(connection);
    }
}

} // namespace
} // namespace navrel::bench

int main() {
    using namespace navrel::bench;

    Subject subject;
    measureMemory(subject);
    measureRate(subject);
    measureBesideStreams(subject);
    return 0;
}
