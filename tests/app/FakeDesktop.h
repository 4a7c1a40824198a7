#pragma once

#include "app/Desktop.h"
#include "support/Error.h"

#include <QStringList>

#include <vector>

namespace navrel {

/// A desktop that shows nothing, answers as it was told to, and records what it was asked.
class FakeDesktop final : public Desktop {
public:
    /// What the person picks in the next open panels; nil cancels.
    std::optional<QString> pickedPath;

    QStringList panelTitles;
    QStringList openedFiles;
    std::vector<Error> presentedErrors;
    int terminations = 0;

    std::optional<QString> runOpenPanel(const QString& title, const QStringList&) override {
        panelTitles.append(title);
        return pickedPath;
    }
    bool presentError(const Error& error) override {
        presentedErrors.push_back(error);
        return false;
    }
    int runAlert(const QString&, const QString&, const QStringList&) override {
        return kAlertFirstButtonReturn;
    }
    bool openFile(const QString& path) override {
        openedFiles.append(path);
        return true;
    }
    void terminate() override { ++terminations; }
};

} // namespace navrel
