#include "codemap/tree/SwiftPackage.h"

#include "codemap/tree/DiskView.h"
#include "codemap/tree/Paths.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <set>

namespace navrel {

namespace {

constexpr std::array<std::string_view, 6> kCustomaryFolders = {"Sources", "Source", "src",
                                                               "srcs",    "Tests",  "Plugins"};

/// The texts of `path: "…"` in a manifest. A manifest is a program; this is what it says where it
/// is as plain as most are.
std::vector<std::string> pathsIn(const QByteArray& manifest) {
    static const QRegularExpression kPath(QStringLiteral("\\bpath:\\s*\"([^\"\\\\\\n]{1,1000})\""));
    std::vector<std::string> paths;
    auto match = kPath.globalMatch(QString::fromUtf8(manifest));
    while (match.hasNext()) {
        paths.push_back(match.next().captured(1).toStdString());
    }
    return paths;
}

} // namespace

bool isSwiftPackage(const std::string& folder, DiskView& disk) {
    return disk.status(resolvedPath(folder, kPackageManifest)).kind == DiskKind::file;
}

std::vector<std::string> sourceFoldersOf(const std::string& package, DiskView& disk) {
    std::set<std::string> folders;
    const auto addFolder = [&](std::string_view path) {
        const std::string folder = resolvedPath(package, path);
        if (isWithin(folder, package) && disk.status(folder).kind == DiskKind::folder) {
            folders.insert(folder == package ? "." : relativePath(folder, package));
        }
    };
    std::for_each(kCustomaryFolders.begin(), kCustomaryFolders.end(), addFolder);
    const std::string manifest = resolvedPath(package, kPackageManifest);
    // Asked for, so that the manifest is watched.
    disk.status(manifest);
    if (const auto text = contentOfFile(manifest, kMaximumManifestSize)) {
        const std::vector<std::string> paths = pathsIn(*text);
        std::for_each(paths.begin(), paths.end(), addFolder);
    }
    std::vector<std::string> outermost;
    for (const std::string& folder : folders) {
        if (folder == ".") {
            return {folder};
        }
        const bool isInside =
            std::any_of(outermost.begin(), outermost.end(),
                        [&folder](const std::string& other) { return isWithin(folder, other); });
        if (!isInside) {
            outermost.push_back(folder);
        }
    }
    return outermost;
}

} // namespace navrel
