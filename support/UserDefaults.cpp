#include "support/UserDefaults.h"

#include <QStringList>
#include <QVariant>

namespace navrel {

UserDefaults::UserDefaults() : settings_(QStringLiteral("nl.kelvane"), QStringLiteral("Navrel")) {}

UserDefaults::UserDefaults(const QString& filePath) : settings_(filePath, QSettings::IniFormat) {}

std::optional<bool> UserDefaults::boolForKey(const QString& key) const {
    const QVariant value = settings_.value(key);
    if (!value.isValid()) {
        return std::nullopt;
    }
    const QString text = value.toString();
    return text == QStringLiteral("1") ||
           text.startsWith(QStringLiteral("y"), Qt::CaseInsensitive) ||
           text.startsWith(QStringLiteral("t"), Qt::CaseInsensitive);
}

std::optional<QString> UserDefaults::stringForKey(const QString& key) const {
    const QVariant value = settings_.value(key);
    if (!value.isValid() || value.typeId() == QMetaType::QStringList) {
        return std::nullopt;
    }
    const QString text = value.toString();
    return text.isNull() ? QStringLiteral("") : text;
}

void UserDefaults::setBool(const QString& key, bool value) {
    settings_.setValue(key, value);
    settings_.sync();
}

void UserDefaults::setString(const QString& key, const std::optional<QString>& value) {
    if (value) {
        settings_.setValue(key, *value);
    } else {
        settings_.remove(key);
    }
    settings_.sync();
}

} // namespace navrel
