#pragma once

#include "codemap/Outline.h"
#include "codemap/OutlineBuilder.h"
#include "support/core/Assertion.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace navrel {

/// What holds for the outline of any text.
class OutlineInvariants {
public:
    OutlineInvariants(const Outline& outline, std::string_view text)
        : outline_(outline), text_(text) {}

    void check() const {
        NAVREL_ASSERT(outline_.lines() == linesOfText());
        checkSymbols();
        checkHeadings();
        checkNotes();
    }

private:
    std::uint32_t linesOfText() const {
        const auto feeds = static_cast<std::uint32_t>(std::count(text_.begin(), text_.end(), '\n'));
        return feeds + (!text_.empty() && text_.back() != '\n' ? 1 : 0);
    }

    void checkLine(std::uint32_t line) const {
        NAVREL_ASSERT(line >= 1 && line <= std::max(outline_.lines(), 1u));
    }

    void checkText(TextRange range) const {
        const std::string_view text = outline_.text(range);
        NAVREL_ASSERT(text.size() == range.length);
        NAVREL_ASSERT(isValidUTF8({text.data(), static_cast<qsizetype>(text.size())}));
    }

    /// Lines are within the text and in order, and what is inside a symbol lies between its lines.
    void checkSymbols() const {
        const auto& symbols = outline_.symbols();
        NAVREL_ASSERT(symbols.size() <= kMaximumSymbolsOfSource);
        std::uint32_t line = 1;
        std::size_t depth = 0;
        for (std::size_t index = 0; index < symbols.size(); ++index) {
            const Symbol& symbol = symbols[index];
            checkLine(symbol.line);
            checkLine(symbol.endLine);
            NAVREL_ASSERT(symbol.line >= line && symbol.endLine >= symbol.line);
            NAVREL_ASSERT(symbol.depth <= depth && symbol.depth < kMaximumOutlineDepth);
            NAVREL_ASSERT(symbol.end > index && symbol.end <= symbols.size());
            line = symbol.line;
            depth = symbol.depth + std::size_t(1);
            checkInside(index);
            checkText(symbol.name);
            checkText(symbol.signature);
            checkText(symbol.inherits);
        }
    }

    /// The symbols from the next one to the end are inside, and the one at the end is not.
    void checkInside(std::size_t index) const {
        const auto& symbols = outline_.symbols();
        const Symbol& symbol = symbols[index];
        if (symbol.end < symbols.size()) {
            NAVREL_ASSERT(symbols[symbol.end].depth <= symbol.depth);
        }
        for (std::size_t child = index + 1; child < symbol.end; child = symbols[child].end) {
            NAVREL_ASSERT(symbols[child].depth == symbol.depth + 1);
            NAVREL_ASSERT(symbols[child].end <= symbol.end);
            NAVREL_ASSERT(symbols[child].endLine <= symbol.endLine);
        }
    }

    void checkHeadings() const {
        for (const Heading& heading : outline_.headings()) {
            checkLine(heading.line);
            checkText(heading.text);
        }
    }

    void checkNotes() const {
        for (const Note& note : outline_.notes()) {
            checkLine(note.line);
            checkText(note.text);
        }
    }

    const Outline& outline_;
    std::string_view text_;
};

} // namespace navrel
