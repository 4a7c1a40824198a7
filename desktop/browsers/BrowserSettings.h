#pragma once

#include "web/BrowserAccess.h"

#include <QString>

namespace navrel {

class UserDefaults;

/// What the preferences and, for this run, NAVREL_BROWSER ("off", "machine" or "network", and
/// ":PORT" behind it where that is another) say about access by browsers. A value that cannot be
/// read is logged and counts as absent. `folder` and `socketPath` are left empty. Main thread.
AccessSettings browserSettings(const UserDefaults& userDefaults);

/// Keeps the mode in the preferences, for this run and later ones.
void saveBrowserMode(UserDefaults& userDefaults, AccessSettings::Mode mode);

} // namespace navrel
