#pragma once

#include "scanning/ChunkedList.h"
#include "support/core/Assertion.h"

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <cstddef>
#include <memory_resource>
#include <optional>
#include <vector>

namespace navrel {

/// Which rules a source file is scanned by.
enum class SourceKind : quint8 {
    Header,         ///< extension "h"
    Swift,          ///< extension "swift"
    Implementation, ///< every other extension
};

/// What the scans need to know of a file beside its text.
class SourceName {
public:
    /// The path must outlive the name. Extensions are compared exactly: "H" is not "h".
    explicit SourceName(QByteArrayView path);

    SourceKind kind() const { return kind_; }
    /// The last component without its extension, UTF-8: a part of the path.
    QByteArrayView baseName() const;

private:
    QByteArrayView path_;
    SourceKind kind_;
};

enum class ElementType : quint8 { Class, Method, Mark, Warning, Shortcut, Property };

/// The type as the store and the device know it: "class", "method" and so on.
const QByteArray& nameOfElementType(ElementType type);

/// One code element.
struct SourceElement {
    ElementType type;
    quint32 line; ///< 1-based
    QByteArrayView name;
};

/// One shortcut comment.
struct SourceShortcut {
    quint32 line; ///< 1-based
    QByteArrayView text;
};

/// What a scan found in one file. Texts are UTF-8 and lie partly in the scanned text, partly here:
/// valid while both stay as they are. Kept from file to file, it soon allocates no more; what a
/// list of more than `kMostKeptRecords` took is given back.
class SourceFindings {
public:
    SourceFindings() = default;
    SourceFindings(const SourceFindings&) = delete;
    SourceFindings& operator=(const SourceFindings&) = delete;

    /// A list of more records is a text made to fill the memory: the rest is left out. The largest
    /// sources that people keep hold some ten thousands.
    static constexpr std::size_t kMostRecords = 1'000'000;

    /// Above what the largest sources take; 1.5 MiB a list.
    static constexpr std::size_t kMostKeptRecords = 98'304;

    static constexpr qsizetype kLongestName = (qsizetype(1) << 29) - 1;

    void clear();

    /// How many records there is memory for, in all lists together.
    std::size_t recordCapacity() const;

    /// The superclass that a header declares for the class of its own name, maybe the empty text;
    /// nil where it declares none, and for other files.
    const std::optional<QByteArrayView>& superclass() const { return superclass_; }
    void setSuperclass(QByteArrayView name) { superclass_ = name; }

    /// In order of line, at most one a line.
    const std::vector<SourceShortcut>& shortcuts() const { return shortcuts_; }
    /// A shortcut on the line of the last one takes its place.
    void addShortcut(const SourceShortcut& shortcut);

    /// Calls `visit` with each element: all classes first, then all methods, marks and warnings,
    /// shortcuts, properties, each of these lists in order of position.
    template <typename Visitor>
    void visitElements(Visitor visit) const {
        for (const auto& list : elements_) {
            list.visitAll([&visit](const PackedElement& element) { visit(element.unpacked()); });
        }
    }
    /// Elements of one list come in order of position; the lists may be filled side by side. No
    /// name is longer than `kLongestName` bytes.
    void addElement(const SourceElement& element) {
        NAVREL_ASSERT(element.name.size() <= kLongestName);
        elements_[kListOfType[static_cast<std::size_t>(element.type)]].append(
            {element.name.data(), element.line, static_cast<quint32>(element.type) & 7U,
             static_cast<quint32>(element.name.size()) & quint32(kLongestName)});
    }

    /// Room for a text that is not part of the scanned one, as long as the findings live.
    char* allocateText(qsizetype size) {
        return static_cast<char*>(texts_.allocate(static_cast<std::size_t>(size), 1));
    }
    QByteArrayView keepText(QByteArrayView text);

private:
    /// An element in two thirds of its size: texts made of nothing but elements are bounded by the
    /// memory that is written.
    struct PackedElement {
        const char* name;
        quint32 line;
        quint32 type : 3;
        quint32 nameLength : 29;

        SourceElement unpacked() const {
            return {ElementType(type), line, {name, qsizetype(nameLength)}};
        }
    };

    static constexpr std::size_t kListCount = 5;
    /// The list of each type, in the order of ElementType: marks and warnings share one.
    static constexpr std::array<quint8, 6> kListOfType = {0, 1, 2, 2, 3, 4};
    /// Holds the made-up names of an ordinary file.
    static constexpr std::size_t kFirstTextSize = std::size_t(64) * 1024;

    std::optional<QByteArrayView> superclass_;
    std::vector<SourceShortcut> shortcuts_;
    std::array<ChunkedList<PackedElement, kMostRecords>, kListCount> elements_;
    std::array<std::byte, kFirstTextSize> firstTexts_;
    std::pmr::monotonic_buffer_resource texts_{firstTexts_.data(), firstTexts_.size()};
};

} // namespace navrel
