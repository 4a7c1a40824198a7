#pragma once

#include "support/dispatch/DispatchData.h"

#include <QtGlobal>

#include <cstddef>
#include <span>

namespace navrel {

/// The bytes of one read on their way in: gathered into one buffer a piece, which grows with what
/// has arrived, since the announced length is somebody else's word.
class ReadOperation {
public:
    /// Allocated at once for whoever announces as much or more; beyond it a buffer at most doubles,
    /// so a peer that announces 4 GB and delivers little holds this much.
    static constexpr size_t kFirstCapacity = 1024 * 1024;

    /// Reads `length` bytes in pieces of `largestPiece`, which is not 0.
    ReadOperation(quint64 length, size_t largestPiece);

    /// Copies as much of the bytes as the piece still lacks, and returns how much that is. Nothing
    /// when there is no memory.
    std::optional<size_t> take(std::span<const char> bytes);

    /// Where the next bytes of the piece go, to be followed by `filled`; empty when there is no
    /// memory, or the piece lacks nothing.
    std::span<char> room();
    void filled(size_t count) { filled_ += count; }

    bool isPieceComplete() const { return filled_ == pieceLength(); }
    bool isLastPiece() const { return undelivered_ <= largestPiece_; }
    size_t missing() const { return pieceLength() - filled_; }

    /// What the current piece has so far; the next piece begins.
    DispatchData takePiece();

private:
    size_t pieceLength() const;
    bool grow();

    quint64 undelivered_; ///< bytes of this piece and the following ones
    size_t largestPiece_;
    MallocedBytes bytes_;
    size_t capacity_ = 0;
    size_t filled_ = 0;
};

} // namespace navrel
