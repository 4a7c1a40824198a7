#pragma once

#include <QSettings>
#include <QString>

#include <optional>

namespace navrel {

/// The person's preferences: a few keys that outlive the process. Main thread only.
///
/// Every change is on the disk when the setter returns, so that a killed process forgets nothing.
/// What a hand-edited file holds is untrusted: a value of another kind than asked for is read as
/// described, never an error.
class UserDefaults {
public:
    /// The application's own preferences: `$XDG_CONFIG_HOME/nl.kelvane/Navrel.conf` on Linux, the
    /// preferences system on macOS.
    UserDefaults();

    /// Preferences in an INI file of the caller's choice.
    explicit UserDefaults(const QString& filePath);

    /// Nothing when the key is absent; else whether the value is 1, or begins like "yes" or "true".
    std::optional<bool> boolForKey(const QString& key) const;

    /// Nothing when the key is absent or holds a list. The empty string is a value.
    std::optional<QString> stringForKey(const QString& key) const;

    void setBool(const QString& key, bool value);

    /// Nothing removes the key.
    void setString(const QString& key, const std::optional<QString>& value);

    /// Where the preferences are kept, as a person would look for them.
    QString fileName() const { return settings_.fileName(); }

private:
    QSettings settings_;
};

} // namespace navrel
