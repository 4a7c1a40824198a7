#pragma once

#include "project/store/ManagedObject.h"

#include <QByteArray>

#include <optional>
#include <tuple>

namespace navrel {

/// One shortcut comment of a source file. Text is UTF-8.
class CDShortcut final : public ManagedObject<CDShortcut, 1> {
public:
    static constexpr const char* kEntityName = "CDShortcut";
    static constexpr std::size_t kIdentifierKey = 0;

    /// Identifier of the file's CDObject.
    const std::optional<QByteArray>& identifier() const { return identifier_; }
    void setIdentifier(std::optional<QByteArray> value) {
        setKey(kIdentifierKey, identifier_, std::move(value));
    }

    /// 1-based line in the file.
    std::optional<qint64> line() const { return line_; }
    void setLine(std::optional<qint64> value) { setAttribute(line_, value); }

    /// The file's name.
    const std::optional<QByteArray>& name() const { return name_; }
    void setName(std::optional<QByteArray> value) { setAttribute(name_, std::move(value)); }

    /// The file's path.
    const std::optional<QByteArray>& path() const { return path_; }
    void setPath(std::optional<QByteArray> value) { setAttribute(path_, std::move(value)); }

    /// The comment's text.
    const std::optional<QByteArray>& shortcut() const { return shortcut_; }
    void setShortcut(std::optional<QByteArray> value) { setAttribute(shortcut_, std::move(value)); }

    const std::optional<QByteArray>& key(std::size_t) const { return identifier_; }

    static constexpr auto attributes() {
        return std::tuple(
            Attribute{"identifier", &CDShortcut::identifier_},
            Attribute{"line", &CDShortcut::line_}, Attribute{"name", &CDShortcut::name_},
            Attribute{"path", &CDShortcut::path_}, Attribute{"shortcut", &CDShortcut::shortcut_});
    }

private:
    std::optional<QByteArray> identifier_;
    std::optional<qint64> line_;
    std::optional<QByteArray> name_;
    std::optional<QByteArray> path_;
    std::optional<QByteArray> shortcut_;
};

} // namespace navrel
