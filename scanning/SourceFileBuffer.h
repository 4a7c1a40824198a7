#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <memory>
#include <optional>

namespace navrel {

/// What is read of a source is held in memory, so a file (or a line) of more bytes counts as
/// unreadable. The largest sources that people keep in their projects have some 3 MB.
inline constexpr qint64 kLargestSource = qint64(64) * 1024 * 1024;

/// Reads source files whole, one after the other into the same memory. One thread at a time.
class SourceFileBuffer {
public:
    /// The bytes of a file, valid until the next call. Nil where `RegularFile::open` gives no file,
    /// and for one of more than `kLargestSource` bytes.
    std::optional<QByteArrayView> read(const QByteArray& path);

private:
    std::unique_ptr<char[]> memory_;
    qsizetype capacity_ = 0;
};

} // namespace navrel
