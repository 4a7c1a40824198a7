#include "support/core/UserDefaults.h"

#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/files/RegularFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>

#include <cerrno>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

/// Ours has three keys; what is beyond this was not made by people.
constexpr qsizetype kLargestFile = qsizetype{1024} * 1024;

/// Text in the format of QSettings, which is read and written in a folder of its own: where others
/// can reach a file, QSettings waits for a lock beside it, half a minute for one that a killed
/// process left, and for ever where the file is a pipe.
class ScratchSettings {
public:
    explicit ScratchSettings(const QByteArray& text)
        : path_(folder_.filePath(QStringLiteral("settings"))) {
        QFile file(path_);
        isUsable_ = folder_.isValid() && file.open(QIODevice::WriteOnly) &&
                    file.write(text) == text.size() && file.flush();
    }

    bool isUsable() const { return isUsable_; }

    QVariantMap values() const {
        QVariantMap values;
        const QSettings settings(path_, QSettings::IniFormat);
        const QStringList keys = settings.allKeys();
        for (const QString& key : keys) {
            values.insert(key, settings.value(key));
        }
        return values;
    }

    /// The text with a value set, or with the key removed. Nil where that failed.
    std::optional<QByteArray> textWith(const QString& key,
                                       const std::optional<QVariant>& value) const {
        QSettings settings(path_, QSettings::IniFormat);
        if (value) {
            settings.setValue(key, *value);
        } else {
            settings.remove(key);
        }
        settings.sync();
        return settings.status() == QSettings::NoError
                   ? RegularFile::content(QFile::encodeName(path_), 2 * kLargestFile)
                   : std::nullopt;
    }

private:
    QTemporaryDir folder_;
    QString path_;
    bool isUsable_ = false;
};

bool replaceFile(const QString& path, const QByteArray& text) {
    if (!QDir().mkpath(QFileInfo(path).path())) {
        return false;
    }
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}

} // namespace

UserDefaults::UserDefaults()
    : UserDefaults(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                   QStringLiteral("/nl.kelvane/Navrel.conf")) {}

UserDefaults::UserDefaults(QString filePath) : filePath_(std::move(filePath)) {
    // Earlier versions left one when they were killed.
    QFile::remove(filePath_ + QStringLiteral(".lock"));
    read();
}

std::optional<bool> UserDefaults::boolForKey(const QString& key) const {
    NAVREL_ASSERT_MAIN_THREAD();
    const QVariant value = values_.value(key);
    if (!value.isValid()) {
        return std::nullopt;
    }
    const QString text = value.toString();
    return text == QStringLiteral("1") ||
           text.startsWith(QStringLiteral("y"), Qt::CaseInsensitive) ||
           text.startsWith(QStringLiteral("t"), Qt::CaseInsensitive);
}

std::optional<QString> UserDefaults::stringForKey(const QString& key) const {
    NAVREL_ASSERT_MAIN_THREAD();
    const QVariant value = values_.value(key);
    if (!value.isValid() || value.typeId() == QMetaType::QStringList) {
        return std::nullopt;
    }
    const QString text = value.toString();
    return text.isNull() ? QStringLiteral("") : text;
}

QStringList UserDefaults::wordsForKey(const QString& key) const {
    QString text = values_.value(key).toStringList().join(u' ');
    return text.replace(u',', u' ').split(u' ', Qt::SkipEmptyParts);
}

void UserDefaults::setBool(const QString& key, bool value) {
    set(key, value);
}

void UserDefaults::setString(const QString& key, const std::optional<QString>& value) {
    set(key, value ? std::optional<QVariant>(*value) : std::nullopt);
}

void UserDefaults::read() {
    const auto bytes = bytesOfFile();
    if (!bytes) {
        log(QStringLiteral("The preferences cannot be read: %1").arg(filePath_));
        return;
    }
    if (!bytes->isEmpty()) {
        values_ = ScratchSettings(*bytes).values();
    }
}

/// The file's bytes, none where there is no file; nil for what is no preferences file.
std::optional<QByteArray> UserDefaults::bytesOfFile() const {
    const QByteArray path = QFile::encodeName(filePath_);
    struct stat status = {};
    if (::stat(path.constData(), &status) != 0 && errno == ENOENT) {
        return QByteArray();
    }
    return RegularFile::content(path, kLargestFile);
}

void UserDefaults::set(const QString& key, const std::optional<QVariant>& value) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto known = values_.constFind(key);
    const bool isSet = value ? known != values_.constEnd() && known->toString() == value->toString()
                             : known == values_.constEnd();
    if (isSet && isWritten_) {
        return;
    }
    noteOutcome(write(key, value));
    if (value) {
        values_.insert(key, *value);
    } else {
        values_.remove(key);
    }
}

/// Changes one key of the file as it stands: another may have been edited by hand meanwhile.
bool UserDefaults::write(const QString& key, const std::optional<QVariant>& value) {
    const auto bytes = bytesOfFile();
    if (!bytes) {
        return false;
    }
    const ScratchSettings settings(*bytes);
    const auto text = settings.isUsable() ? settings.textWith(key, value) : std::nullopt;
    return text && (text == bytes || replaceFile(filePath_, *text));
}

void UserDefaults::noteOutcome(bool isWritten) {
    if (!isWritten && isWritten_) {
        log(QStringLiteral("The preferences cannot be written: %1").arg(filePath_));
    }
    isWritten_ = isWritten;
}

} // namespace navrel
