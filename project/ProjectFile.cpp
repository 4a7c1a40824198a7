#include "project/ProjectFile.h"

#include "support/Error.h"
#include "support/files/FileDates.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

/// Whether a file cannot change any more without getting another date: its last change is older
/// than two steps of its date. That is the status change alone: the modification date may be set to
/// any time, in the future too.
bool isSettled(qint64 statusChanged, qint64 readingBegan) {
    return statusChanged < readingBegan - 2 * longestStepOfDate(statusChanged);
}

// The bytes read at a time beyond the announced size, to notice a file that is growing.
constexpr qsizetype kReadAhead = 4096;

qint64 now() {
    struct timespec time {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return nanosecondsOf(time);
}

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

bool isReadable(const struct stat& status) {
    return S_ISREG(status.st_mode) && status.st_size <= kMaximumProjectFileSize;
}

QByteArray bytesOf(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

/// Everything from a descriptor to its end; nil on failure and beyond the largest size.
std::optional<QByteArray> readToEnd(int descriptor, off_t announcedSize) {
    QByteArray bytes(static_cast<qsizetype>(announcedSize) + kReadAhead, Qt::Uninitialized);
    qsizetype size = 0;
    for (;;) {
        if (size == bytes.size()) {
            bytes.resize(2 * size);
        }
        const ssize_t count =
            ::read(descriptor, bytes.data() + size, static_cast<std::size_t>(bytes.size() - size));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 || size + count > kMaximumProjectFileSize) {
            return std::nullopt;
        }
        if (count == 0) {
            bytes.truncate(size);
            return bytes;
        }
        size += count;
    }
}

} // namespace

namespace {

/// Why a file cannot be a project file, as far as its status says; nil where it can.
std::optional<QString> obstacleTo(const QByteArray& path, struct stat& status) {
    if (path.contains('\0')) {
        return QStringLiteral("the path names no file");
    }
    if (::stat(path.constData(), &status) != 0) {
        return Error::posix(errno).localizedDescription();
    }
    if (!S_ISREG(status.st_mode)) {
        return QStringLiteral("it is not a regular file");
    }
    return isReadable(status) ? std::nullopt
                              : std::optional(QStringLiteral("it is larger than 64 MiB"));
}

} // namespace

ProjectFile::Identity::Identity(const struct stat& status)
    : device(status.st_dev), inode(status.st_ino), size(status.st_size),
      modified(modificationDateIn(status)), statusChanged(statusChangeDateIn(status)) {}

void ProjectFile::read(const QByteArray& path) {
    struct stat status {};
    const std::optional<QString> obstacle = obstacleTo(path, status);
    const bool isThere = !obstacle;
    const Identity identity = isThere ? Identity(status) : Identity();
    if (path == path_ && identity == identity_) {
        return;
    }
    const bool hadContent = static_cast<bool>(document_.root());
    path_ = path;
    identity_ = identity;
    const std::optional<QString> failure = take(isThere ? readContent() : std::nullopt);
    problem_ = obstacle ? obstacle : failure;
    if (hadContent || document_.root()) {
        ++generation_;
    }
}

std::optional<QByteArray> ProjectFile::readContent() {
    identity_.reset();
    const qint64 start = now();
    // Not blocking: a pipe may have come in its place meanwhile.
    const Descriptor file(::open(path_.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat before {};
    struct stat after {};
    if (file.get() < 0 || ::fstat(file.get(), &before) != 0 || !isReadable(before)) {
        return std::nullopt;
    }
    std::optional<QByteArray> bytes = readToEnd(file.get(), before.st_size);
    const Identity identity(before);
    if (bytes && isSettled(identity.statusChanged, start) && ::fstat(file.get(), &after) == 0 &&
        identity == Identity(after)) {
        identity_ = identity;
    }
    return bytes;
}

/// Takes what was read. Why it shows nothing, or nil.
std::optional<QString> ProjectFile::take(std::optional<QByteArray> bytes) {
    std::optional<Error> error;
    const bool isRead = bytes.has_value();
    const bool isList = document_.read(isRead ? *std::move(bytes) : QByteArray(), &error);
    const PropertyListDocument::Value root = document_.root();
    const PropertyListDocument::Value objects = root["objects"];
    hasObjects_ = objects.isDictionary();
    objects_.build(objects);
    rootID_.reset();
    if (root["rootObject"].isString()) {
        const PropertyListDocument::Value mainGroup =
            objects_.find(root["rootObject"].utf8())["mainGroup"];
        if (mainGroup.isString()) {
            rootID_ = bytesOf(mainGroup.utf8());
        }
    }
    if (!isRead) {
        return QStringLiteral("it cannot be read");
    }
    if (!isList) {
        return error ? error->localizedDescription() : QStringLiteral("it is no property list");
    }
    return rootID_ ? std::nullopt : std::optional(QStringLiteral("it names no main group"));
}

} // namespace navrel
