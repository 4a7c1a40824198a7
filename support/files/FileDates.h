#pragma once

#include "support/text/FilePath.h"

#include <QByteArray>

#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace navrel {

/// A time as nanoseconds since 1970. Unsigned arithmetic: a date centuries ahead, which some file
/// systems can hold, wraps round, and equal dates stay equal.
inline qint64 nanosecondsOf(const struct timespec& time) {
    constexpr quint64 kNanosecondsPerSecond = 1'000'000'000;
    return static_cast<qint64>(static_cast<quint64>(time.tv_sec) * kNanosecondsPerSecond +
                               static_cast<quint64>(time.tv_nsec));
}

/// When a file's content was last modified, in nanoseconds since 1970.
inline qint64 modificationDateIn(const struct stat& status) {
#ifdef __APPLE__
    return nanosecondsOf(status.st_mtimespec);
#else
    return nanosecondsOf(status.st_mtim);
#endif
}

/// When a file's content, owner, mode or names were last changed.
inline qint64 statusChangeDateIn(const struct stat& status) {
#ifdef __APPLE__
    return nanosecondsOf(status.st_ctimespec);
#else
    return nanosecondsOf(status.st_ctim);
#endif
}

/// The longest step in which dates like this one advance: within it, a file can change again and
/// keep its date. That is the kernel's clock tick; but a date of whole seconds may come from a file
/// system that keeps no parts of them, and the coarsest keeps every other second.
constexpr qint64 longestStepOfDate(qint64 nanoseconds) {
    constexpr qint64 kLongestClockTick = 10'000'000;
    constexpr qint64 kSecond = 1'000'000'000;
    return nanoseconds % kSecond == 0 ? 2 * kSecond : kLongestClockTick;
}

/// The time of day in nanoseconds since 1970, as file systems give it to what changes now.
inline qint64 currentFileDate() {
    struct timespec time = {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return nanosecondsOf(time);
}

/// Whether a file or folder that was read from `readingBegan` on cannot have changed since without
/// getting another date: its last change is older than two steps of its date. That is the status
/// change alone: the modification date may be set to any time, in the future too.
constexpr bool isSettled(qint64 statusChanged, qint64 readingBegan) {
    return statusChanged < readingBegan - 2 * longestStepOfDate(statusChanged);
}

/// Modification date of a file by its path from an open folder, symbolic links followed; nil when
/// nothing is there.
inline std::optional<qint64> modificationDateAt(int folder, const char* path) {
    struct stat status;
    if (::fstatat(folder, path, &status, 0) != 0) {
        return std::nullopt;
    }
    return modificationDateIn(status);
}

/// Modification date of what lies at a path, symbolic links followed; nil when nothing is there.
inline std::optional<qint64> modificationDateOfFile(const QByteArray& path) {
    return canNameAFile(path) ? modificationDateAt(AT_FDCWD, path.constData()) : std::nullopt;
}

/// Modification date of an open file or folder.
inline std::optional<qint64> modificationDateOfOpenFile(int descriptor) {
    struct stat status;
    if (::fstat(descriptor, &status) != 0) {
        return std::nullopt;
    }
    return modificationDateIn(status);
}

} // namespace navrel
