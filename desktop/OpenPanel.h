#pragma once

#include <QFileDialog>
#include <QFileIconProvider>
#include <QIcon>
#include <QString>
#include <QStringList>

namespace navrel {

/// Marks the bundles among the folders. Main thread.
class BundleIcons final : public QFileIconProvider {
public:
    explicit BundleIcons(const QStringList& bundleTypes) : bundleTypes_(bundleTypes) {}

    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo& file) const override;

private:
    QStringList bundleTypes_;
};

/// Lets the person pick a bundle: a folder of one of the given types (extensions without the dot),
/// which is picked as if it were a file and never entered. Other folders are entered. Modal by
/// `exec`; the bundle is then `selectedFiles().first()`. Main thread.
class OpenPanel final : public QFileDialog {
public:
    OpenPanel(const QString& title, const QStringList& bundleTypes);

    /// What the person confirms: picks a bundle, or enters another folder.
    void accept() override;

private:
    bool isBundle(const QString& path) const;
    void folderEntered(const QString& folder);

    QStringList bundleTypes_;
    BundleIcons icons_;
};

} // namespace navrel
