#pragma once

#include <QString>

#include <optional>

namespace navrel {

/// The name and version by which a program identifies itself.
struct BundleInformation {
    std::optional<QString> name; ///< "CFBundleName"
    QString version;             ///< "CFBundleVersion", as text

    /// That of this program. Any thread.
    static const BundleInformation& mainBundle();
};

} // namespace navrel
