#pragma once

#include "desktop/windows/BundleIcons.h"
#include "desktop/windows/NoDialogPreferences.h"

#include <QFileDialog>
#include <QString>
#include <QStringList>

namespace navrel {

/// Lets the user pick a bundle: a folder of one of the given types (extensions without the dot),
/// which the panel treats as a file. The user can enter other folders, but not change them. `exec`
/// shows it as a modal dialog; then `selectedFiles().first()` is the bundle. Main thread.
class OpenPanel final : private NoDialogPreferences, public QFileDialog {
public:
    /// Starts in `folder`; in the home folder if that is not there.
    OpenPanel(const QString& title, const QStringList& bundleTypes, const QString& folder);

    /// Called when the user confirms: picks a bundle, or enters another folder.
    void accept() override;

private:
    void folderEntered(const QString& folder);
    void showWholeDates();

    BundleIcons icons_;
};

} // namespace navrel
