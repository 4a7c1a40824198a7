#include "desktop/windows/OpenPanel.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QSettings>
#include <QStandardPaths>
#include <QToolButton>
#include <QTreeView>

namespace navrel {

namespace {

/// Of Qt's list of files.
constexpr int kDateColumn = 3;
constexpr QSize kUsualSize{760, 480};

/// Where Qt has the preferences of programs that name no other place.
QString preferencesFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

} // namespace

bool BundleIcons::isBundle(const QFileInfo& file) const {
    return file.isDir() && bundleTypes_.contains(file.suffix());
}

QIcon BundleIcons::icon(const QFileInfo& file) const {
    return isBundle(file) ? QApplication::windowIcon() : QFileIconProvider::icon(file);
}

QString BundleIcons::type(const QFileInfo& file) const {
    return isBundle(file) ? QStringLiteral("Project") : QFileIconProvider::type(file);
}

NoDialogPreferences::NoDialogPreferences() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder_.path());
}

NoDialogPreferences::~NoDialogPreferences() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, preferencesFolder());
}

OpenPanel::OpenPanel(const QString& title, const QStringList& bundleTypes, const QString& folder)
    : QFileDialog(nullptr, title), bundleTypes_(bundleTypes), icons_(bundleTypes) {
    setFileMode(QFileDialog::Directory);
    setViewMode(QFileDialog::Detail);
    // No new folder, nothing renamed, nothing deleted.
    setOption(QFileDialog::ReadOnly);
    if (auto* newFolder = findChild<QToolButton*>(QStringLiteral("newFolderButton"))) {
        newFolder->hide();
    }
    // The desktop's own panel would enter bundles, or pick any folder.
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::ShowDirsOnly);
    setLabelText(QFileDialog::Accept, QStringLiteral("Open"));
    setLabelText(QFileDialog::FileName, QStringLiteral("Project:"));
    QStringList patterns;
    for (const QString& type : bundleTypes) {
        patterns.append(QStringLiteral("*.") + type);
    }
    setNameFilter(patterns.join(u' '));
    setIconProvider(&icons_);
    setDirectory(!folder.isEmpty() && QFileInfo(folder).isDir() ? folder : QDir::homePath());
    resize(kUsualSize);
    showWholeDates();
    connect(this, &QFileDialog::directoryEntered, this,
            [this](const QString& entered) { folderEntered(entered); });
}

void OpenPanel::showWholeDates() {
    if (auto* list = findChild<QTreeView*>(QStringLiteral("treeView"))) {
        list->header()->setSectionResizeMode(kDateColumn, QHeaderView::ResizeToContents);
    }
}

bool OpenPanel::isBundle(const QString& path) const {
    const QFileInfo file(path);
    return file.isDir() && bundleTypes_.contains(file.suffix());
}

void OpenPanel::folderEntered(const QString& folder) {
    if (isBundle(folder)) {
        setDirectory(QFileInfo(folder).path());
        selectFile(folder);
        accept();
    }
}

void OpenPanel::accept() {
    const QString path = selectedFiles().value(0);
    if (isBundle(path)) {
        QFileDialog::accept();
    } else if (QFileInfo(path).isDir()) {
        setDirectory(path);
    }
}

} // namespace navrel
