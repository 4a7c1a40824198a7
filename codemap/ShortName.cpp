#include "codemap/ShortName.h"

#include <algorithm>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace navrel {

namespace {

constexpr char32_t kNotASCII = 0x80;
/// As many bytes as one instruction compares where the processor has such.
constexpr std::size_t kBlockLength = 16;

/// A bit for each byte of a block that is equal to another byte.
std::uint64_t placesInBlock(const char* block, char wanted) {
#if defined(__SSE2__)
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted))));
#else
    std::uint64_t places = 0;
    for (std::size_t index = 0; index < kBlockLength; ++index) {
        places |= std::uint64_t{block[index] == wanted} << index;
    }
    return places;
#endif
}

} // namespace

bool ShortName::set(std::string_view name) {
    if (name.size() > kMaximumLength) {
        return false;
    }
    length_ = name.size();
    std::copy(name.begin(), name.end(), folded_.begin());
    char all = 0;
    // Whole blocks, without a branch: the compiler takes them many bytes at a time.
    for (std::size_t begin = 0; begin < length_; begin += kBlockLength) {
        for (std::size_t index = begin; index < begin + kBlockLength; ++index) {
            const char byte = folded_[index];
            const bool isCapital = byte >= 'A' && byte <= 'Z';
            all = static_cast<char>(all | (index < length_ ? byte : 0));
            folded_[index] = static_cast<char>(byte + (isCapital ? 'a' - 'A' : 0));
        }
    }
    return static_cast<unsigned char>(all) < kNotASCII;
}

std::uint64_t ShortName::placesOf(char32_t folded) const {
    if (folded >= kNotASCII || length_ == 0) {
        return 0;
    }
    std::uint64_t places = 0;
    for (std::size_t begin = 0; begin < length_; begin += kBlockLength) {
        places |= placesInBlock(folded_.data() + begin, static_cast<char>(folded)) << begin;
    }
    return places & (UINT64_MAX >> (kMaximumLength - length_));
}

} // namespace navrel
