#include "project/ProjectFile.h"

#include "support/core/Error.h"
#include "support/files/FileDates.h"
#include "support/files/RegularFile.h"

#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

QByteArray bytesOf(std::string_view text) {
    return {text.data(), static_cast<qsizetype>(text.size())};
}

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
    return status.st_size <= kMaximumProjectFileSize
               ? std::nullopt
               : std::optional(QStringLiteral("it is larger than 64 MiB"));
}

} // namespace

ProjectFile::Identity::Identity(const struct stat& status)
    : device(status.st_dev), inode(status.st_ino), size(status.st_size),
      modified(modificationDateIn(status)), statusChanged(statusChangeDateIn(status)) {}

void ProjectFile::read(const QByteArray& path) {
    struct stat status = {};
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
    const qint64 start = currentFileDate();
    // Anything may have come in its place meanwhile.
    const std::optional<RegularFile> file = RegularFile::open(path_);
    const std::optional<struct stat> before = file ? file->status() : std::nullopt;
    if (!before) {
        return std::nullopt;
    }
    std::optional<QByteArray> bytes = file->readAll(kMaximumProjectFileSize);
    const std::optional<struct stat> after = file->status();
    const Identity identity(*before);
    if (bytes && isSettled(identity.statusChanged, start) && after &&
        identity == Identity(*after)) {
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
