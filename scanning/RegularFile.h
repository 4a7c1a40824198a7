#pragma once

#include <QByteArray>

#include <optional>

namespace navrel {

/// What is read of a source is held in memory, so a file (or a line) of more bytes counts as
/// unreadable. The largest sources that people keep in their projects have some 3 MB.
inline constexpr qint64 kLargestSource = qint64(64) * 1024 * 1024;

/// An open regular file, for reading; closed with the object. Opening and reading never block, as
/// a pipe or a device with the name of a source would. Any one thread.
class RegularFile {
public:
    /// Nil where the path names no file, one that may not be read, or something that is no regular
    /// file. A path that holds a NUL byte names no file.
    static std::optional<RegularFile> open(const QByteArray& path);

    RegularFile(RegularFile&& other) noexcept;
    RegularFile& operator=(RegularFile&&) = delete;
    ~RegularFile();

    /// The length in bytes at the time of opening.
    quint64 size() const { return size_; }

    /// Reads up to `length` bytes from an offset; fewer only at the end of the file. 0 also where
    /// the file cannot be read.
    qsizetype readAt(quint64 offset, char* buffer, qsizetype length) const;

private:
    RegularFile(int descriptor, quint64 size) : descriptor_(descriptor), size_(size) {}

    int descriptor_;
    quint64 size_;
};

} // namespace navrel
