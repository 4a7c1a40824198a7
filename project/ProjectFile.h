#pragma once

#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListIndex.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/stat.h>
#include <sys/types.h>

namespace navrel {

/// No larger project file is read: 20 times the largest that people make.
inline constexpr qsizetype kMaximumProjectFileSize = qsizetype{64} * 1024 * 1024;

/// A project.pbxproj as last read: its objects and the identifier of its main group. It is
/// untrusted: a value of another kind than expected counts as absent. One thread at a time.
class ProjectFile {
public:
    /// Reads the file in place of the one before. What was read stands where the file is provably
    /// the same: reading it again would give the same. A file that is missing, too large, no
    /// regular file or no property list gives nothing; nothing is waited for.
    void read(const QByteArray& path);

    /// The "objects" dictionary; null when the file could not be read or has none. Valid until the
    /// next reading.
    const PropertyListIndex* objects() const { return hasObjects_ ? &objects_ : nullptr; }

    /// Identifier of the project's main group; nil when the file could not be read or names none.
    const std::optional<QByteArray>& rootID() const { return rootID_; }

    /// Why there is nothing to show, for the log; nil where there is a main group.
    const std::optional<QString>& problem() const { return problem_; }

    /// Differs from every earlier answer after a reading that may have given something else.
    quint64 generation() const { return generation_; }

private:
    /// What tells one content of a file from another without reading it.
    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        qint64 modified = 0;
        qint64 statusChanged = 0;

        /// That of a file that is not there, or cannot be a project file.
        Identity() = default;
        explicit Identity(const struct stat& status);
        bool operator==(const Identity& other) const = default;
    };

    std::optional<QByteArray> readContent();
    std::optional<QString> take(std::optional<QByteArray> bytes);

    QByteArray path_;
    // Nil while what was read is not known to be the whole content of the file as it stands.
    std::optional<Identity> identity_;
    PropertyListDocument document_;
    PropertyListIndex objects_;
    bool hasObjects_ = false;
    std::optional<QByteArray> rootID_;
    std::optional<QString> problem_ = QStringLiteral("nothing was read");
    quint64 generation_ = 0;
};

} // namespace navrel
