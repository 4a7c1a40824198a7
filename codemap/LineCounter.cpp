#include "codemap/LineCounter.h"

#include <algorithm>
#include <cstring>

namespace navrel {

namespace {

/// Sixteen bytes at a time, which the compiler turns into the processor's own instructions.
constexpr std::size_t kLanes = 16;
using Lanes [[gnu::vector_size(kLanes)]] = signed char;

std::uint32_t sumOf(const Lanes& counts) {
    std::uint32_t sum = 0;
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
        sum += static_cast<std::uint8_t>(counts[lane]);
    }
    return sum;
}

/// The line feeds of at most 255 blocks, which is what a lane can count.
std::uint32_t countInBlocks(const char* bytes, std::size_t blocks) {
    Lanes counts{};
    for (std::size_t block = 0; block < blocks; ++block) {
        Lanes lanes;
        std::memcpy(&lanes, bytes + block * kLanes, kLanes);
        counts -= lanes == '\n'; // a lane that holds one is -1 in the comparison's result
    }
    return sumOf(counts);
}

} // namespace

std::uint32_t countLineFeeds(std::string_view text) {
    constexpr std::size_t kMostBlocks = 255;
    std::uint32_t count = 0;
    while (text.size() >= kLanes) {
        const std::size_t blocks = std::min(text.size() / kLanes, kMostBlocks);
        count += countInBlocks(text.data(), blocks);
        text.remove_prefix(blocks * kLanes);
    }
    for (const char character : text) {
        count += character == '\n' ? 1 : 0;
    }
    return count;
}

} // namespace navrel
