#include "desktop/windows/OpenPanel.h"

#include "support/core/MainThread.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QToolButton>
#include <QTreeView>

namespace navrel {

namespace {

/// Of Qt's list of files.
constexpr int kDateColumn = 3;
constexpr QSize kUsualSize{760, 480};

} // namespace

OpenPanel::OpenPanel(const QString& title, const QStringList& bundleTypes, const QString& folder)
    : QFileDialog(nullptr, title), icons_(bundleTypes) {
    NAVREL_ASSERT_MAIN_THREAD();
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

void OpenPanel::folderEntered(const QString& folder) {
    if (icons_.isBundle(QFileInfo(folder))) {
        setDirectory(QFileInfo(folder).path());
        selectFile(folder);
        accept();
    }
}

void OpenPanel::accept() {
    const QString path = selectedFiles().value(0);
    if (icons_.isBundle(QFileInfo(path))) {
        QFileDialog::accept();
    } else if (QFileInfo(path).isDir()) {
        setDirectory(path);
    }
}

} // namespace navrel
