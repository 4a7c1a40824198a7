#include "desktop/windows/BundleIcons.h"

#include "support/core/MainThread.h"

#include <QApplication>

namespace navrel {

bool BundleIcons::isBundle(const QFileInfo& file) const {
    NAVREL_ASSERT_MAIN_THREAD();
    return file.isDir() && bundleTypes_.contains(file.suffix());
}

QIcon BundleIcons::icon(const QFileInfo& file) const {
    return isBundle(file) ? QApplication::windowIcon() : QFileIconProvider::icon(file);
}

QString BundleIcons::type(const QFileInfo& file) const {
    return isBundle(file) ? QStringLiteral("Project") : QFileIconProvider::type(file);
}

} // namespace navrel
