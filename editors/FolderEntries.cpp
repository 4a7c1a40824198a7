#include "editors/FolderEntries.h"

#include <dirent.h>
#include <memory>

namespace navrel {

FolderEnd forEachFolderEntry(const QByteArray& folder, const QDeadlineTimer& deadline,
                             const std::function<bool(const QByteArray& name)>& visit) {
    if (deadline.hasExpired()) {
        return FolderEnd::Overdue;
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.constData()), &::closedir);
    if (entries == nullptr) {
        return FolderEnd::Reached;
    }
    for (int seen = 0;; ++seen) {
        const dirent* entry = ::readdir(entries.get());
        if (entry == nullptr) {
            return FolderEnd::Reached;
        }
        if (seen == kMaximumFolderEntries) {
            return FolderEnd::TooLarge;
        }
        if (deadline.hasExpired()) {
            return FolderEnd::Overdue;
        }
        if (!visit(entry->d_name)) {
            return FolderEnd::Stopped;
        }
    }
}

} // namespace navrel
