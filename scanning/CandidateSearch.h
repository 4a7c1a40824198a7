#pragma once

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Finding the places of a text where a rule may match: by the first two or three bytes of each
/// rule, for many places at once.
namespace navrel {

/// Sixteen bytes that are compared side by side, without vector instructions. A comparison gives
/// bytes of all ones where it holds, of zeros elsewhere.
class PortableLanes {
public:
    static constexpr int kCount = 16;

    static PortableLanes load(const char* at) {
        PortableLanes lanes;
        std::memcpy(lanes.bytes_.data(), at, kCount);
        return lanes;
    }

    PortableLanes equal(char byte) const {
        return map([byte](uchar lane) { return lane == static_cast<uchar>(byte) ? 0xFFU : 0U; });
    }
    /// The lanes with only these bits, or with these bits set.
    PortableLanes masked(char bits) const {
        return map([bits](uchar lane) { return uint(lane) & static_cast<uchar>(bits); });
    }
    PortableLanes with(char bits) const {
        return map([bits](uchar lane) { return uint(lane) | static_cast<uchar>(bits); });
    }
    friend PortableLanes operator&(PortableLanes left, const PortableLanes& right) {
        for (std::size_t lane = 0; lane < kCount; ++lane) {
            left.bytes_[lane] &= right.bytes_[lane];
        }
        return left;
    }
    friend PortableLanes operator|(PortableLanes left, const PortableLanes& right) {
        for (std::size_t lane = 0; lane < kCount; ++lane) {
            left.bytes_[lane] |= right.bytes_[lane];
        }
        return left;
    }

    /// One bit a lane, the first lane's lowest: its highest bit.
    quint64 mask() const {
        quint64 bits = 0;
        for (std::size_t lane = 0; lane < kCount; ++lane) {
            bits |= quint64(bytes_[lane] >> 7U) << lane;
        }
        return bits;
    }

private:
    template <typename Function>
    PortableLanes map(Function function) const {
        PortableLanes result;
        for (std::size_t lane = 0; lane < kCount; ++lane) {
            result.bytes_[lane] = static_cast<uchar>(function(bytes_[lane]));
        }
        return result;
    }

    std::array<uchar, kCount> bytes_;
};

#if defined(__SSE2__)
/// The same with the vector instructions that every x86-64 processor has.
class SSE2Lanes {
public:
    static constexpr int kCount = 16;

    static SSE2Lanes load(const char* at) {
        return SSE2Lanes(_mm_loadu_si128(reinterpret_cast<const __m128i*>(at)));
    }

    SSE2Lanes equal(char byte) const {
        return SSE2Lanes(_mm_cmpeq_epi8(bytes_, _mm_set1_epi8(byte)));
    }
    SSE2Lanes masked(char bits) const {
        return SSE2Lanes(_mm_and_si128(bytes_, _mm_set1_epi8(bits)));
    }
    SSE2Lanes with(char bits) const { return SSE2Lanes(_mm_or_si128(bytes_, _mm_set1_epi8(bits))); }
    friend SSE2Lanes operator&(SSE2Lanes left, SSE2Lanes right) {
        return SSE2Lanes(_mm_and_si128(left.bytes_, right.bytes_));
    }
    friend SSE2Lanes operator|(SSE2Lanes left, SSE2Lanes right) {
        return SSE2Lanes(_mm_or_si128(left.bytes_, right.bytes_));
    }
    quint64 mask() const { return static_cast<quint64>(_mm_movemask_epi8(bytes_)); }

private:
    explicit SSE2Lanes(__m128i bytes) : bytes_(bytes) {}

