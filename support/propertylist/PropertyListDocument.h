#pragma once

#include "support/core/Error.h"
#include "support/propertylist/NodeArray.h"

#include <QByteArray>
#include <QVariant>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace navrel {

/// A property list in the old-style ASCII format, or in XML, as a flat array of small nodes over
/// the list's bytes. It serves project files, which are read again whenever they change: reading
/// copies no text, and the memory of the nodes is kept from one reading to the next, unless it is
/// many times what the new list takes. One thread at a time, readers of values included (escapes
/// are undone when a string is first looked at).
class PropertyListDocument {
public:
    class Value;
    struct Entry;
    class ElementIterator;
    class EntryIterator;
    template <typename Iterator>
    class Range;

    /// For lists of up to so many values, at all levels, keys included.
    explicit PropertyListDocument(std::size_t mostValues = kMaxPropertyListNodes)
        : nodes_(mostValues) {}
    PropertyListDocument(const PropertyListDocument&) = delete;
    PropertyListDocument& operator=(const PropertyListDocument&) = delete;

    /// Reads a list in place of the one before; XML is tried first. The bytes are kept alive by the
    /// document, and must not change where they are raw data. False when they are no list, with
    /// "line L, column C: what was expected" in `error` where it is given; the document is then
    /// empty. Every value taken from the document before is dead, however it ends.
    bool read(QByteArray bytes, std::optional<Error>* error = nullptr);

    /// The list's outermost value; nothing while the document is empty.
    Value root() const;

    /// How many values the list has, at all levels, keys included.
    std::size_t valueCount() const { return nodes_.size(); }

private:
    bool readASCII(QByteArray bytes, std::optional<Error>* error);
    bool readXML(const QByteArray& bytes, std::optional<Error>* error);
    bool append(const QVariant& value);
    bool append(const QString& string);
    bool append(const QVariantMap& map);
    bool append(const QVariantList& list);
    void clear();

    const propertylist::Node& nodeAt(std::uint32_t index) const { return nodes_.at(index); }
    std::uint32_t indexAfter(std::uint32_t index) const {
        const propertylist::Node& node = nodeAt(index);
        return node.isContainer() ? node.position() : index + 1;
    }
    std::string_view bytesOf(const propertylist::Node& node) const;
    std::string_view textOf(std::uint32_t index) const;

    QByteArray bytes_; // what was read; for XML, the texts of its strings end to end
    propertylist::NodeArray nodes_;
    // The text of strings with escapes, by node, from the first look on.
    mutable std::unordered_map<std::uint32_t, std::string> unescaped_;
};

/// A light view of one value, or of nothing: what is not there is a view too, so that look-ups can
/// be chained. Valid until its document is read again or destroyed.
class PropertyListDocument::Value {
public:
    /// Nothing.
    Value() = default;

    explicit operator bool() const { return document_ != nullptr; }

    bool isString() const;
    bool isArray() const;
    bool isDictionary() const;

    /// A string's text, without quotes and escapes, as UTF-8 in the document's memory; empty for
    /// everything else.
    std::string_view utf8() const;

    /// The value of a dictionary's key, the last one where the key is repeated; nothing for an
    /// absent key and for other kinds. Compares every key: for many look-ups in a large dictionary
    /// there is PropertyListIndex.
    Value operator[](std::string_view key) const;

    /// How many elements an array, or entries (repeated keys each count) a dictionary has; else 0.
    std::size_t count() const;

    /// An array's values in order; none for other kinds.
    Range<ElementIterator> elements() const;

    /// A dictionary's entries, repeated keys included; none for other kinds. In the order of the
    /// bytes for the ASCII format, in the order of the keys for XML.
    Range<EntryIterator> entries() const;

    /// The value as maps, lists, strings and bytes, the last of repeated keys winning. An invalid
    /// variant for nothing, and for what XML has beside these (numbers, booleans, dates and data),
    /// of which the document keeps no value.
    QVariant toVariant() const;

private:
    friend class PropertyListDocument;
    friend class ElementIterator;
    friend class EntryIterator;
    friend class PropertyListIndex;

    Value(const PropertyListDocument* document, std::uint32_t index)
        : document_(document), index_(index) {}
    bool operator==(const Value& other) const = default;
    bool isKind(propertylist::NodeKind kind) const {
        return document_ != nullptr && document_->nodeAt(index_).kind() == kind;
    }
    Value next() const { return {document_, document_->indexAfter(index_)}; }
    Value firstInside() const;

    const PropertyListDocument* document_ = nullptr;
    std::uint32_t index_ = 0;
};

/// One entry of a dictionary. The key is a string.
struct PropertyListDocument::Entry {
    Value key;
    Value value;
};

class PropertyListDocument::ElementIterator {
public:
    explicit ElementIterator(Value position) : position_(position) {}
    Value operator*() const { return position_; }
    ElementIterator& operator++() {
        position_ = position_.next();
        return *this;
    }
    bool operator==(const ElementIterator& other) const { return position_ == other.position_; }

private:
    Value position_;
};

class PropertyListDocument::EntryIterator {
public:
    explicit EntryIterator(Value position) : position_(position) {}
    Entry operator*() const { return {position_, position_.next()}; }
    EntryIterator& operator++() {
        position_ = position_.next().next();
        return *this;
    }
    bool operator==(const EntryIterator& other) const { return position_ == other.position_; }

private:
    Value position_;
};

/// What a range-based for runs over.
template <typename Iterator>
class PropertyListDocument::Range {
public:
    Range(Iterator begin, Iterator end) : begin_(begin), end_(end) {}
    Iterator begin() const { return begin_; }
    Iterator end() const { return end_; }

private:
    Iterator begin_;
    Iterator end_;
};

} // namespace navrel
