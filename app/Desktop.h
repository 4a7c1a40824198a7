#pragma once

#include "project/ProjectDialogs.h"

#include <QString>

namespace navrel {

/// The desktop that the person works at: dialogs, and other programs. Main thread.
class Desktop : public ProjectDialogs {
public:
    /// Hands a file to the desktop's default opener, whatever application that is. False when it
    /// was refused.
    virtual bool openFile(const QString& path) = 0;

    /// Ends the event loop, and with it the program.
    virtual void terminate() = 0;
};

} // namespace navrel
