#include "editors/NeovimServers.h"

#include "project/FileDates.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <dirent.h>
#include <fnmatch.h>
#include <functional>
#include <memory>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace navrel {

namespace {

/// Temporary folders hold hundreds of entries; one that somebody has flooded is not worth the time.
constexpr int kMaximumFolderEntries = 20'000;

struct Found {
    QByteArray path;
    qint64 modified;
};

/// What lies at a path, if it is of this kind and this user's.
bool lookUp(const QByteArray& path, mode_t kind, struct stat& status) {
    return ::lstat(path.constData(), &status) == 0 && (status.st_mode & S_IFMT) == kind &&
           status.st_uid == ::geteuid();
}

/// Calls `visit` with the path of every entry of a folder whose name matches the pattern.
void forEachMatch(const QByteArray& folder, const QByteArray& pattern,
                  const std::function<void(const QByteArray& path)>& visit) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.constData()), &::closedir);
    if (entries == nullptr) {
        return;
    }
    const dirent* entry = nullptr;
    for (int seen = 0; seen < kMaximumFolderEntries; ++seen) {
        entry = ::readdir(entries.get());
        if (entry == nullptr) {
            return;
        }
        if (::fnmatch(pattern.constData(), entry->d_name, FNM_PERIOD) == 0) {
            visit(folder + '/' + entry->d_name);
        }
    }
}

void collectSockets(const QByteArray& folder, const QByteArray& pattern,
                    std::vector<Found>& found) {
    forEachMatch(folder, pattern, [&found](const QByteArray& path) {
        struct stat status = {};
        if (lookUp(path, S_IFSOCK, status)) {
            found.push_back({path, modificationDateIn(status)});
        }
    });
}

/// The same in every folder of this user's whose name matches.
void collectSocketsBelow(const QByteArray& folder, const QByteArray& folderPattern,
                         const QByteArray& pattern, std::vector<Found>& found) {
    forEachMatch(folder, folderPattern, [&](const QByteArray& path) {
        struct stat status = {};
        if (lookUp(path, S_IFDIR, status)) {
            collectSockets(path, pattern, found);
        }
    });
}

/// The folder that Neovim names after the user; nothing matches where the user has no name.
QByteArray userFolderName() {
    std::array<char, 4096> buffer;
    passwd entry = {};
    passwd* result = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, buffer.data(), buffer.size(), &result) != 0 ||
        result == nullptr) {
        return "nvim.";
    }
    return QByteArray("nvim.") + entry.pw_name;
}

std::vector<Found> foundSockets() {
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray chosenTemporary = qgetenv("TMPDIR");
    const QByteArray temporary = chosenTemporary.isEmpty() ? "/tmp" : chosenTemporary;
    std::vector<Found> found;
    if (!runtime.isEmpty()) {
        collectSockets(runtime, "nvim.*.0", found);
    }
    collectSocketsBelow(temporary, "nvim*", "0", found);
    collectSocketsBelow(temporary + '/' + userFolderName(), "*", "nvim.*.0", found);
    std::sort(found.begin(), found.end(),
              [](const Found& left, const Found& right) { return left.modified > right.modified; });
    return found;
}

} // namespace

QByteArrayList neovimServerSockets() {
    QByteArrayList sockets;
    const auto add = [&sockets](const QByteArray& path) {
        // What does not begin with a slash is a network address, or nothing.
        if (path.startsWith('/') && !sockets.contains(path) &&
            sockets.size() < kMaximumNeovimServers) {
            sockets.append(path);
        }
    };
    add(qgetenv("NVIM"));
    add(qgetenv("NVIM_LISTEN_ADDRESS"));
    for (const Found& found : foundSockets()) {
        add(found.path);
    }
    return sockets;
}

} // namespace navrel
