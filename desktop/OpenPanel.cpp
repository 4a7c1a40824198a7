#include "desktop/OpenPanel.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

namespace navrel {

QIcon BundleIcons::icon(const QFileInfo& file) const {
    return file.isDir() && bundleTypes_.contains(file.suffix()) ? QApplication::windowIcon()
                                                                : QFileIconProvider::icon(file);
}

OpenPanel::OpenPanel(const QString& title, const QStringList& bundleTypes)
    : QFileDialog(nullptr, title, QDir::homePath()), bundleTypes_(bundleTypes),
      icons_(bundleTypes) {
    setFileMode(QFileDialog::Directory);
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
    connect(this, &QFileDialog::directoryEntered, this,
            [this](const QString& folder) { folderEntered(folder); });
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
