#pragma once

#include "project/store/ManagedObject.h"

#include <QByteArray>

#include <array>
#include <optional>
#include <tuple>

namespace navrel {

/// One file or group of the project tree. Text is UTF-8.
class CDObject final : public ManagedObject<CDObject, 4> {
public:
    static constexpr const char* kEntityName = "CDObject";
    static constexpr std::size_t kIdentifierKey = 0;
    static constexpr std::size_t kNameKey = 1;
    static constexpr std::size_t kParentIDKey = 2;
    static constexpr std::size_t kSubclassOfKey = 3;

    /// Of a file reference, the path's extension as spelled there, or "unknown" where no path could
    /// be resolved; nil for groups and other kinds.
    const std::optional<QByteArray>& extension() const { return extension_; }
    void setExtension(std::optional<QByteArray> value) {
        setAttribute(extension_, std::move(value));
    }

    /// The object's key in the project file, an opaque text.
    const std::optional<QByteArray>& identifier() const { return identifier_; }
    void setIdentifier(std::optional<QByteArray> value) {
        setKey(kIdentifierKey, identifier_, std::move(value));
    }

    /// 0-based position among the parent's children when the record was last built.
    std::optional<qint32> index() const { return index_; }
    void setIndex(std::optional<qint32> value) { setAttribute(index_, value); }

    std::optional<bool> isGroup() const { return isGroup_; }
    void setIsGroup(std::optional<bool> value) { setAttribute(isGroup_, value); }

    /// Modification date of `path` when the record was last built, in nanoseconds since 1970.
    std::optional<qint64> modified() const { return modified_; }
    void setModified(std::optional<qint64> value) { setAttribute(modified_, value); }

    const std::optional<QByteArray>& name() const { return name_; }
    void setName(std::optional<QByteArray> value) { setKey(kNameKey, name_, std::move(value)); }

    /// Identifier of the parent group; nil for the project's main group.
    const std::optional<QByteArray>& parentID() const { return parentID_; }
    void setParentID(std::optional<QByteArray> value) {
        setKey(kParentIDKey, parentID_, std::move(value));
    }

    /// Absolute path in the file system.
    const std::optional<QByteArray>& path() const { return path_; }
    void setPath(std::optional<QByteArray> value) { setAttribute(path_, std::move(value)); }

    /// Of a header, the superclass that it declares.
    const std::optional<QByteArray>& subclassOf() const { return subclassOf_; }
    void setSubclassOf(std::optional<QByteArray> value) {
        setKey(kSubclassOfKey, subclassOf_, std::move(value));
    }

    /// Of a file reference, the type that the project file states, or "unknown".
    const std::optional<QByteArray>& type() const { return type_; }
    void setType(std::optional<QByteArray> value) { setAttribute(type_, std::move(value)); }

    const std::optional<QByteArray>& key(std::size_t key) const {
        constexpr std::array kFields{&CDObject::identifier_, &CDObject::name_, &CDObject::parentID_,
                                     &CDObject::subclassOf_};
        return this->*kFields[key];
    }

    static constexpr auto attributes() {
        return std::tuple(
            Attribute{"extension", &CDObject::extension_},
            Attribute{"identifier", &CDObject::identifier_}, Attribute{"index", &CDObject::index_},
            Attribute{"isGroup", &CDObject::isGroup_}, Attribute{"modified", &CDObject::modified_},
            Attribute{"name", &CDObject::name_}, Attribute{"parentID", &CDObject::parentID_},
            Attribute{"path", &CDObject::path_}, Attribute{"subclassOf", &CDObject::subclassOf_},
            Attribute{"type", &CDObject::type_});
    }

private:
    std::optional<QByteArray> extension_;
    std::optional<QByteArray> identifier_;
    std::optional<qint32> index_;
    std::optional<bool> isGroup_;
    std::optional<qint64> modified_;
    std::optional<QByteArray> name_;
    std::optional<QByteArray> parentID_;
    std::optional<QByteArray> path_;
    std::optional<QByteArray> subclassOf_;
    std::optional<QByteArray> type_;
};

} // namespace navrel
