#include "scanning/SourceFileBuffer.h"

#include "support/files/RegularFile.h"

#include <algorithm>

namespace navrel {

namespace {

/// Holds nearly every source; larger memory is given back once a smaller file is read.
constexpr qsizetype kKeptCapacity = qsizetype(1) << 20;

} // namespace

std::optional<QByteArrayView> SourceFileBuffer::read(const QByteArray& path) {
    const std::optional<RegularFile> file = RegularFile::open(path);
    if (!file || file->size() > quint64(kLargestSource)) {
        return std::nullopt;
    }
    const qsizetype needed = std::max(kKeptCapacity, static_cast<qsizetype>(file->size()));
    if (capacity_ < needed || capacity_ > kKeptCapacity) {
        memory_ = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(needed));
        capacity_ = needed;
    }
    // A file that is being written may be cut meanwhile; what it gained is for the next scan.
    const qsizetype length = file->readAt(0, memory_.get(), static_cast<qsizetype>(file->size()));
    return QByteArrayView(memory_.get(), length);
}

} // namespace navrel
