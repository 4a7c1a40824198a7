#include "editors/ProjectBundle.h"

#include "editors/FolderEntries.h"
#include "support/text/FilePath.h"

#include <sys/stat.h>

namespace navrel {

namespace {

bool isFolder(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The only bundle in a folder; empty where there is none, or more than one. Nil when the deadline
/// passed first.
std::optional<QByteArray> onlyBundle(const QByteArray& folder, const QDeadlineTimer& deadline) {
    QByteArray bundle;
    const FolderEnd end = forEachFolderEntry(folder, deadline, [&](const QByteArray& name) {
        const QByteArray path = appendingPathComponent(folder, name);
        if (pathExtension(name) != "xcodeproj" || !isFolder(path)) {
            return true;
        }
        const bool isFirst = bundle.isEmpty();
        bundle = path;
        return isFirst;
    });
    if (end == FolderEnd::Overdue) {
        return std::nullopt;
    }
    return end == FolderEnd::Reached ? bundle : QByteArray();
}

} // namespace

std::optional<QByteArray> nearestProjectBundle(const QByteArray& filePath,
                                               const QDeadlineTimer& deadline) {
    if (!filePath.startsWith('/') || !canNameAFile(filePath)) {
        return QByteArray();
    }
    QByteArray folder = filePath;
    do {
        folder = deletingLastPathComponent(folder);
        const auto bundle = onlyBundle(folder, deadline);
        if (!bundle || !bundle->isEmpty()) {
            return bundle;
        }
    } while (folder != "/");
    return QByteArray();
}

} // namespace navrel
