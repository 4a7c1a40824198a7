#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <memory>
#include <optional>

namespace navrel {

/// Sources are read into memory, so a file (or a line) of more bytes counts as unreadable. The
/// largest sources in real projects have some 3 MB.
inline constexpr qint64 kLargestSource = qint64(64) * 1024 * 1024;

/// Reads whole source files, one after another into the same memory. One thread at a time.
class SourceFileBuffer {
public:
    /// The bytes of a file, valid until the next call. Nil if `RegularFile::open` fails, or the
    /// file has more than `kLargestSource` bytes.
    std::optional<QByteArrayView> read(const QByteArray& path);

private:
    std::unique_ptr<char[]> memory_;
    qsizetype capacity_ = 0;
};

} // namespace navrel
