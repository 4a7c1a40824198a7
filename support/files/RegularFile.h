#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QByteArray>

#include <optional>
#include <sys/stat.h>
#include <utility>

namespace navrel {

/// An open regular file, for reading; closed with the object. Opening and reading never block, as
/// a pipe or a device in the place of a file would. Any one thread.
class RegularFile {
public:
    /// Nil where the path names no file, one that may not be read, or something that is no regular
    /// file. A path that holds a NUL byte names no file.
    static std::optional<RegularFile> open(const QByteArray& path);

    /// `readAll` of the file at a path; nil where `open` gives none.
    static std::optional<QByteArray> content(const QByteArray& path, qsizetype atMost);

    /// The length in bytes at the time of opening.
    quint64 size() const { return size_; }

    /// What the file system says of the file now; nil where it cannot.
    std::optional<struct stat> status() const;

    /// The bytes up to the end of the file, wherever that is by now. Nil where there are more than
    /// `atMost`, or fewer than at the time of opening: it was cut, or cannot be read to its end.
    std::optional<QByteArray> readAll(qsizetype atMost) const;

    /// Reads up to `length` bytes from an offset; fewer only at the end of the file. 0 also where
    /// the file cannot be read.
    qsizetype readAt(quint64 offset, char* buffer, qsizetype length) const;

private:
    RegularFile(OwnedDescriptor descriptor, quint64 size)
        : descriptor_(std::move(descriptor)), size_(size) {}

    OwnedDescriptor descriptor_;
    quint64 size_;
};

} // namespace navrel
