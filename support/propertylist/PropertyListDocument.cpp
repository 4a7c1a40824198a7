#include "support/propertylist/PropertyListDocument.h"

#include "support/propertylist/ASCIIPropertyList.h"

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

QString stringOf(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

} // namespace

bool PropertyListDocument::read(QByteArray bytes, std::optional<Error>* error) {
    clear();
    bytes_ = std::move(bytes);
    const std::string_view text(bytes_.constData(), static_cast<std::size_t>(bytes_.size()));
    const std::optional<propertylist::ASCIIFailure> failure =
        propertylist::parseASCII(text, nodes_);
    if (!failure) {
        return true;
    }
    if (error != nullptr) {
        *error = propertylist::errorOfFailure(*failure, text);
    }
    clear();
    return false;
}

void PropertyListDocument::clear() {
    nodes_.clear();
    unescaped_.clear();
    bytes_.clear();
}

PropertyListDocument::Value PropertyListDocument::root() const {
    return nodes_.isEmpty() ? Value() : Value(this, 0);
}

std::uint32_t PropertyListDocument::indexAfter(std::uint32_t index) const {
    const Node& node = nodes_.at(index);
    return node.isContainer() ? node.position() : index + 1;
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

bool PropertyListDocument::Value::isKind(NodeKind kind) const {
    return document_ != nullptr && document_->nodeAt(index_).kind() == kind;
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

PropertyListDocument::Value PropertyListDocument::Value::next() const {
    return {document_, document_->indexAfter(index_)};
}

PropertyListDocument::Value PropertyListDocument::Value::firstInside() const {
    return {document_, index_ + 1};
}

PropertyListDocument::ElementIterator& PropertyListDocument::ElementIterator::operator++() {
    position_ = position_.next();
    return *this;
}

PropertyListDocument::EntryIterator& PropertyListDocument::EntryIterator::operator++() {
    position_ = position_.next().next();
    return *this;
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
