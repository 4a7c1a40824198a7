#pragma once

#include "companion/terminal/CodeSource.h"

#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace navrel {

/// What a device is served, over the wire: the replies as views of the same shapes that the owner's
/// socket has. Identifiers are those of the project file, and paths are absolute.
class WireSource final : public CodeSource {
public:
    /// Sends a request and returns its reply, as WireLink::ask does.
    using Ask = std::function<std::optional<QVariantMap>(quint32 type, const QVariantMap& request)>;

    explicit WireSource(Ask ask) : ask_(std::move(ask)) {}

    bool hasCodeMap() const override { return false; }
    CodeAnswer project() override;
    CodeAnswer version() override;
    CodeAnswer tree() override;
    CodeAnswer outline(const std::string& file) override;
    CodeAnswer types() override;
    CodeAnswer shortcuts() override;
    CodeAnswer fileTypes() override;
    CodeAnswer switchFileType(const std::string& extension, bool allowed) override;
    /// Navrel does not say over the wire how it went.
    CodeAnswer open(const std::string& file, const std::string& path, std::uint32_t line,
                    std::uint32_t column) override;

private:
    Ask ask_;
};

} // namespace navrel
