#include "codemap/Outline.h"

#include <algorithm>
#include <array>

namespace navrel {

namespace {

constexpr std::array<std::string_view, 24> kSymbolKindNames = {
    "class",    "actor",     "struct",         "union",          "enum",     "case",
    "protocol", "category",  "extension",      "implementation", "method",   "init",
    "deinit",   "subscript", "operator",       "function",       "property", "field",
    "variable", "typealias", "associatedtype", "typedef",        "macro",    "namespace",
};

constexpr std::array<std::string_view, 8> kAccessNames = {
    "", "open", "public", "package", "internal", "fileprivate", "private", "protected",
};

constexpr std::array<std::string_view, 7> kNoteKindNames = {
    "shortcut", "todo", "fixme", "hack", "xxx", "warning", "error",
};

} // namespace

std::string_view nameOf(SymbolKind kind) {
    return kSymbolKindNames[static_cast<std::size_t>(kind)];
}

bool isType(SymbolKind kind) {
    switch (kind) {
    case SymbolKind::classType:
    case SymbolKind::actor:
    case SymbolKind::structType:
    case SymbolKind::unionType:
    case SymbolKind::enumType:
    case SymbolKind::protocol:
    case SymbolKind::category:
    case SymbolKind::extension:
    case SymbolKind::implementation:
        return true;
    default:
        return false;
    }
}

std::string_view nameOf(Access access) {
    return kAccessNames[static_cast<std::size_t>(access)];
}

std::string_view nameOf(NoteKind kind) {
    return kNoteKindNames[static_cast<std::size_t>(kind)];
}

std::size_t Outline::symbolAtLine(std::uint32_t line) const {
    std::size_t found = symbols_.size();
    bool holds = false;
    std::size_t index = 0;
    std::size_t levelEnd = symbols_.size();
    while (index < levelEnd && symbols_[index].line <= line) {
        const Symbol& symbol = symbols_[index];
        if (line <= symbol.endLine) {
            found = index;
            holds = true;
            levelEnd = symbol.end;
            ++index;
        } else {
            found = holds ? found : index;
            index = symbol.end;
        }
    }
    return found;
}

std::size_t Outline::memory() const {
    return symbols_.capacity() * sizeof(Symbol) + headings_.capacity() * sizeof(Heading) +
           notes_.capacity() * sizeof(Note) + texts_.capacity();
}

} // namespace navrel
