#include "desktop/windows/NoDialogPreferences.h"

#include <QSettings>
#include <QStandardPaths>
#include <QString>

namespace navrel {

namespace {

/// Where Qt has the preferences of programs that name no other place.
QString preferencesFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

} // namespace

NoDialogPreferences::NoDialogPreferences() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder_.path());
}

NoDialogPreferences::~NoDialogPreferences() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, preferencesFolder());
}

} // namespace navrel
