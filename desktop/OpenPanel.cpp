#include "desktop/OpenPanel.h"

#include <QFileInfo>

#include <algorithm>

namespace navrel {

OpenPanel::OpenPanel(const QString& title, const QStringList& bundleTypes)
    : QFileDialog(nullptr, title), bundleTypes_(bundleTypes) {
    setFileMode(QFileDialog::Directory);
    // The desktop's own panel would enter bundles, or pick any folder.
    setOption(QFileDialog::DontUseNativeDialog);
    setOption(QFileDialog::ShowDirsOnly);
    setLabelText(QFileDialog::Accept, QStringLiteral("Open"));
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
