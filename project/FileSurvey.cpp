#include "project/FileSurvey.h"

#include "project/FileTime.h"

#include <QByteArrayView>
#include <QHashFunctions>

#include <algorithm>
#include <climits>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {

namespace {

static_assert(kMaximumPathLength < PATH_MAX);

// What it takes to ask about the files in a folder; O_PATH, where there is one, needs no permission
// to list the folder, as `stat` by absolute path needs none.
#ifdef O_PATH
constexpr int kFolderFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
#else
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#endif

std::optional<qint64> dateAt(int folder, const char* path) {
    struct stat status;
    if (::fstatat(folder, path, &status, 0) != 0) {
        return std::nullopt;
    }
    return modificationDateIn(status);
}

/// Whether a path, as bytes, can name a file at all.
bool canNameAFile(const QByteArray& path) {
    return path.size() <= kMaximumPathLength && !path.contains('\0');
}

/// Where the last component of a path starts.
qsizetype nameStartOf(const QByteArray& path) {
    return path.lastIndexOf('/') + 1;
}

QByteArrayView folderOf(const QByteArray& path, qsizetype nameStart) {
    return QByteArrayView(path).first(nameStart);
}

/// A folder that is open for questions about what lies in it.
class OpenFolder {
public:
    explicit OpenFolder(QByteArrayView path)
        : descriptor_(path.isEmpty() ? AT_FDCWD
                                     : ::open(path.toByteArray().constData(), kFolderFlags)) {}
    ~OpenFolder() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    OpenFolder(const OpenFolder&) = delete;
    OpenFolder& operator=(const OpenFolder&) = delete;

    bool isOpen() const { return descriptor_ != -1; }
    std::optional<qint64> modificationDate(const char* name) const {
        return dateAt(descriptor_, *name != '\0' ? name : ".");
    }

private:
    int descriptor_;
};

} // namespace

std::optional<qint64> modificationDateOfFile(const QByteArray& path) {
    return canNameAFile(path) ? dateAt(AT_FDCWD, path.constData()) : std::nullopt;
}

std::optional<qint64> FileSurvey::modificationDate(const QByteArray& path) {
    const auto known = answers_.find(path);
    if (known != answers_.end()) {
        return known->second;
    }
    byFolder_.clear();
    return answers_.emplace(path, modificationDateOfFile(path)).first->second;
}

bool FileSurvey::stillHolds() {
    if (byFolder_.empty()) {
        sortByFolder();
    }
    for (std::size_t first = 0; first < byFolder_.size();) {
        const QByteArrayView folder = folderOf(*byFolder_[first].path, byFolder_[first].nameStart);
        std::size_t end = first + 1;
        while (end < byFolder_.size() &&
               folderOf(*byFolder_[end].path, byFolder_[end].nameStart) == folder) {
            ++end;
        }
        if (!folderStillHolds(first, end)) {
            return false;
        }
        first = end;
    }
    return true;
}

void FileSurvey::clear() {
    byFolder_.clear();
    answers_.clear();
}

std::size_t FileSurvey::Hash::operator()(const QByteArray& path) const {
    return qHash(path, QHashSeed::globalSeed());
}

void FileSurvey::sortByFolder() {
    byFolder_.reserve(answers_.size());
    for (const auto& [path, date] : answers_) {
        // What can name no file is missing for ever.
        if (canNameAFile(path)) {
            byFolder_.push_back({&path, nameStartOf(path), date});
        }
    }
    std::sort(byFolder_.begin(), byFolder_.end(), [](const Answer& left, const Answer& right) {
        const int order =
            folderOf(*left.path, left.nameStart).compare(folderOf(*right.path, right.nameStart));
        return order != 0 ? order < 0 : *left.path < *right.path;
    });
}

bool FileSurvey::folderStillHolds(std::size_t first, std::size_t end) const {
    // The kernel resolves the folder once instead of once a file; its answers are those of `stat`
    // by absolute path, which is asked where the folder cannot be opened.
    const OpenFolder folder(folderOf(*byFolder_[first].path, byFolder_[first].nameStart));
    for (std::size_t position = first; position < end; ++position) {
        const Answer& answer = byFolder_[position];
        const std::optional<qint64> date =
            folder.isOpen() ? folder.modificationDate(answer.path->constData() + answer.nameStart)
                            : modificationDateOfFile(*answer.path);
        if (date != answer.date) {
            return false;
        }
    }
    return true;
}

} // namespace navrel
