#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

namespace navrel {

/// A list that grows in chunks: records never move, and `clear` keeps memory for the next use. It
/// takes up to `mostRecords` records; further ones are ignored.
template <typename Record, std::size_t mostRecords>
class ChunkedList {
public:
    static constexpr std::size_t kChunkSize = 4096;

    std::size_t size() const {
        return std::min(usedChunks_ * kChunkSize, mostRecords) -
               static_cast<std::size_t>(end_ - next_);
    }
    /// The number of records that fit into the memory it has.
    std::size_t capacity() const { return chunks_.size() * kChunkSize; }

    void append(const Record& record) {
        if (next_ == end_ && !beginChunk()) {
            return;
        }
        *next_++ = record;
    }

    template <typename Visitor>
    void visitAll(Visitor visit) const {
        std::size_t left = size();
        for (std::size_t chunk = 0; chunk < usedChunks_; ++chunk) {
            const std::size_t count = std::min(left, kChunkSize);
            std::for_each_n(chunks_[chunk].get(), count, visit);
            left -= count;
        }
    }

    /// Removes all records. Keeps memory for at most `mostKept` of the next ones.
    void clear(std::size_t mostKept) {
        chunks_.resize(std::min(chunks_.size(), mostKept / kChunkSize));
        usedChunks_ = 0;
        next_ = nullptr;
        end_ = nullptr;
    }

private:
    /// False if the list is full.
    bool beginChunk() {
        const std::size_t room = mostRecords - std::min(usedChunks_ * kChunkSize, mostRecords);
        if (room == 0) {
            return false;
        }
        if (usedChunks_ == chunks_.size()) {
            chunks_.push_back(std::make_unique_for_overwrite<Record[]>(kChunkSize));
        }
        next_ = chunks_[usedChunks_++].get();
        end_ = next_ + std::min(room, kChunkSize);
        return true;
    }

    std::vector<std::unique_ptr<Record[]>> chunks_;
    std::size_t usedChunks_ = 0;
    Record* next_ = nullptr; ///< in the last chunk that is used
    Record* end_ = nullptr;  ///< of that chunk
};

} // namespace navrel
