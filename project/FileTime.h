#pragma once

#include <QtGlobal>

#include <ctime>
#include <sys/stat.h>

namespace navrel {

/// A time as nanoseconds since 1970. Unsigned arithmetic: a date centuries ahead, which some file
/// systems can hold, wraps round, and equal dates stay equal.
inline qint64 nanosecondsOf(const struct timespec& time) {
    constexpr quint64 kNanosecondsPerSecond = 1'000'000'000;
    return static_cast<qint64>(static_cast<quint64>(time.tv_sec) * kNanosecondsPerSecond +
                               static_cast<quint64>(time.tv_nsec));
}

/// When a file's content was last changed, in nanoseconds since 1970.
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

} // namespace navrel
