#pragma once

#include "codemap/Language.h"
#include "codemap/NameLetters.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace navrel {

/// What a declaration declares.
enum class SymbolKind : std::uint8_t {
    classType,
    actor,
    structType,
    unionType,
    enumType,
    enumCase,
    protocol,
    category,
    extension,
    implementation,
    method,
    initializer,
    deinitializer,
    subscript,
    operatorFunction,
    function,
    property,
    field,
    variable,
    typeAlias,
    associatedType,
    typeDefinition,
    macro,
    namespaceScope,
};

/// As clients see it: "class", "case", "init", "typedef" …
std::string_view nameOf(SymbolKind kind);

/// Whether symbols of a kind are types that others can derive from, conform to or extend.
bool isType(SymbolKind kind);

/// Who may use a declaration, where the source says so.
enum class Access : std::uint8_t {
    unstated,
    open,
    publicAccess,
    package,
    internal,
    fileprivate,
    privateAccess,
    protectedAccess,
};

/// As clients see it: "open", "public", "private" …; empty where the source says nothing.
std::string_view nameOf(Access access);

/// Where a text lies in an outline's own memory.
struct TextRange {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
};

/// One declaration. Its texts are read through its outline.
struct Symbol {
    SymbolKind kind{};
    Access access = Access::unstated;
    std::uint16_t depth = 0;   ///< 0 at file level
    std::uint32_t line = 0;    ///< of the name, from 1
    std::uint32_t endLine = 0; ///< the declaration's last line, from 1; at least `line`
    /// Index after the last symbol that is declared inside this one: its own index + 1 where there
    /// is none.
    std::uint32_t end = 0;
    TextRange name;
    TextRange signature; ///< the declaration without its body, in one line
    TextRange inherits;  ///< superclass and protocols in their order and without their generic
                         ///< arguments, a line feed between two
    NameLetters letters; ///< the name's
};

/// A heading between declarations.
struct Heading {
    std::uint32_t line = 0; ///< from 1
    bool separator = false; ///< whether it asks for a dividing line
    TextRange text;         ///< may be empty where it is a separator
    NameLetters letters;    ///< the text's
};

enum class NoteKind : std::uint8_t { shortcut, todo, fixme, hack, xxx, warning, error };

/// As clients see it: "shortcut", "todo" …
std::string_view nameOf(NoteKind kind);

/// What somebody wrote down beside the code.
struct Note {
    NoteKind kind{};
    std::uint32_t line = 0; ///< from 1
    TextRange text;
    NameLetters letters; ///< the text's
};

/// What one source declares, in the order of the text: each symbol before those declared inside it.
/// Immutable once built; any thread. All texts are valid UTF-8.
class Outline {
public:
    Language language() const { return language_; }
    /// How many lines the source has; an empty one has none.
    std::uint32_t lines() const { return lines_; }

    const std::vector<Symbol>& symbols() const { return symbols_; }
    const std::vector<Heading>& headings() const { return headings_; }
    const std::vector<Note>& notes() const { return notes_; }

    /// A text of this outline. The view lives as long as the outline.
    std::string_view text(TextRange range) const {
        return std::string_view(texts_).substr(range.offset, range.length);
    }
    std::string_view nameOf(const Symbol& symbol) const { return text(symbol.name); }

    /// Index of the innermost symbol that holds a line (from 1), or else of the last one before it
    /// at file level; `symbols().size()` where the line lies before all.
    std::size_t symbolAtLine(std::uint32_t line) const;

    /// Bytes on the heap.
    std::size_t memory() const;

private:
    friend class OutlineBuilder;

    Language language_ = Language::none;
    std::uint32_t lines_ = 0;
    std::vector<Symbol> symbols_;
    std::vector<Heading> headings_;
    std::vector<Note> notes_;
    std::string texts_;
};

} // namespace navrel
