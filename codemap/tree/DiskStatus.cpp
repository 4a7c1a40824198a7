#include "codemap/tree/DiskStatus.h"

#include "support/files/FileDates.h"
#include "support/files/RegularFile.h"

#include <sys/stat.h>
#include <time.h>

namespace navrel {

namespace {

DiskKind kindIn(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return DiskKind::file;
    }
    return S_ISDIR(status.st_mode) ? DiskKind::folder : DiskKind::special;
}

bool isSettled(const FileStamp& stamp) {
    struct timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    // The modification date does not count: it may be set to any time.
    return stamp.statusChanged < nanosecondsOf(now) - 2 * longestStepOfDate(stamp.statusChanged);
}

bool canBeAPath(const std::string& path) {
    return canNameAFile(QByteArrayView(path.data(), static_cast<qsizetype>(path.size())));
}

} // namespace

DiskStatus diskStatusOf(const std::string& path) {
    struct stat status = {};
    if (!canBeAPath(path) || ::lstat(path.c_str(), &status) != 0) {
        return {};
    }
    const bool isLink = S_ISLNK(status.st_mode);
    if (isLink && ::stat(path.c_str(), &status) != 0) {
        return {DiskKind::missing, {}, true, true};
    }
    const FileStamp stamp{status.st_dev, status.st_ino, status.st_size, modificationDateIn(status),
                          statusChangeDateIn(status)};
    return {kindIn(status), stamp, isSettled(stamp), isLink};
}

std::optional<QByteArray> contentOfFile(const std::string& path, std::size_t limit) {
    // The look before keeps special files closed; one that comes in between is opened without
    // waiting, and not read.
    if (diskStatusOf(path).kind != DiskKind::file) {
        return std::nullopt;
    }
    return RegularFile::content(QByteArray::fromStdString(path), static_cast<qsizetype>(limit));
}

} // namespace navrel
