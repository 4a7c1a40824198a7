#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <utility>

namespace navrel::bench {

/// A benchmark that does a job in each round. It shows the rate, too, of a job on so many bytes.
template <typename Job>
void registerBenchmark(const std::string& name, std::int64_t bytesOfJob, Job job) {
    benchmark::RegisterBenchmark(name.c_str(), [job, bytesOfJob](benchmark::State& state) {
        for ([[maybe_unused]] const auto round : state) {
            job();
        }
        if (bytesOfJob > 0) {
            state.SetBytesProcessed(state.iterations() * bytesOfJob);
        }
    })->Unit(benchmark::kMillisecond);
}

template <typename Job>
void registerBenchmark(const std::string& name, Job job) {
    registerBenchmark(name, 0, std::move(job));
}

} // namespace navrel::bench
