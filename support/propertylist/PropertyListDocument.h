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

/// A property list, read from the old-style ASCII format or XML, as a flat array of small nodes
/// that refer to the list's bytes. It is for project files, which are read again whenever they
/// change: reading ASCII copies no text, and the memory of the nodes is reused. One thread at a
/// time, even for reading values: escapes are decoded when a string is first read.
class PropertyListDocument {
public:
    class Value;
    struct Entry;
    class ElementIterator;
    class EntryIterator;
    template <typename Iterator>
    class Range;

    /// Lists of more than `mostValues` values, at all levels, including keys, are not read.
    explicit PropertyListDocument(std::size_t mostValues = kMaxPropertyListNodes)
        : nodes_(mostValues) {}
    PropertyListDocument(const PropertyListDocument&) = delete;
    PropertyListDocument& operator=(const PropertyListDocument&) = delete;

    /// Reads a list in place of the one before. The document keeps a reference to the bytes; raw
    /// data (QByteArray::fromRawData) must outlive it and not change. False if they are not a list,
    /// with "line L, column C: what was expected" in `error` unless that is null; the document is
    /// empty then. In either case, values taken before must not be used any more.
    bool read(QByteArray bytes, std::optional<Error>* error = nullptr);

    /// The outermost value of the list; nothing if the document is empty.
    Value root() const;

    /// How many values the list has, at all levels, including keys.
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
    // The decoded text of strings with escapes, by node; added when first read.
    mutable std::unordered_map<std::uint32_t, std::string> unescaped_;
};

/// A view of one value, or of nothing, which is cheap to copy. A missing value is a view of
/// nothing, so look-ups can be chained. Valid until its document reads again or is destroyed.
class PropertyListDocument::Value {
public:
    /// Nothing.
    Value() = default;

    explicit operator bool() const { return document_ != nullptr; }

    bool isString() const;
    bool isArray() const;
    bool isDictionary() const;

    /// The decoded text of a string, as UTF-8 in the document's memory; empty for other kinds.
    std::string_view utf8() const;

    /// The value of a key of a dictionary, the last one if the key is repeated; nothing for an
    /// absent key and for other kinds. Compares all keys: for many look-ups in a large dictionary,
    /// use PropertyListIndex.
    Value operator[](std::string_view key) const;

    /// The number of elements of an array, or of entries of a dictionary, where repeated keys each
    /// count; 0 for other kinds.
    std::size_t count() const;

    /// The values of an array in order; none for other kinds.
    Range<ElementIterator> elements() const;

    /// The entries of a dictionary, including repeated keys; none for other kinds. In the order of
    /// the file for the ASCII format, in the order of the keys for XML.
    Range<EntryIterator> entries() const;

    /// The value as maps, lists, strings and bytes; the last of repeated keys wins. An invalid
    /// variant for nothing, and for the other kinds of XML (numbers, booleans, dates and data),
    /// whose values the document does not keep.
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

/// A range for range-based for loops.
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
