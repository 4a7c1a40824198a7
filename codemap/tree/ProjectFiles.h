#pragma once

#include "codemap/tree/DiskStatus.h"
#include "codemap/tree/XcodeProject.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace navrel {

class DiskView;

/// The project files of a tree, each read again only when it has changed. One thread.
class ProjectFiles {
public:
    struct File {
        XcodeProject project;
        std::optional<XcodeProject::Failure> failure;
    };

    /// The project file of a bundle. Valid until `forgetUnused`.
    File& at(const std::string& bundlePath, DiskView& disk);

    /// Has a file read again the next time, whatever its stamp.
    void invalidate(const std::string& filePath);
    /// Forgets the files that were not asked for since the last call.
    void forgetUnused();

private:
    struct Kept {
        DiskStatus status;
        bool isUsed = false;
        std::unique_ptr<File> file;
    };

    std::map<std::string, Kept> files_; // by the path of the file
};

} // namespace navrel
