#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace navrel {

/// The user's preferences: a few keys that outlive the process. Main thread only.
///
/// Every change is on the disk when the setter returns, so that a killed process forgets nothing.
/// A value that is set already is not written again. The file is untrusted: a value of another kind
/// than asked for is read as described, and what is no regular file is neither read nor written,
/// which is logged; the values then last as long as the process. No lock is taken and nothing is
/// waited for: the one instance of the program is the only one that writes.
class UserDefaults {
public:
    /// The application's own preferences: `$XDG_CONFIG_HOME/nl.kelvane/Navrel.conf` on Linux.
    UserDefaults();

    /// Preferences in an INI file of the caller's choice.
    explicit UserDefaults(QString filePath);

    /// Nothing when the key is absent; else whether the value is 1, or begins like "yes" or "true".
    std::optional<bool> boolForKey(const QString& key) const;

    /// Nothing when the key is absent or holds a list. The empty string is a value.
    std::optional<QString> stringForKey(const QString& key) const;

    /// The words of a value, which blanks or commas separate; a list's are its entries. None when
    /// the key is absent.
    QStringList wordsForKey(const QString& key) const;

    void setBool(const QString& key, bool value);

    /// Nothing removes the key.
    void setString(const QString& key, const std::optional<QString>& value);

    /// Where the preferences are kept, as a user would look for them.
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
