#include "support/propertylist/PropertyListDocument.h"

#include "support/propertylist/ASCIIPropertyList.h"
#include "support/propertylist/PropertyListValues.h"
#include "support/propertylist/XMLPropertyList.h"
#include "support/text/UTF8.h"

#include <utility>

namespace navrel {

using propertylist::Node;
using propertylist::NodeKind;

namespace {

std::string_view viewOf(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

QString stringOf(std::string_view utf8) {
    return shownUTF8({utf8.data(), static_cast<qsizetype>(utf8.size())});
}

} // namespace

bool PropertyListDocument::read(QByteArray bytes, std::optional<Error>* error) {
    clear();
    const bool isRead = propertylist::isXML(viewOf(bytes)) ? readXML(bytes, error)
                                                           : readASCII(std::move(bytes), error);
    if (!isRead) {
        clear();
    }
    nodes_.trim();
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
    if (list && !append(*list)) {
        propertylist::report(error, PropertyListErrorCode::tooLarge,
                             QStringLiteral("the list has too many values"));
        return false;
    }
    return list.has_value();
}

// These are false when the list has more values than it may have.

bool PropertyListDocument::append(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return append(value.toMap());
    case QMetaType::QVariantList:
        return append(value.toList());
    case QMetaType::QString:
        return append(value.toString());
    default:
        return nodes_.append({NodeKind::scalar, 0, 0});
    }
}

bool PropertyListDocument::append(const QString& string) {
    const QByteArray text = string.toUtf8();
    const auto position = static_cast<std::uint32_t>(bytes_.size());
    bytes_ += text;
    return nodes_.append({NodeKind::string, position, static_cast<std::uint32_t>(text.size())});
}

bool PropertyListDocument::append(const QVariantMap& map) {
    const std::uint32_t node = nodes_.size();
    if (!nodes_.append({NodeKind::dictionary, 0, static_cast<std::uint32_t>(map.size())})) {
        return false;
    }
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        if (!append(entry.key()) || !append(entry.value())) {
            return false;
        }
    }
    nodes_.at(node).setPosition(nodes_.size());
    return true;
}

bool PropertyListDocument::append(const QVariantList& list) {
    const std::uint32_t node = nodes_.size();
    if (!nodes_.append({NodeKind::array, 0, static_cast<std::uint32_t>(list.size())})) {
        return false;
    }
    for (const QVariant& element : list) {
        if (!append(element)) {
            return false;
        }
    }
    nodes_.at(node).setPosition(nodes_.size());
    return true;
}

void PropertyListDocument::clear() {
    nodes_.clear();
    unescaped_ = {}; // which clearing would leave its buckets
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
