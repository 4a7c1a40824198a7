#pragma once

#include <QTemporaryDir>

namespace navrel {

/// While one lives, Qt's dialogs keep nothing in its own preferences (QtProject.conf), and read
/// nothing there: they would write a file that is not this program's. Main thread; preferences of
/// the program must be open before.
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