    __m128i bytes_;
};
using BestLanes = SSE2Lanes;
#else
using BestLanes = PortableLanes;
#endif

/// The places in sources that are not Swift: a sign before a blank or an opening bracket (methods),
/// "@d" and, but for letter case, "@p" to "@w" (properties), "#p" to "#w" (marks and warnings), and
/// "//" (marks, warnings, shortcuts).
struct ObjectiveCCandidates {
    template <typename Lanes>
    static Lanes at(const char* text) {
        const Lanes here = Lanes::load(text);
        const Lanes next = Lanes::load(text + 1);
        const Lanes sign = (here.equal('-') | here.equal('+')) & next.masked('\xF7').equal(' ');
        const Lanes slashes = here.equal('/') & next.equal('/');
        const Lanes atSign = here.equal('@');
        const Lanes fromPToW = next.masked('\xD8').equal('P');
        const Lanes keyword = (atSign | here.equal('#')) & fromPToW;
        return sign | slashes | keyword | (atSign & next.with(' ').equal('d'));
    }
};

/// The same, and "@i" for the superclass.
struct HeaderCandidates {
    template <typename Lanes>
    static Lanes at(const char* text) {
        const Lanes interface =
            Lanes::load(text).equal('@') & Lanes::load(text + 1).with(' ').equal('i');
        return ObjectiveCCandidates::at<Lanes>(text) | interface;
    }
};

/// The places in Swift: "cla", "fun", "var" and "let" in any letter case, "#p" to "#w", "//".
struct SwiftCandidates {
    template <typename Lanes>
    static Lanes at(const char* text) {
        const Lanes here = Lanes::load(text);
        const Lanes next = Lanes::load(text + 1);
        const Lanes first = here.with(' ');
        const Lanes second = next.with(' ');
        const Lanes third = Lanes::load(text + 2).with(' ');
        const Lanes declaration = (first.equal('c') & second.equal('l') & third.equal('a')) |
                                  (first.equal('f') & second.equal('u') & third.equal('n')) |
                                  (first.equal('v') & second.equal('a') & third.equal('r')) |
                                  (first.equal('l') & second.equal('e') & third.equal('t'));
        const Lanes slashes = here.equal('/') & next.equal('/');
        const Lanes hash = here.equal('#') & next.masked('\xD8').equal('P');
        return declaration | slashes | hash;
    }
};

namespace candidatesearch {

/// One block is what one mask tells of.
inline constexpr qsizetype kBlockSize = 64;
/// The bytes behind a place that decide with it.
inline constexpr qsizetype kLookahead = 2;

/// One bit a place of the block that is a candidate; reads `kLookahead` bytes past it.
template <typename Candidates, typename Lanes>
quint64 maskOfBlock(const char* block) {
    const Lanes first = Candidates::template at<Lanes>(block);
    const Lanes second = Candidates::template at<Lanes>(block + Lanes::kCount);
    const Lanes third = Candidates::template at<Lanes>(block + 2 * Lanes::kCount);
    const Lanes fourth = Candidates::template at<Lanes>(block + 3 * Lanes::kCount);
    if ((first | second | third | fourth).mask() == 0) {
        return 0;
    }
    return first.mask() | second.mask() << 16U | third.mask() << 32U | fourth.mask() << 48U;
}

template <typename Visitor>
void visitBits(quint64 mask, const char* block, Visitor&& visit) {
    for (; mask != 0; mask &= mask - 1) {
        visit(block + std::countr_zero(mask));
    }
}

} // namespace candidatesearch

/// Calls `visit(const char* place)` for every candidate of the text, in order; for the last two
/// bytes of the text as if NUL bytes followed.
template <typename Candidates, typename Lanes = BestLanes, typename Visitor>
void visitCandidates(QByteArrayView text, Visitor&& visit) {
    using namespace candidatesearch;
    const char* at = text.begin();
    for (; text.end() - at >= kBlockSize + kLookahead; at += kBlockSize) {
        visitBits(maskOfBlock<Candidates, Lanes>(at), at, visit);
    }
    std::array<char, 2 * kBlockSize + kLookahead> rest{};
    std::copy(at, text.end(), rest.begin());
    for (qsizetype offset = 0; offset < text.end() - at; offset += kBlockSize) {
        visitBits(maskOfBlock<Candidates, Lanes>(rest.data() + offset), at + offset, visit);
    }
}

} // namespace navrel
