#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QByteArray>

#include <optional>
#include <sys/stat.h>
#include <utility>

namespace navrel {

/// An open regular file, for reading; closed with the object. Pipes and devices, which could block,
/// are not opened. One thread at a time.
class RegularFile {
public:
    /// Nil if there is no such file, it may not be read, or it is not a regular file. A path with a
    /// NUL byte names no file.
    static std::optional<RegularFile> open(const QByteArray& path);

    /// Opens the file and returns `readAll`; nil if `open` fails.
    static std::optional<QByteArray> content(const QByteArray& path, qsizetype atMost);

    /// The length in bytes at the time of opening.
    quint64 size() const { return size_; }

    /// The file's state now; nil if the file system does not return it.
    std::optional<struct stat> status() const;

    /// All bytes of the file as it is now. Nil if they are more than `atMost`, or fewer than at the
    /// time of opening: the file was truncated, or could not be read to its end.
    std::optional<QByteArray> readAll(qsizetype atMost) const;

    /// Reads up to `length` bytes from an offset, and returns how many: fewer only at the end of
    /// the file. 0 also if the file cannot be read.
    qsizetype readAt(quint64 offset, char* buffer, qsizetype length) const;

private:
    RegularFile(OwnedDescriptor descriptor, quint64 size)
        : descriptor_(std::move(descriptor)), size_(size) {}

    OwnedDescriptor descriptor_;
    quint64 size_;
};

} // namespace navrel
