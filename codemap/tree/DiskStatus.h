#pragma once

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>

namespace navrel {

enum class DiskKind : std::uint8_t { missing, file, folder, special };

/// What tells one content of a file from another without reading it, as far as that is possible.
struct FileStamp {
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modified = 0; ///< in nanoseconds since 1970
    std::int64_t statusChanged = 0;

    bool operator==(const FileStamp& other) const = default;
};

/// What lies at a path, symbolic links followed.
struct DiskStatus {
    DiskKind kind = DiskKind::missing;
    FileStamp stamp;
    /// Whether a later change will show in the stamp: the last one was older than two steps of its
    /// date.
    bool isSettled = false;
    /// Whether the path is a symbolic link: what it leads to changes elsewhere.
    bool isLink = false;
};

DiskStatus diskStatusOf(const std::string& path);

/// A whole file. Nothing for what is no regular file, is larger than `limit` or cannot be read. A
/// special file is never opened, and nothing is waited for.
std::optional<QByteArray> contentOfFile(const std::string& path, std::size_t limit);

} // namespace navrel
