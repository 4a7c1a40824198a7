#include "support/dispatch/ReadOperation.h"

#include "support/core/Assertion.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace navrel {

ReadOperation::ReadOperation(quint64 length, size_t largestPiece)
    : undelivered_(length), largestPiece_(largestPiece) {
    NAVREL_ASSERT(largestPiece > 0);
}

size_t ReadOperation::pieceLength() const {
    return static_cast<size_t>(std::min<quint64>(undelivered_, largestPiece_));
}

bool ReadOperation::take(ReadAhead& ahead) {
    if (filled_ == 0 && !isPieceComplete() && ahead.waiting().size() >= pieceLength()) {
        capacity_ = filled_ = pieceLength();
        small_ = ahead.takeShared(filled_);
        return true;
    }
    while (!ahead.isEmpty() && !isPieceComplete()) {
        const std::span<char> free = room();
        if (free.empty()) {
            return false;
        }
        const size_t count = std::min(free.size(), ahead.waiting().size());
        std::memcpy(free.data(), ahead.waiting().data(), count);
        ahead.taken(count);
        filled(count);
    }
    return true;
}

std::span<char> ReadOperation::room() {
    if (filled_ == capacity_ && !isPieceComplete() && !grow()) {
        return {};
    }
    char* buffer = small_ ? small_.get() : large_.get();
    return {buffer + filled_, capacity_ - filled_};
}

bool ReadOperation::grow() {
    if (!isLarge()) {
        capacity_ = pieceLength();
        small_ = std::make_shared_for_overwrite<char[]>(capacity_);
        return true;
    }
    const size_t wanted = std::min(pieceLength(), std::max(kFirstCapacity, 2 * capacity_));
    auto* grown = static_cast<char*>(std::realloc(large_.get(), wanted));
    if (grown == nullptr) {
        return false;
    }
    static_cast<void>(large_.release()); // realloc has taken it
    large_.reset(grown);
    capacity_ = wanted;
    return true;
}

DispatchData ReadOperation::takePiece() {
    const size_t size = std::exchange(filled_, 0);
    undelivered_ -= size;
    capacity_ = 0;
    if (small_) {
        const char* bytes = small_.get();
        return DispatchData::sharing({std::move(small_), bytes}, size);
    }
    return DispatchData::owning(std::move(large_), size);
}

} // namespace navrel
