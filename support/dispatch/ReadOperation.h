#pragma once

#include "support/dispatch/DispatchData.h"
#include "support/dispatch/ReadAhead.h"

#include <QtGlobal>

#include <cstddef>
#include <memory>
#include <span>

namespace navrel {

/// One read in progress: collects each of its pieces in one buffer. The buffer of a large piece
/// grows with what has arrived, since the announced length comes from the peer.
class ReadOperation {
public:
    /// In bytes: at most this much is allocated before anything has arrived. Beyond it a buffer at
    /// most doubles, so a peer that announces 4 GB and sends little takes no more than this.
    static constexpr size_t kFirstCapacity = size_t{1024} * 1024;

    /// For `length` bytes in pieces of `largestPiece` bytes, which must not be 0.
    ReadOperation(quint64 length, size_t largestPiece);

    /// Takes the missing bytes of the piece from the read-ahead buffer, as far as they are there:
    /// shares the buffer if it has the whole piece, copies otherwise. False if there is no memory.
    bool take(ReadAhead& ahead);

    /// Whether the piece should be read straight into its own buffer.
    bool isLarge() const { return pieceLength() > ReadAhead::kCapacity; }

    /// The buffer for the next bytes of the piece; `filled` must follow. Empty if there is no
    /// memory, or the piece is complete.
    std::span<char> room();
    void filled(size_t count) { filled_ += count; }

    bool isPieceComplete() const { return filled_ == pieceLength(); }
    bool isLastPiece() const { return undelivered_ <= largestPiece_; }
    size_t missing() const { return pieceLength() - filled_; }

    /// Returns what the current piece has so far, and begins the next piece.
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
