#include "scanning/search/ByteScan.h"

#include "scanning/search/Processor.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace navrel {

/// Adds up in bytes side by side, which compilers make vector instructions of.
quint32 countLineFeedsPortably(const char* at, const char* end) {
    constexpr std::ptrdiff_t kLanes = 32;
    constexpr int kMostRounds = 255; // what a byte can count
    quint32 count = 0;
    while (end - at >= kLanes) {
        std::array<uchar, kLanes> counts{};
        for (int round = 0; round < kMostRounds && end - at >= kLanes; ++round, at += kLanes) {
            for (std::size_t lane = 0; lane < kLanes; ++lane) {
                counts[lane] = static_cast<uchar>(counts[lane] + (at[lane] == '\n' ? 1 : 0));
            }
        }
        for (const uchar lane : counts) {
            count += lane;
        }
    }
    return count + static_cast<quint32>(std::count(at, end, '\n'));
}

qsizetype asciiPrefixLengthPortably(const char* text, qsizetype size) {
    qsizetype length = 0;
    for (; size - length >= qsizetype(sizeof(quint64)); length += qsizetype(sizeof(quint64))) {
        quint64 word = 0;
        std::memcpy(&word, text + length, sizeof word);
        if ((word & 0x8080808080808080U) != 0) {
            break;
        }
    }
    return length;
}

#if defined(NAVREL_X86_SEARCHES)

namespace {

const bool kHasAVX2 = hasAVX2();

} // namespace

quint32 countLineFeeds(const char* begin, const char* end) {
    return kHasAVX2 ? countLineFeedsWithAVX2(begin, end) : countLineFeedsPortably(begin, end);
}

qsizetype asciiPrefixLength(QByteArrayView text) {
    return kHasAVX2 ? asciiPrefixLengthWithAVX2(text.data(), text.size())
                    : asciiPrefixLengthPortably(text.data(), text.size());
}

#else

quint32 countLineFeeds(const char* begin, const char* end) {
    return countLineFeedsPortably(begin, end);
}

qsizetype asciiPrefixLength(QByteArrayView text) {
    return asciiPrefixLengthPortably(text.data(), text.size());
}

#endif

} // namespace navrel
