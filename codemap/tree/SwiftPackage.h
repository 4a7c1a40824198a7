#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace navrel {

class DiskView;

inline constexpr std::string_view kPackageManifest = "Package.swift";
/// No larger manifest is looked into.
inline constexpr std::size_t kMaximumManifestSize = std::size_t{1} * 1024 * 1024;

/// Whether a folder is a Swift package.
bool isSwiftPackage(const std::string& folder, DiskView& disk);

/// The folders of a package that hold its sources and tests, relative to it, in the order of their
/// names: the customary ones, and those that the manifest names by `path:`. "." where the package
/// itself is one.
std::vector<std::string> sourceFoldersOf(const std::string& package, DiskView& disk);

} // namespace navrel
