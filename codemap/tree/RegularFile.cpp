#include "codemap/tree/RegularFile.h"

#include "project/FileDates.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace navrel {

namespace {

// Read beyond the announced size, to notice a file that is growing.
constexpr std::size_t kReadAhead = 1;

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return descriptor_; }

private:
    int descriptor_;
};

bool isReadable(const struct stat& status, std::size_t limit) {
    return S_ISREG(status.st_mode) && static_cast<std::uint64_t>(status.st_size) <= limit;
}

DiskKind kindIn(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return DiskKind::file;
    }
    return S_ISDIR(status.st_mode) ? DiskKind::folder : DiskKind::special;
}

std::optional<std::string> readToEnd(int descriptor, std::size_t announced, std::size_t limit) {
    std::string bytes(announced + kReadAhead, '\0');
    std::size_t size = 0;
    for (;;) {
        if (size == bytes.size()) {
            bytes.resize(2 * size);
        }
        const ssize_t count = ::read(descriptor, bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || size + static_cast<std::size_t>(count) > limit) {
            return std::nullopt;
        }
        if (count == 0) {
            bytes.resize(size);
            return bytes;
        }
        size += static_cast<std::size_t>(count);
    }
}

bool isSettled(const FileStamp& stamp) {
    struct timespec now {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    // The modification date does not count: it may be set to any time.
    return stamp.statusChanged < nanosecondsOf(now) - 2 * longestStepOfDate(stamp.statusChanged);
}

bool canBeAPath(const std::string& path) {
    return canNameAFile(QByteArrayView(path.data(), static_cast<qsizetype>(path.size())));
}

} // namespace

DiskStatus diskStatusOf(const std::string& path) {
    struct stat status {};
    if (!canBeAPath(path) || ::stat(path.c_str(), &status) != 0) {
        return {};
    }
    const FileStamp stamp{status.st_dev, status.st_ino, status.st_size, modificationDateIn(status),
                          statusChangeDateIn(status)};
    return {kindIn(status), stamp, isSettled(stamp)};
}

std::optional<std::string> readRegularFile(const std::string& path, std::size_t limit) {
    struct stat status {};
    if (!canBeAPath(path) || ::stat(path.c_str(), &status) != 0 || !isReadable(status, limit)) {
        return std::nullopt;
    }
    // Not blocking: a pipe may have come in its place meanwhile.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !isReadable(status, limit)) {
        return std::nullopt;
    }
    return readToEnd(file.get(), static_cast<std::size_t>(status.st_size), limit);
}

} // namespace navrel
