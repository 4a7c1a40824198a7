#include "codemap/tree/ProjectFiles.h"

#include "codemap/tree/DiskView.h"

namespace navrel {

ProjectFiles::File& ProjectFiles::at(const std::string& bundlePath, DiskView& disk) {
    const std::string path = bundlePath + "/project.pbxproj";
    const DiskStatus status = disk.status(path);
    Kept& kept = files_[path];
    // Once a tree is being built, its projects stay what they are.
    const bool isSame =
        kept.file && (kept.isUsed || (kept.status.isSettled && kept.status.stamp == status.stamp));
    kept.isUsed = true;
    if (!isSame) {
        kept.status = status;
        kept.file = std::make_unique<File>();
        kept.file->failure = kept.file->project.read(path);
    }
    return *kept.file;
}

void ProjectFiles::invalidate(const std::string& filePath) {
    files_.erase(filePath);
}

void ProjectFiles::forgetUnused() {
    std::erase_if(files_, [](const auto& item) { return !item.second.isUsed; });
    for (auto& [path, kept] : files_) {
        kept.isUsed = false;
    }
}

} // namespace navrel
