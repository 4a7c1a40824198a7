#pragma once

#include "app/Desktop.h"

namespace navrel {

/// The desktop through Qt Widgets. Where there is no display (Qt's platforms "offscreen" and
/// "minimal") nobody could answer a dialog: it counts as dismissed, and the log says so.
class QtDesktop final : public Desktop {
public:
    std::optional<QString> runOpenPanel(const QString& title,
                                        const QStringList& allowedFileTypes) override;
    bool presentError(const Error& error) override;
    int runAlert(const QString& message, const QString& informativeText,
                 const QStringList& buttons) override;
    bool openFile(const QString& path) override;
    void terminate() override;
};

} // namespace navrel
