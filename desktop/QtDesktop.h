#pragma once

#include "app/Desktop.h"

#include <functional>
#include <memory>
#include <utility>

namespace navrel {

class AboutWindow;
class StatusItem;

/// Implements `Desktop` with Qt Widgets and, for the status item, D-Bus. Without a display the user
/// cannot answer a dialog: it counts as dismissed, which is logged.
class QtDesktop final : public Desktop {
public:
    /// Whether dialogs and windows can be shown. There must be a QApplication.
    static bool isDisplayThere();

    explicit QtDesktop(bool hasDisplay = isDisplayThere());
    ~QtDesktop() override;

    /// Sets the function that returns the folder in which open panels start. They start in the home
    /// folder if it returns an empty path, or one that does not exist.
    void setOpenPanelFolder(std::function<QString()> folder) {
        openPanelFolder_ = std::move(folder);
    }

    /// Shows the status menu as a window, in front of all others, even if it is also in a panel:
    /// for a user who looks for the program. Does nothing before `showStatusItem`.
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
