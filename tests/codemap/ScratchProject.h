#pragma once

#include "codemap/CodeMapSnapshot.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>
#include <string>
#include <vector>

namespace navrel {

/// A folder on disk with projects and sources in it, gone at the end of the test.
class ScratchProject {
public:
    /// Where a path lies.
    std::string path(const std::string& relative = {}) const {
        const std::string folder = QDir(folder_.path()).canonicalPath().toStdString();
        return relative.empty() ? folder : folder + '/' + relative;
    }

    void write(const std::string& relative, const std::string& text = "\n") const {
        const QString file = QString::fromStdString(path(relative));
        QDir().mkpath(QFileInfo(file).path());
        QFile opened(file);
        if (!opened.open(QIODevice::WriteOnly) ||
            opened.write(text.data(), qint64(text.size())) < 0) {
            throw std::runtime_error("cannot write " + relative);
        }
    }

    /// Writes a file under another name and renames it, as careful editors do.
    void replace(const std::string& relative, const std::string& text) const {
        write(relative + ".tmp", text);
        rename(relative + ".tmp", relative);
    }

    void rename(const std::string& from, const std::string& to) const {
        if (::rename(path(from).c_str(), path(to).c_str()) != 0) {
            throw std::runtime_error("cannot rename " + from);
        }
    }

    void remove(const std::string& relative) const {
        const QString file = QString::fromStdString(path(relative));
        QFileInfo(file).isDir() ? QDir(file).removeRecursively() : QFile::remove(file);
    }

    /// Writes a project file: objects in the old-style format beside the project's own, whose main
    /// group is MAIN.
    std::string writeProject(const std::string& bundle, const std::string& objects,
                             const std::string& settings = {}) const {
        write(bundle + "/project.pbxproj",
              "// !$*UTF8*$!\n{ objects = {\nPROJECT = {isa = PBXProject; mainGroup = MAIN; " +
                  settings + "};\n" + objects + "}; rootObject = PROJECT; }\n");
        return path(bundle);
    }

private:
    QTemporaryDir folder_;
};

inline std::string group(const std::string& id, const std::string& children,
                         const std::string& more = {}) {
    return id + " = {isa = PBXGroup; children = (" + children + "); sourceTree = \"<group>\"; " +
           more + "};\n";
}

inline std::string fileReference(const std::string& id, const std::string& path,
                                 const std::string& sourceTree = "<group>",
                                 const std::string& more = {}) {
    return id + " = {isa = PBXFileReference; path = \"" + path + "\"; sourceTree = \"" +
           sourceTree + "\"; " + more + "};\n";
}

inline std::string synchronizedGroup(const std::string& id, const std::string& path,
                                     const std::string& more = {}) {
    return id + " = {isa = PBXFileSystemSynchronizedRootGroup; path = \"" + path +
           "\"; sourceTree = \"<group>\"; " + more + "};\n";
}

/// A tree as lines: two blanks a level, name, kind for all but files, targets, and what is amiss.
inline std::string textOf(const CodeMapSnapshot& snapshot, const MapNode& node, int depth = 0) {
    std::string text(static_cast<std::size_t>(2 * depth), ' ');
    text += node.name;
    if (node.kind != NodeKind::file) {
        text += " (" + std::string(nameOf(node.kind)) + ")";
    }
    for (const std::string& target : node.targets) {
        text += " [" + target + "]";
    }
    text += node.missing ? " missing\n" : "\n";
    for (const NodeID child : node.children) {
        text += textOf(snapshot, *snapshot.node(child), depth + 1);
    }
    return text;
}

} // namespace navrel
