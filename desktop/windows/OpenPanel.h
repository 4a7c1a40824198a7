#pragma once

#include <QFileDialog>
#include <QFileIconProvider>
#include <QIcon>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace navrel {

/// Shows bundles as projects among the folders. Main thread.
class BundleIcons final : public QFileIconProvider {
public:
    explicit BundleIcons(const QStringList& bundleTypes) : bundleTypes_(bundleTypes) {}

    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo& file) const override;
    QString type(const QFileInfo& file) const override;

private:
    bool isBundle(const QFileInfo& file) const;

    QStringList bundleTypes_;
};

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

/// Lets the user pick a bundle: a folder of one of the given types (extensions without the dot),
/// which is picked as if it were a file and never entered. Other folders are entered, and nothing
/// is changed or made there. Modal by `exec`; the bundle is then `selectedFiles().first()`. Main
/// thread.
class OpenPanel final : private NoDialogPreferences, public QFileDialog {
public:
    /// Starts in `folder`; in the home folder if that is not there.
    OpenPanel(const QString& title, const QStringList& bundleTypes, const QString& folder);

    /// What the user confirms: picks a bundle, or enters another folder.
    void accept() override;

private:
    bool isBundle(const QString& path) const;
    void folderEntered(const QString& folder);
    void showWholeDates();

    QStringList bundleTypes_;
    BundleIcons icons_;
};

} // namespace navrel
