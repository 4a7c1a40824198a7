#include "support/dispatch/ReadOperation.h"

#include "support/Assertion.h"

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

std::optional<size_t> ReadOperation::take(std::span<const char> bytes) {
    size_t taken = 0;
    while (taken < bytes.size() && !isPieceComplete()) {
        const std::span<char> free = room();
        if (free.empty()) {
            return std::nullopt;
        }
        const size_t count = std::min(free.size(), bytes.size() - taken);
        std::memcpy(free.data(), bytes.data() + taken, count);
        filled(count);
        taken += count;
    }
    return taken;
}

std::span<char> ReadOperation::room() {
    if (filled_ == capacity_ && !isPieceComplete() && !grow()) {
        return {};
    }
    return {bytes_.get() + filled_, capacity_ - filled_};
}

bool ReadOperation::grow() {
    const size_t wanted = std::min(pieceLength(), std::max(kFirstCapacity, 2 * capacity_));
    auto* grown = static_cast<char*>(std::realloc(bytes_.get(), wanted));
    if (grown == nullptr) {
        return false;
    }
    static_cast<void>(bytes_.release()); // realloc has taken it
    bytes_.reset(grown);
    capacity_ = wanted;
    return true;
}

DispatchData ReadOperation::takePiece() {
    undelivered_ -= filled_;
    capacity_ = 0;
    return DispatchData::owning(std::move(bytes_), std::exchange(filled_, 0));
}

} // namespace navrel
