#pragma once

#include <QFileIconProvider>
#include <QFileInfo>
#include <QIcon>
#include <QString>
#include <QStringList>

namespace navrel {

/// Gives bundles, which are folders, the icon of a project. Main thread.
class BundleIcons final : public QFileIconProvider {
public:
    explicit BundleIcons(const QStringList& bundleTypes) : bundleTypes_(bundleTypes) {}

    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo& file) const override;
    QString type(const QFileInfo& file) const override;

    /// Whether a file is a folder of one of the types.
    bool isBundle(const QFileInfo& file) const;

private:
    QStringList bundleTypes_;
};

} // namespace navrel
