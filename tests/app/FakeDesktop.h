#pragma once

#include "app/Desktop.h"
#include "support/core/Error.h"

#include <QStringList>

#include <vector>

namespace navrel {

/// A desktop that shows nothing, answers as it was told to, and records what it was asked.
class FakeDesktop final : public Desktop {
public:
    /// What the user picks in the next open panels; nil cancels.
    std::optional<QString> pickedPath;

    QStringList panelTitles;
    QStringList openedFiles;
    std::vector<Error> presentedErrors;
    int terminations = 0;
    /// What the user answers to alerts.
    int alertAnswer = kAlertFirstButtonReturn + 1;
    QStringList alertTexts;
    bool opensURLs = true;
    QList<QUrl> openedURLs;
    QString statusItemImage;
    QStringList aboutPages;
    /// Alerts and the status item, in the order of their appearance.
    QStringList events;

    std::optional<QString> runOpenPanel(const QString& title, const QStringList&) override {
        panelTitles.append(title);
        return pickedPath;
    }
    bool presentError(const Error& error) override {
        presentedErrors.push_back(error);
        return false;
    }
    int runAlert(const QString& message, const QString& informativeText,
                 const QStringList& buttons) override {
        events.append(QStringLiteral("alert"));
        alertTexts = QStringList{message, informativeText} + buttons;
        return alertAnswer;
    }
    void openURL(const QUrl& url, std::function<void()> wasRefused) override {
        openedURLs.append(url);
        if (!opensURLs) {
            wasRefused();
        }
    }
    void showStatusItem(StatusMenu&, const QString& imagePath) override {
        events.append(QStringLiteral("status item"));
        statusItemImage = imagePath;
    }
    void showAboutWindow(const QString& page) override { aboutPages.append(page); }
    bool openFile(const QString& path) override {
        openedFiles.append(path);
        return true;
    }
    void terminate() override { ++terminations; }
};

} // namespace navrel
