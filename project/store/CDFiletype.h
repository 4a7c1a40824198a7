#pragma once

#include "project/store/ManagedObject.h"

#include <QByteArray>

#include <optional>
#include <tuple>

namespace navrel {

/// A file extension that was seen in any project, and whether the navigator shows its files. Text
/// is UTF-8.
class CDFiletype final : public ManagedObject<CDFiletype, 1> {
public:
    static constexpr const char* kEntityName = "CDFiletype";
    static constexpr std::size_t kExtensionKey = 0;

    std::optional<bool> allowed() const { return allowed_; }
    void setAllowed(std::optional<bool> value) { setAttribute(allowed_, value); }

    /// As CDObject's `extension`; empty for files without one.
    const std::optional<QByteArray>& extension() const { return extension_; }
    void setExtension(std::optional<QByteArray> value) {
        setKey(kExtensionKey, extension_, std::move(value));
    }

    const std::optional<QByteArray>& key(std::size_t) const { return extension_; }

    static constexpr auto attributes() {
        return std::tuple(Attribute{"allowed", &CDFiletype::allowed_},
                          Attribute{"extension", &CDFiletype::extension_});
    }

private:
    std::optional<bool> allowed_;
    std::optional<QByteArray> extension_;
};

} // namespace navrel
