#include "editors/neovim/NeovimServers.h"

#include "editors/FolderEntries.h"
#include "support/files/FileDates.h"

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <fnmatch.h>
#include <functional>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace navrel {

namespace {

struct Found {
    QByteArray path;
    qint64 modified;
};

/// What lies at a path, if it is of this kind and this user's.
bool lookUp(const QByteArray& path, mode_t kind, struct stat& status) {
    return ::lstat(path.constData(), &status) == 0 && (status.st_mode & S_IFMT) == kind &&
           status.st_uid == ::geteuid();
}

/// Looks for servers in folders, until the deadline.
class Search {
public:
    explicit Search(const QDeadlineTimer& deadline) : deadline_(deadline) {}

    /// Sockets whose name matches the pattern.
    void lookIn(const QByteArray& folder, const QByteArray& pattern) {
        forEachMatch(folder, pattern, [this](const QByteArray& path) {
            struct stat status = {};
            if (lookUp(path, S_IFSOCK, status)) {
                found_.push_back({path, modificationDateIn(status)});
            }
        });
    }

    /// The same in every folder of this user's whose name matches.
    void lookBelow(const QByteArray& folder, const QByteArray& folderPattern,
                   const QByteArray& pattern) {
        forEachMatch(folder, folderPattern, [&](const QByteArray& path) {
            struct stat status = {};
            if (lookUp(path, S_IFDIR, status)) {
                lookIn(path, pattern);
            }
        });
    }

    /// Whether nothing was left out for want of time.
    bool isWhole() const { return isWhole_; }

    /// What was found, the newest first.
    std::vector<Found> takeFound() {
        std::sort(found_.begin(), found_.end(), [](const Found& left, const Found& right) {
            return left.modified > right.modified;
        });
        return std::move(found_);
    }

private:
    /// Calls `visit` with the path of every entry of a folder whose name matches the pattern.
    void forEachMatch(const QByteArray& folder, const QByteArray& pattern,
                      const std::function<void(const QByteArray& path)>& visit) {
        const FolderEnd end = forEachFolderEntry(folder, deadline_, [&](const QByteArray& name) {
            if (::fnmatch(pattern.constData(), name.constData(), FNM_PERIOD) == 0) {
                visit(folder + '/' + name);
            }
            return true;
        });
        isWhole_ = isWhole_ && end != FolderEnd::Overdue;
    }

    const QDeadlineTimer deadline_;
    bool isWhole_ = true;
    std::vector<Found> found_;
};

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

std::vector<Found> foundSockets(const QDeadlineTimer& deadline, bool& isWhole) {
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray chosenTemporary = qgetenv("TMPDIR");
    const QByteArray temporary = chosenTemporary.isEmpty() ? "/tmp" : chosenTemporary;
    Search search(deadline);
    if (!runtime.isEmpty()) {
        search.lookIn(runtime, "nvim.*.0");
    }
    search.lookBelow(temporary + '/' + userFolderName(), "*", "nvim.*.0");
    search.lookBelow(temporary, "nvim*", "0");
    isWhole = search.isWhole();
    return search.takeFound();
}

} // namespace

QByteArrayList neovimServerSockets(const QDeadlineTimer& deadline, bool* isWhole) {
    QByteArrayList sockets;
    const auto add = [&sockets](const QByteArray& path) {
        // What does not begin with a slash is a network address, or nothing.
        if (path.startsWith('/') && !sockets.contains(path) &&
            sockets.size() < kMaximumNeovimSockets) {
            sockets.append(path);
        }
    };
    add(qgetenv("NVIM"));
    add(qgetenv("NVIM_LISTEN_ADDRESS"));
    bool sawAll = true;
    for (const Found& found : foundSockets(deadline, sawAll)) {
        add(found.path);
    }
    if (isWhole != nullptr) {
        *isWhole = sawAll;
    }
    return sockets;
}

} // namespace navrel
