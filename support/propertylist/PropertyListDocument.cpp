#include "support/propertylist/PropertyListDocument.h"

#include "support/propertylist/ASCIIPropertyList.h"
#include "support/propertylist/XMLPropertyList.h"

#include <algorithm>
#include <utility>

namespace navrel {

using propertylist::Node;
using propertylist::NodeKind;

namespace propertylist {

namespace {
// Enough for any small list, so that a first reading does not grow its memory too often.
constexpr std::size_t kFirstNodes = 1024;
} // namespace

void NodeArray::grow() {
    nodes_.resize(std::max(kFirstNodes, nodes_.size() * 2));
}

} // namespace propertylist

namespace {

std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QString stringOf(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

bool PropertyListDocument::read(QByteArray bytes, std::optional<Error>* error) {
    clear();
    const bool isRead = propertylist::isXML(viewOf(bytes)) ? readXML(bytes, error)
                                                           : readASCII(std::move(bytes), error);
    if (!isRead) {
        clear();
    }
    return isRead;
}

bool PropertyListDocument::readASCII(QByteArray bytes, std::optional<Error>* error) {
    bytes_ = std::move(bytes);
    const std::optional<propertylist::TextFailure> failure =
        propertylist::parseASCII(viewOf(bytes_), nodes_);
    if (failure && error != nullptr) {
        *error = propertylist::errorOfFailure(*failure, viewOf(bytes_));
    }
    return !failure;
}

bool PropertyListDocument::readXML(const QByteArray& bytes, std::optional<Error>* error) {
    const std::optional<QVariant> list = propertylist::readXML(bytes, error);
    if (list) {
        append(*list);
    }
    return list.has_value();
}

void PropertyListDocument::append(const QVariant& value) {
    if (value.typeId() == QMetaType::QVariantMap) {
        const QVariantMap map = value.toMap();
        const std::uint32_t node = open(NodeKind::dictionary, map.size());
        for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
            append(entry.key());
            append(entry.value());
        }
        nodes_.at(node).setPosition(nodes_.size());
    } else if (value.typeId() == QMetaType::QVariantList) {
        const QVariantList list = value.toList();
        const std::uint32_t node = open(NodeKind::array, list.size());
        for (const QVariant& element : list) {
            append(element);
        }
        nodes_.at(node).setPosition(nodes_.size());
    } else if (value.typeId() == QMetaType::QString) {
        append(value.toString());
    } else {
        nodes_.append({NodeKind::scalar, 0, 0});
    }
}

void PropertyListDocument::append(const QString& string) {
    const QByteArray text = string.toUtf8();
    nodes_.append({NodeKind::string, static_cast<std::uint32_t>(bytes_.size()),
                   static_cast<std::uint32_t>(text.size())});
    bytes_ += text;
}

std::uint32_t PropertyListDocument::open(NodeKind kind, qsizetype count) {
    nodes_.append({kind, 0, static_cast<std::uint32_t>(count)});
    return nodes_.size() - 1;
}

void PropertyListDocument::clear() {
    nodes_.clear();
    unescaped_.clear();
    bytes_.clear();
}

PropertyListDocument::Value PropertyListDocument::root() const {
    return nodes_.isEmpty() ? Value() : Value(this, 0);
}

std::string_view PropertyListDocument::bytesOf(const Node& node) const {
    return {bytes_.constData() + node.position(), node.size()};
}

std::string_view PropertyListDocument::textOf(std::uint32_t index) const {
    const Node& node = nodes_.at(index);
    if (node.kind() == NodeKind::string) {
        return bytesOf(node);
    }
    const auto [place, isNew] = unescaped_.try_emplace(index);
    if (isNew) {
        place->second = propertylist::unescaped(bytesOf(node));
    }
    return place->second;
}

bool PropertyListDocument::Value::isString() const {
    return isKind(NodeKind::string) || isKind(NodeKind::escapedString);
}

bool PropertyListDocument::Value::isArray() const {
    return isKind(NodeKind::array);
}

bool PropertyListDocument::Value::isDictionary() const {
    return isKind(NodeKind::dictionary);
}

std::string_view PropertyListDocument::Value::utf8() const {
    return isString() ? document_->textOf(index_) : std::string_view();
}

PropertyListDocument::Value PropertyListDocument::Value::operator[](std::string_view key) const {
    Value found;
    for (const auto [entryKey, value] : entries()) {
        if (entryKey.utf8() == key) {
            found = value;
        }
    }
    return found;
}

std::size_t PropertyListDocument::Value::count() const {
    return isArray() || isDictionary() ? document_->nodeAt(index_).size() : 0;
}

PropertyListDocument::Range<PropertyListDocument::ElementIterator>
PropertyListDocument::Value::elements() const {
    if (!isArray()) {
        return {ElementIterator(Value()), ElementIterator(Value())};
    }
    return {ElementIterator(firstInside()), ElementIterator(next())};
}

PropertyListDocument::Range<PropertyListDocument::EntryIterator>
PropertyListDocument::Value::entries() const {
    if (!isDictionary()) {
        return {EntryIterator(Value()), EntryIterator(Value())};
    }
    return {EntryIterator(firstInside()), EntryIterator(next())};
}

PropertyListDocument::Value PropertyListDocument::Value::firstInside() const {
    return {document_, index_ + 1};
}

QVariant PropertyListDocument::Value::toVariant() const {
    if (isString()) {
        return stringOf(utf8());
    }
    if (isArray()) {
        QVariantList list;
        list.reserve(static_cast<qsizetype>(count()));
        for (const Value element : elements()) {
            list.append(element.toVariant());
        }
        return list;
    }
    if (isDictionary()) {
        QVariantMap map;
        for (const auto [key, value] : entries()) {
            map.insert(stringOf(key.utf8()), value.toVariant());
        }
        return map;
    }
    if (isKind(NodeKind::data)) {
        return propertylist::dataOfDigits(document_->bytesOf(document_->nodeAt(index_)));
    }
    return {};
}

} // namespace navrel
