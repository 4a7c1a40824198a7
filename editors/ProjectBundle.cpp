#include "editors/ProjectBundle.h"

#include "support/text/FilePath.h"

#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace navrel {

namespace {

bool isFolder(const QByteArray& path) {
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The only bundle in a folder; empty where there is none, or more than one.
QByteArray onlyBundle(const QByteArray& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.constData()), &::closedir);
    QByteArray bundle;
    for (int seen = 0; entries != nullptr; ++seen) {
        const dirent* entry = ::readdir(entries.get());
        if (entry == nullptr) {
            break;
        }
        if (seen == kMaximumFolderEntries) {
            return {};
        }
        const QByteArray name = entry->d_name;
        const QByteArray path = appendingPathComponent(folder, name);
        if (pathExtension(name) != "xcodeproj" || !isFolder(path)) {
            continue;
        }
        if (!bundle.isEmpty()) {
            return {};
        }
        bundle = path;
    }
    return bundle;
}

} // namespace

QByteArray nearestProjectBundle(const QByteArray& filePath) {
    if (!filePath.startsWith('/') || !canNameAFile(filePath)) {
        return {};
    }
    QByteArray folder = filePath;
    do {
        folder = deletingLastPathComponent(folder);
        const QByteArray bundle = onlyBundle(folder);
        if (!bundle.isEmpty()) {
            return bundle;
        }
    } while (folder != "/");
    return {};
}

} // namespace navrel
