#pragma once

#include "web/BrowserAccess.h"

#include <QString>

namespace navrel {

class UserDefaults;

/// The settings of access by browsers, from the preferences and, for this run, from NAVREL_BROWSER:
/// "off", "machine" or "network", optionally followed by ":PORT". A value that is not valid is
/// logged, and counts as absent. `folder` and `socketPath` stay empty. Main thread.
AccessSettings browserSettings(const UserDefaults& userDefaults);

/// Saves the mode in the preferences. Main thread.
void saveBrowserMode(UserDefaults& userDefaults, AccessSettings::Mode mode);

} // namespace navrel
