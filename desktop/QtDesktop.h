#pragma once

#include "app/Desktop.h"

#include <functional>
#include <memory>
#include <utility>

namespace navrel {

class AboutWindow;
class StatusItem;

/// The desktop through Qt Widgets and, for the status item, D-Bus. Where there is no display nobody
/// could answer a dialog: it counts as dismissed, and the log says so.
class QtDesktop final : public Desktop {
public:
    /// Whether dialogs and windows have somewhere to appear. The application must exist.
    static bool isDisplayThere();

    explicit QtDesktop(bool hasDisplay = isDisplayThere());
    ~QtDesktop() override;

    /// Says in which folder open panels start; empty, or one that is not there: the home folder.
    void setOpenPanelFolder(std::function<QString()> folder) {
        openPanelFolder_ = std::move(folder);
    }

    /// Shows the status menu as a window, in front of all others, wherever else the item shows: for
    /// a user who looks for the program. Nothing before the status item is there.
    void bringToFront();

    std::optional<QString> runOpenPanel(const QString& title,
                                        const QStringList& allowedFileTypes) override;
    bool presentError(const Error& error) override;
    int runAlert(const QString& message, const QString& informativeText,
                 const QStringList& buttons) override;
    bool openFile(const QString& path) override;
    void openURL(const QUrl& url, std::function<void()> wasRefused) override;
    void showStatusItem(StatusMenu& menu, const QString& imagePath) override;
    void showAboutWindow(const QString& page) override;
    void terminate() override;

private:
    bool hasDisplay_;
    std::function<QString()> openPanelFolder_;
    std::unique_ptr<StatusItem> statusItem_;
    std::unique_ptr<AboutWindow> aboutWindow_;
};

} // namespace navrel
