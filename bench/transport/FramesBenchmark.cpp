#include "bench/Ratio.h"
#include "bench/transport/FramePeers.h"
#include "support/core/Application.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <array>
#include <string>

namespace navrel::bench {
namespace {

struct Case {
    const char* name;
    Traffic traffic;
    double goal; ///< of the floor's rate
};

constexpr size_t kSmallPayload = 64;
constexpr size_t kLargePayload = 1024 * 1024;

const std::array<Case, 4> kCases = {
    Case{"round trips, TCP", {Transport::tcp, 4000, kSmallPayload, false}, 0.95},
    Case{"round trips, Unix socket", {Transport::unixSocket, 4000, kSmallPayload, false}, 0.95},
    Case{"1 MiB stream, TCP", {Transport::tcp, 50, kLargePayload, true}, 0.95},
    Case{"1 MiB stream, Unix socket", {Transport::unixSocket, 50, kLargePayload, true}, 0.9},
};

using Server = void (*)(const Traffic&);

void registerBenchmark(const std::string& name, const Traffic& traffic, Server serve) {
    benchmark::RegisterBenchmark(name.c_str(), [&traffic, serve](benchmark::State& state) {
        for ([[maybe_unused]] const auto round : state) {
            serve(traffic);
        }
        state.SetItemsProcessed(state.iterations() * traffic.frames);
    })->UseRealTime();
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel;
    using namespace navrel::bench;

    pinToOneCore();
    const auto application = makeApplication<QCoreApplication>(argc, argv);
    benchmark::Initialize(&argc, argv);
    for (const Case& each : kCases) {
        registerBenchmark(std::string("floor/") + each.name, each.traffic, serveWithSystemCalls);
        registerBenchmark(std::string("channel/") + each.name, each.traffic, serveWithChannel);
    }
    benchmark::RunSpecifiedBenchmarks();
    for (const Case& each : kCases) {
        const double ofTime = timeRatio([&] { serveWithSystemCalls(each.traffic); },
                                        [&] { serveWithChannel(each.traffic); });
        printRatio(std::string("D ") + each.name + ", of the rate", 1 / ofTime, each.goal,
                   Bound::atLeast);
    }
    return 0;
}
