#pragma once

#include "project/ProjectDialogs.h"

#include <QString>
#include <QUrl>

#include <functional>

namespace navrel {

class StatusMenu;

/// The desktop that the user works at: dialogs, and other programs. Main thread.
class Desktop : public ProjectDialogs {
public:
    /// Hands a file to the desktop's default opener, whatever application that is. False when it
    /// was refused.
    virtual bool openFile(const QString& path) = 0;

    /// Hands a URL to the desktop's URL opener, usually a browser, without waiting for it.
    /// `wasRefused` is called when it was refused: before the call returns, or later on another
    /// thread.
    virtual void openURL(const QUrl& url, std::function<void()> wasRefused) = 0;

    /// Puts the status item with its menu where the user's desktop shows such items. `imagePath`
    /// is a resource or file; without it the item has no image. Once; the menu outlives the
    /// desktop's use of it.
    virtual void showStatusItem(StatusMenu& menu, const QString& imagePath) = 0;

    /// Shows a page (HTML of Qt's rich-text subset) in the About window and brings that to the
    /// front, with the keyboard: Escape closes it.
    virtual void showAboutWindow(const QString& page) = 0;

    /// Ends the event loop, and with it the program.
    virtual void terminate() = 0;
};

} // namespace navrel
