#include "tests/codemap/OutlineText.h"

#include <algorithm>

namespace navrel {

namespace {

constexpr std::size_t kIndent = 4;

std::string textOf(const Outline& outline, const Symbol& symbol) {
    std::string text(symbol.depth * kIndent, ' ');
    text += nameOf(symbol.kind);
    text += ' ';
    text += outline.nameOf(symbol);
    text += ' ' + std::to_string(symbol.line) + '-' + std::to_string(symbol.endLine);
    if (symbol.access != Access::unstated) {
        text += ' ';
        text += nameOf(symbol.access);
    }
    const char* separator = " : ";
    std::string_view inherits = outline.text(symbol.inherits);
    while (!inherits.empty()) {
        const std::size_t end = std::min(inherits.find('\n'), inherits.size());
        text += separator;
        text += inherits.substr(0, end);
        inherits.remove_prefix(std::min(end + 1, inherits.size()));
        separator = ", ";
    }
    return text + '\n';
}

} // namespace

std::string textOf(const Outline& outline) {
    std::string text;
    for (const Symbol& symbol : outline.symbols()) {
        text += textOf(outline, symbol);
    }
    for (const Heading& heading : outline.headings()) {
        text += "heading " + std::to_string(heading.line) + (heading.separator ? " -" : "");
        text += heading.text.length > 0 ? " " : "";
        text += outline.text(heading.text);
        text += '\n';
    }
    for (const Note& note : outline.notes()) {
        text += "note " + std::to_string(note.line) + ' ';
        text += nameOf(note.kind);
        text += note.text.length > 0 ? " " : "";
        text += outline.text(note.text);
        text += '\n';
    }
    return text;
}

} // namespace navrel
