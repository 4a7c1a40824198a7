#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace navrel {

/// A small Xcode project on the disk that tests may change: a main group with the files that were
/// added to it. Identifiers are chosen by the test.
class SmallProject {
public:
    SmallProject();

    QString folder() const { return folder_.path(); }
    QString bundle() const { return folder_.filePath(QStringLiteral("App.xcodeproj")); }

    void writeFile(const QString& name, const QByteArray& text) const;
    void removeFile(const QString& name) const;
    void moveFile(const QString& from, const QString& to) const;

    /// Adds an entry of the main group; a file's name doubles as its path.
    void addEntry(const QByteArray& identifier, const QByteArray& name);
    void removeEntry(const QByteArray& identifier);
    void renameEntry(const QByteArray& identifier, const QByteArray& name);

private:
    void writeProject() const;

    struct Entry {
        QByteArray identifier;
        QByteArray name;
    };
    QTemporaryDir folder_;
    QList<Entry> entries_;
};

} // namespace navrel
