#include "project/FolderwiseSurvey.h"

#include "support/files/FileDates.h"
#include "support/files/OwnedDescriptor.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

// What it takes to ask about the files in a folder. O_PATH, where there is one, needs no permission
// to list the folder, as `stat` by absolute path needs none.
#ifdef O_PATH
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
#else
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

// Deeper folders are opened from the deepest of these.
constexpr std::size_t kMaximumOpenFolders = 32;

constexpr int kNoFolder = -1;

} // namespace

class FolderwiseSurvey::OpenFolders {
public:
    /// Opens a folder in place of those that do not lead to it, until the next one is entered;
    /// `kNoFolder` where it cannot be opened. Its path must outlive this.
    int enter(const QByteArray& path) {
        std::size_t kept = 0;
        while (kept < open_.size() && leadsTo(*open_[kept].path, path)) {
            ++kept;
        }
        open_.resize(std::min(kept, kMaximumOpenFolders - 1));
        if (path.isEmpty()) {
            return AT_FDCWD;
        }
        const qsizetype known = open_.empty() ? 0 : open_.back().path->size();
        const int base = open_.empty() ? AT_FDCWD : open_.back().descriptor.value();
        OwnedDescriptor folder(::openat(base, path.constData() + known, kFolderFlags));
        const int descriptor = folder.value();
        if (folder.isValid()) {
            open_.push_back({&path, std::move(folder)});
        }
        return descriptor;
    }

private:
    struct Open {
        const QByteArray* path;
        OwnedDescriptor descriptor;
    };

    /// Whether the rest of a path can be resolved from a folder above. A rest that begins with a
    /// slash, as in "/a//b/", cannot.
    static bool leadsTo(const QByteArray& folder, const QByteArray& path) {
        return path.startsWith(folder) && path.at(folder.size()) != '/';
    }

    std::vector<Open> open_;
};

FolderwiseSurvey::FolderwiseSurvey(const std::vector<Answer>& answers) {
    const auto nameStartOf = [](const QByteArray& path) { return path.lastIndexOf('/') + 1; };
    for (const Answer& answer : answers) {
        folderAt(answer.path.first(nameStartOf(answer.path)));
    }
    for (const auto& [path, date] : answers) {
        const auto itself = folderNumbers_.constFind(path + '/');
        if (itself != folderNumbers_.constEnd()) {
            folders_[*itself].ownDate = date;
            continue;
        }
        const qsizetype nameStart = nameStartOf(path);
        folderAt(path.first(nameStart)).files.push_back({names_.size(), date});
        names_.insert(names_.end(), path.begin() + nameStart, path.end());
        names_.push_back('\0');
    }
}

bool FolderwiseSurvey::stillHolds() const {
    OpenFolders open;
    return std::all_of(folders_.begin(), folders_.end(), [&](const Folder& folder) {
        return stillHolds(folder, open.enter(folder.path));
    });
}

FolderwiseSurvey::Folder& FolderwiseSurvey::folderAt(const QByteArray& path) {
    const auto known = folderNumbers_.constFind(path);
    if (known != folderNumbers_.constEnd()) {
        return folders_[*known];
    }
    folderNumbers_.insert(path, folders_.size());
    folders_.push_back({path, std::nullopt, {}});
    return folders_.back();
}

/// A folder that could not be opened is asked about by its path, as are its files.
bool FolderwiseSurvey::stillHolds(const Folder& folder, int descriptor) const {
    const bool isOpen = descriptor != kNoFolder;
    if (folder.ownDate) {
        const Date date = isOpen ? modificationDateOfOpenFile(descriptor)
                                 : modificationDateOfFile(folder.path.chopped(1));
        if (date != *folder.ownDate) {
            return false;
        }
    }
    return std::all_of(folder.files.begin(), folder.files.end(), [&](const File& file) {
        const char* name = &names_[file.name];
        const Date date = isOpen ? modificationDateAt(descriptor, *name != '\0' ? name : ".")
                                 : modificationDateOfFile(folder.path + name);
        return date == file.date;
    });
}

} // namespace navrel
