#pragma once

#include <QTemporaryDir>

namespace navrel {

/// While one lives, Qt's dialogs neither read nor write Qt's own preferences (QtProject.conf),
/// which is not a file of this program. Main thread; the program's own preferences must have been
/// opened before.
class NoDialogPreferences {
public:
    NoDialogPreferences();
    ~NoDialogPreferences();
    NoDialogPreferences(const NoDialogPreferences&) = delete;
    NoDialogPreferences& operator=(const NoDialogPreferences&) = delete;

private:
    QTemporaryDir folder_;
};

} // namespace navrel
