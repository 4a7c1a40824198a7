#pragma once

#include <QByteArrayView>

#include <algorithm>
#include <cstdint>

namespace navrel {

/// An input of a fuzzer whose bytes arrive in pieces: its first byte says in how many, the next
/// ones where they are cut, the rest is what arrives.
struct CutInput {
    /// The lower seven bits of the first byte are the number; the upper one is free for the fuzzer.
    static CutInput from(QByteArrayView bytes) {
        constexpr qsizetype mostPieces = 16;
        const qsizetype pieces = (static_cast<std::uint8_t>(bytes[0]) & 0x7F) % (mostPieces + 1);
        const qsizetype cuts = std::min(pieces, bytes.size() - 1);
        return {bytes.sliced(1, cuts), bytes.sliced(1 + cuts)};
    }

    QByteArrayView cuts;
    QByteArrayView bytes;
};

} // namespace navrel
