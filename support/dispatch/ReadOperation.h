#pragma once

#include "support/dispatch/DispatchData.h"
#include "support/dispatch/ReadAhead.h"

#include <QtGlobal>

#include <cstddef>
#include <memory>
#include <span>

namespace navrel {

/// The bytes of one read on their way in: each piece is gathered into one buffer. A large one grows
/// with what has arrived, since the announced length is somebody else's word.
class ReadOperation {
public:
    /// Allocated at once where as much or more is announced; beyond it a buffer at most doubles,
    /// so a peer that announces 4 GB and delivers little holds this much.
    static constexpr size_t kFirstCapacity = size_t{1024} * 1024;

    /// Reads `length` bytes in pieces of `largestPiece`, which is not 0.
    ReadOperation(quint64 length, size_t largestPiece);

    /// Takes from the read-ahead buffer what the piece still lacks: a share in the buffer where
    /// that is the whole piece, else a copy. False when there is no memory.
    bool take(ReadAhead& ahead);

    /// Whether the piece is worth reading straight into its buffer, past the read-ahead buffer.
    bool isLarge() const { return pieceLength() > ReadAhead::kCapacity; }

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
    std::shared_ptr<char[]> small_; ///< the buffer of a piece that is not large, or the share
    MallocedBytes large_;           ///< the buffer of one that is
    size_t capacity_ = 0;
    size_t filled_ = 0;
};

} // namespace navrel
