#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace navrel {

/// No more bundles are looked at for one file.
inline constexpr std::size_t kMostBundlesLookedAt = 200;
/// No more folders are searched for bundles, whose siblings are many in a package folder.
inline constexpr std::size_t kMostFoldersSearched = 2000;
/// How many folders upwards are searched.
inline constexpr std::size_t kMostFoldersUpwards = 64;

/// Finds the project that lists a file: among the bundles in the folders from the file's upwards
/// and in the folders beside these, the nearest first. What a bundle lists is kept while the dates
/// of its project file and of the folders that it shows stay. One thread.
class ProjectListing {
public:
    /// The bundle (an absolute path to an .xcodeproj) that lists the file at an absolute path;
    /// nothing where none does.
    std::optional<std::string> projectListingFile(const std::string& absolutePath);

private:
    /// What one bundle lists, and the dates of what that was read from.
    struct Listing {
        std::vector<std::pair<std::string, std::int64_t>> dates;
        std::vector<std::size_t> files; // hashes of absolute paths, sorted
        std::uint64_t lastUse = 0;
    };

    bool lists(const std::string& bundlePath, const std::string& file);
    static Listing read(const std::string& bundlePath);
    void forgetOldest();

    std::vector<std::pair<std::string, Listing>> listings_; // by bundle
    std::uint64_t uses_ = 0;
};

} // namespace navrel
