#pragma once

#include "app/Desktop.h"

#include <memory>

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

    std::optional<QString> runOpenPanel(const QString& title,
                                        const QStringList& allowedFileTypes) override;
    bool presentError(const Error& error) override;
    int runAlert(const QString& message, const QString& informativeText,
                 const QStringList& buttons) override;
    bool openFile(const QString& path) override;
    bool openURL(const QUrl& url) override;
    void showStatusItem(StatusMenu& menu, const QString& imagePath) override;
    void showAboutWindow(const QString& page) override;
    void terminate() override;

private:
    bool hasDisplay_;
    std::unique_ptr<StatusItem> statusItem_;
    std::unique_ptr<AboutWindow> aboutWindow_;
};

} // namespace navrel
