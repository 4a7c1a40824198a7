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

/// The rules by which a source file is scanned.
enum class SourceKind : quint8 {
    Header,         ///< extension "h"
    Swift,          ///< extension "swift"
    Implementation, ///< every other extension
};

/// What a scan needs to know about a file, besides its text.
class SourceName {
public:
    /// The path is not copied, and must outlive this. Extensions are compared exactly: "H" is not
    /// "h".
    explicit SourceName(QByteArrayView path);

    SourceKind kind() const { return kind_; }
    /// The last component without its extension, UTF-8; a part of the path.
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

/// The findings of a scan of one file. Texts are UTF-8. Some refer to the scanned text and some to
/// memory of this object: valid while neither changes. Use one object for many files: it keeps its
/// memory, except that of lists of more than `kMostKeptRecords`. One thread at a time.
class SourceFindings {
public:
    SourceFindings() = default;
    SourceFindings(const SourceFindings&) = delete;
    SourceFindings& operator=(const SourceFindings&) = delete;

    /// Further records of a list are left out: a text with more is made to fill the memory. The
    /// largest real sources have some ten thousand.
    static constexpr std::size_t kMostRecords = 1'000'000;

    /// More than the largest real sources need; 1.5 MiB for each list.
    static constexpr std::size_t kMostKeptRecords = 98'304;

    static constexpr qsizetype kLongestName = (qsizetype(1) << 29) - 1;

    void clear();

    /// The number of records that fit into the memory of all lists together.
    std::size_t recordCapacity() const;

    /// The superclass that a header declares for the class named like the header, which may be
    /// empty; nil if it declares none, and for other files.
    const std::optional<QByteArrayView>& superclass() const { return superclass_; }
    void setSuperclass(QByteArrayView name) { superclass_ = name; }

    /// In order of line, at most one on each line.
    const std::vector<SourceShortcut>& shortcuts() const { return shortcuts_; }
    /// Adds a shortcut. One on the same line as the last replaces that.
    void addShortcut(const SourceShortcut& shortcut);

    /// Calls `visit` with each element: all classes first, then all methods, marks and warnings,
    /// shortcuts, properties, each of these lists in order of position.
    template <typename Visitor>
    void visitElements(Visitor visit) const {
        for (const auto& list : elements_) {
            list.visitAll([&visit](const PackedElement& element) { visit(element.unpacked()); });
        }
    }
    /// Adds an element. Those of one list must come in order of position; the lists may be filled
    /// in any order. A name of more than `kLongestName` bytes aborts the program.
    void addElement(const SourceElement& element) {
        NAVREL_ASSERT(element.name.size() <= kLongestName);
        elements_[kListOfType[static_cast<std::size_t>(element.type)]].append(
            {element.name.data(), element.line, static_cast<quint32>(element.type) & 7U,
             static_cast<quint32>(element.name.size()) & quint32(kLongestName)});
    }

    /// Allocates memory for a text that is not part of the scanned one. Valid until `clear`.
    char* allocateText(qsizetype size) {
        return static_cast<char*>(texts_.allocate(static_cast<std::size_t>(size), 1));
    }
    QByteArrayView keepText(QByteArrayView text);

private:
    /// An element in two thirds of its size, since writing them takes most of the time for a text
    /// that is nothing but elements.
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
    /// In bytes: room for the composed names of an ordinary file.
    static constexpr std::size_t kFirstTextSize = std::size_t(64) * 1024;

    std::optional<QByteArrayView> superclass_;
    std::vector<SourceShortcut> shortcuts_;
    std::array<ChunkedList<PackedElement, kMostRecords>, kListCount> elements_;
    std::array<std::byte, kFirstTextSize> firstTexts_;
    std::pmr::monotonic_buffer_resource texts_{firstTexts_.data(), firstTexts_.size()};
};

} // namespace navrel
