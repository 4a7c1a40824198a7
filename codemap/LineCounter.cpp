#include "codemap/LineCounter.h"

#include <algorithm>
#include <cstring>

namespace navrel {

namespace {

/// Sixteen bytes at a time, which the compiler turns into the processor's own instructions.
constexpr std::size_t kLanes = 16;
using Lanes [[gnu::vector_size(kLanes)]] = signed char;
/// Unsigned: a lane counts up to 255.
using Counts [[gnu::vector_size(kLanes)]] = unsigned char;

/// The sum of eight bytes.
std::uint32_t sumOfBytes(std::uint64_t bytes) {
    constexpr std::uint64_t kEverySecond = 0x00FF00FF00FF00FF;
    const std::uint64_t pairs = (bytes & kEverySecond) + ((bytes >> 8) & kEverySecond);
    return static_cast<std::uint32_t>((pairs * 0x0001000100010001) >> 48);
}

std::uint32_t sumOf(const Counts& counts) {
    std::uint64_t halves[2];
    std::memcpy(halves, &counts, sizeof halves);
    return sumOfBytes(halves[0]) + sumOfBytes(halves[1]);
}

/// A lane of a comparison's result is -1 where it holds a line feed.
Counts feedsIn(const char* bytes) {
    Lanes lanes;
    std::memcpy(&lanes, bytes, kLanes);
    return reinterpret_cast<Counts>(lanes == '\n');
}

/// The line feeds of at most 255 blocks, which is what a lane can count.
std::uint32_t countInBlocks(const char* bytes, std::size_t blocks) {
    Counts counts{};
    for (std::size_t block = 0; block < blocks; ++block) {
        counts -= feedsIn(bytes + block * kLanes);
    }
    return sumOf(counts);
}

/// The line feeds of less than a block.
std::uint32_t countInRest(std::string_view rest) {
    char padded[kLanes] = {};
    std::copy(rest.begin(), rest.end(), padded);
    return sumOf(Counts{} - feedsIn(padded));
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
    return text.empty() ? count : count + countInRest(text);
}

} // namespace navrel
