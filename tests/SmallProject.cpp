#include "tests/SmallProject.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace navrel {

SmallProject::SmallProject() {
    QDir(folder()).mkdir(QStringLiteral("App.xcodeproj"));
    writeProject();
}

void SmallProject::writeFile(const QString& name, const QByteArray& text) const {
    QSaveFile file(folder_.filePath(name));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(text);
        file.commit();
    }
}

void SmallProject::removeFile(const QString& name) const {
    QFile::remove(folder_.filePath(name));
}

void SmallProject::moveFile(const QString& from, const QString& to) const {
    QFile::rename(folder_.filePath(from), folder_.filePath(to));
}

void SmallProject::addEntry(const QByteArray& identifier, const QByteArray& name) {
    entries_.append({identifier, name});
    writeProject();
}

void SmallProject::removeEntry(const QByteArray& identifier) {
    entries_.removeIf([&](const Entry& entry) { return entry.identifier == identifier; });
    writeProject();
}

void SmallProject::renameEntry(const QByteArray& identifier, const QByteArray& name) {
    for (Entry& entry : entries_) {
        if (entry.identifier == identifier) {
            entry.name = name;
        }
    }
    writeProject();
}

void SmallProject::writeProject() const {
    QByteArray objects;
    QByteArray children;
    for (const Entry& entry : entries_) {
        objects += "  " + entry.identifier + " = {isa = PBXFileReference; path = \"" + entry.name +
                   "\"; };\n";
        children += entry.identifier + ", ";
    }
    writeFile(QStringLiteral("App.xcodeproj/project.pbxproj"),
              "// !$*UTF8*$!\n{\n objects = {\n" + objects +
                  "  PROJ = {isa = PBXProject; mainGroup = MAIN; };\n"
                  "  MAIN = {isa = PBXGroup; name = App; children = (" +
                  children + "); };\n };\n rootObject = PROJ;\n}\n");
}

} // namespace navrel
