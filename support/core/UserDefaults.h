#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace navrel {

/// The user's preferences: a few keys that outlive the process. Main thread only.
///
/// A change is on the disk when the setter returns, so a killed process forgets nothing. Setting a
/// value to what it is writes nothing. The file is untrusted: a value of another kind than asked
/// for is read as described below. Anything but a regular file is neither read nor written, which
/// is logged; the values then last as long as the process. No lock is taken: only the one instance
/// of the program writes.
class UserDefaults {
public:
    /// The application's own preferences: `$XDG_CONFIG_HOME/nl.kelvane/Navrel.conf` on Linux.
    UserDefaults();

    /// Preferences in an INI file of the caller's choice.
    explicit UserDefaults(QString filePath);

    /// Whether the value is 1, or begins with "y" or "t" in any letter case; nil if the key is
    /// absent.
    std::optional<bool> boolForKey(const QString& key) const;

    /// Nil if the key is absent or has a list as its value. The empty string is a value.
    std::optional<QString> stringForKey(const QString& key) const;

    /// The words of a value, separated by blanks or commas; of a list, its entries. Empty if the
    /// key is absent.
    QStringList wordsForKey(const QString& key) const;

    void setBool(const QString& key, bool value);

    /// Nil removes the key.
    void setString(const QString& key, const std::optional<QString>& value);

    /// The path of the file with the preferences, to show to the user.
    const QString& fileName() const { return filePath_; }

private:
    void read();
    void set(const QString& key, const std::optional<QVariant>& value);
    std::optional<QByteArray> bytesOfFile() const;
    bool write(const QString& key, const std::optional<QVariant>& value);
    void noteOutcome(bool isWritten);

    QString filePath_;
    QVariantMap values_;
    bool isWritten_ = true; ///< whether the file holds the values
};

} // namespace navrel
