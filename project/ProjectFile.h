#pragma once

#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListIndex.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/stat.h>
#include <sys/types.h>

namespace navrel {

/// The size in bytes of the largest project file that is read: 20 times the largest real one.
inline constexpr qsizetype kMaximumProjectFileSize = qsizetype{64} * 1024 * 1024;

/// The contents of a project.pbxproj: its objects and the identifier of its main group. It is
/// untrusted: a value of another kind than expected counts as absent. One thread at a time.
class ProjectFile {
public:
    /// Reads the file in place of the one before, unless that is the same file and has provably not
    /// changed since. A file that is missing, too large, not a regular file or not a property list
    /// has no objects and no main group. Never blocks on a pipe or device.
    void read(const QByteArray& path);

    /// The "objects" dictionary; null if the file could not be read or has none. Valid until the
    /// next `read`.
    const PropertyListIndex* objects() const { return hasObjects_ ? &objects_ : nullptr; }

    /// Identifier of the project's main group; nil when the file could not be read or names none.
    const std::optional<QByteArray>& rootID() const { return rootID_; }

    /// Why there is nothing to show, for the log; nil if there is a main group.
    const std::optional<QString>& problem() const { return problem_; }

    /// A number that changes to a new value with each `read` that may have changed the contents.
    quint64 generation() const { return generation_; }

private:
    /// The file's state. If it is the same, so are the contents, which need not be read.
    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        qint64 modified = 0;
        qint64 statusChanged = 0;

        /// For a file that is missing, or cannot be a project file.
        Identity() = default;
        explicit Identity(const struct stat& status);
        bool operator==(const Identity& other) const = default;
    };

    std::optional<QByteArray> readContent();
    std::optional<QString> take(std::optional<QByteArray> bytes);

    QByteArray path_;
    // Nil while the file may have changed since it was read.
    std::optional<Identity> identity_;
    PropertyListDocument document_;
    PropertyListIndex objects_;
    bool hasObjects_ = false;
    std::optional<QByteArray> rootID_;
    std::optional<QString> problem_ = QStringLiteral("nothing was read");
    quint64 generation_ = 0;
};

} // namespace navrel
