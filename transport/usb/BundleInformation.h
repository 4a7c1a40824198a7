#pragma once

#include <QString>

#include <optional>

namespace navrel {

/// What a program says about itself to others.
struct BundleInformation {
    std::optional<QString> name; ///< "CFBundleName"
    QString version;             ///< "CFBundleVersion", as text

    /// That of this program. Any thread.
    static const BundleInformation& mainBundle();
};

} // namespace navrel
