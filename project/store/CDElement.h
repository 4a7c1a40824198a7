#pragma once

#include "project/store/ManagedObject.h"

#include <QByteArray>

#include <optional>
#include <tuple>

namespace navrel {

/// One code element of a source file. Text is UTF-8.
class CDElement final : public ManagedObject<CDElement, 1> {
public:
    static constexpr const char* kEntityName = "CDElement";
    static constexpr std::size_t kIdentifierKey = 0;

    /// Identifier of the file's CDObject.
    const std::optional<QByteArray>& identifier() const { return identifier_; }
    void setIdentifier(std::optional<QByteArray> value) {
        setKey(kIdentifierKey, identifier_, std::move(value));
    }

    /// 1-based line in the file.
    std::optional<qint64> line() const { return line_; }
    void setLine(std::optional<qint64> value) { setAttribute(line_, value); }

    const std::optional<QByteArray>& name() const { return name_; }
    void setName(std::optional<QByteArray> value) { setAttribute(name_, std::move(value)); }

    /// The file's path.
    const std::optional<QByteArray>& path() const { return path_; }
    void setPath(std::optional<QByteArray> value) { setAttribute(path_, std::move(value)); }

    /// "class", "method", "mark", "warning", "shortcut" or "property".
    const std::optional<QByteArray>& type() const { return type_; }
    void setType(std::optional<QByteArray> value) { setAttribute(type_, std::move(value)); }

    const std::optional<QByteArray>& key(std::size_t) const { return identifier_; }

    static constexpr auto attributes() {
        return std::tuple(
            Attribute{"identifier", &CDElement::identifier_}, Attribute{"line", &CDElement::line_},
            Attribute{"name", &CDElement::name_}, Attribute{"path", &CDElement::path_},
            Attribute{"type", &CDElement::type_});
    }

private:
    std::optional<QByteArray> identifier_;
    std::optional<qint64> line_;
    std::optional<QByteArray> name_;
    std::optional<QByteArray> path_;
    std::optional<QByteArray> type_;
};

} // namespace navrel
