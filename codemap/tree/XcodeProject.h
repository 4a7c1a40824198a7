#pragma once

#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListIndex.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// A project.pbxproj as read. It is untrusted: a value of another kind than expected counts as
/// absent. One thread.
class XcodeProject {
public:
    using Value = PropertyListDocument::Value;

    /// Why a project file is not readable: one sentence.
    struct Failure {
        std::string reason;
        std::uint32_t line = 0; ///< from 1; 0 where that is not known
    };

    /// Reads the file at a path in place of what was read before. The project is empty on failure.
    std::optional<Failure> read(const std::string& path);

    /// An object by its identifier; nothing where the file has none.
    Value object(std::string_view identifier) const { return objects_.find(identifier); }
    /// The object that describes the project itself.
    Value project() const { return project_; }
    std::string_view mainGroup() const { return project_["mainGroup"].utf8(); }

    /// The project's folder relative to the one that holds the bundle; mostly empty.
    std::string_view projectDirPath() const { return project_["projectDirPath"].utf8(); }

private:
    std::optional<Failure> take(const QByteArray& bytes);

    PropertyListDocument document_;
    PropertyListIndex objects_;
    Value project_;
};

} // namespace navrel
