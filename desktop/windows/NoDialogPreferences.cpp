#include "desktop/windows/NoDialogPreferences.h"

#include "support/core/MainThread.h"

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
    NAVREL_ASSERT_MAIN_THREAD();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder_.path());
}

NoDialogPreferences::~NoDialogPreferences() {
    NAVREL_ASSERT_MAIN_THREAD();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, preferencesFolder());
}

} // namespace navrel
