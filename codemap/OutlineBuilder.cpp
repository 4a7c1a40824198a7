#include "codemap/OutlineBuilder.h"

#include "codemap/Characters.h"
#include "codemap/TextForm.h"
#include "support/core/Assertion.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace navrel {

namespace {

// What is guessed is given back in the end, and what does not do is made larger.
constexpr std::size_t kBytesOfSymbol = 128;
constexpr std::size_t kPartOfTexts = 4;

/// The beginning of a text, at most `size` bytes of it and no part of a character.
std::string_view beginningOf(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text;
    }
    while (size > 0 && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) {
        --size;
    }
    return text.substr(0, size);
}

bool isBlank(char character) {
    return isWhiteSpace(character) || character == '\0';
}

/// How much of a text can be kept as it is: words with one blank between two.
std::size_t lengthInOneLine(std::string_view text) {
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        const bool isLast = end + 1 == text.size() || isBlank(text[end + 1]);
        if (isBlank(text[end]) && (text[end] != ' ' || isLast)) {
            break;
        }
    }
    return end;
}

} // namespace

OutlineBuilder::OutlineBuilder(Language language, std::size_t sourceSize) {
    outline_.language_ = language;
    outline_.symbols_.reserve(std::min(sourceSize / kBytesOfSymbol, kMaximumSymbolsOfSource));
    outline_.texts_.reserve(sourceSize / kPartOfTexts);
}

void OutlineBuilder::open(const Declaration& declaration) {
    open_.push_back(append(declaration));
}

void OutlineBuilder::close(std::uint32_t endLine) {
    NAVREL_ASSERT(!open_.empty());
    const std::uint32_t index = open_.back();
    open_.pop_back();
    if (index == kLeftOut) {
        return;
    }
    Symbol& symbol = outline_.symbols_[index];
    symbol.endLine = std::max(symbol.line, endLine);
    symbol.end = static_cast<std::uint32_t>(outline_.symbols_.size());
}

void OutlineBuilder::add(const Declaration& declaration, std::uint32_t endLine) {
    open(declaration);
    close(endLine);
}

void OutlineBuilder::addHeading(std::uint32_t line, std::string_view text, bool separator) {
    if (outline_.headings_.size() < kMaximumSymbolsOfSource) {
        const TextRange kept = keepInOneLine(text);
        outline_.headings_.push_back({line, separator, kept, nameLettersOf(outline_.text(kept))});
    }
}

void OutlineBuilder::addNote(NoteKind kind, std::uint32_t line, std::string_view text) {
    if (outline_.notes_.size() < kMaximumSymbolsOfSource) {
        const TextRange kept = keepInOneLine(text);
        outline_.notes_.push_back({kind, line, kept, nameLettersOf(outline_.text(kept))});
    }
}

Outline OutlineBuilder::finish(std::uint32_t lines) {
    while (!open_.empty()) {
        close(lines);
    }
    outline_.lines_ = lines;
    outline_.symbols_.shrink_to_fit();
    outline_.headings_.shrink_to_fit();
    outline_.notes_.shrink_to_fit();
    outline_.texts_.shrink_to_fit();
    return std::exchange(outline_, Outline());
}

std::uint32_t OutlineBuilder::append(const Declaration& declaration) {
    const bool fits =
        open_.size() < kMaximumOutlineDepth && outline_.symbols_.size() < kMaximumSymbolsOfSource;
    if (!fits) {
        return kLeftOut;
    }
    const auto index = static_cast<std::uint32_t>(outline_.symbols_.size());
    Symbol symbol;
    symbol.kind = declaration.kind;
    symbol.access = declaration.access;
    symbol.depth = static_cast<std::uint16_t>(open_.size());
    symbol.line = declaration.line;
    symbol.letters = nameLettersOf(declaration.name);
    symbol.signature = keepInOneLine(beginningOf(declaration.signature, kMaximumSignatureLength));
    symbol.name = keepName(declaration, symbol);
    if (!declaration.inherits.empty()) {
        symbol.inherits = keep(declaration.inherits, false);
    }
    outline_.symbols_.push_back(symbol);
    return index;
}

/// A name that is part of a signature kept as it was is that part.
TextRange OutlineBuilder::keepName(const Declaration& declaration, const Symbol& symbol) {
    const std::string_view name = declaration.name;
    const std::string_view signature = declaration.signature;
    const bool isPart =
        std::less_equal<>()(signature.data(), name.data()) &&
        std::less_equal<>()(name.data() + name.size(), signature.data() + symbol.signature.length);
    if (isPart) {
        const auto offset = static_cast<std::size_t>(name.data() - signature.data());
        const TextRange range{symbol.signature.offset + static_cast<std::uint32_t>(offset),
                              static_cast<std::uint32_t>(name.size())};
        if (outline_.text(range) == name) {
            return range;
        }
    }
    return keep(name, isASCII(symbol.letters.all));
}

TextRange OutlineBuilder::keep(std::string_view text, bool isASCII) {
    const TextRange range{static_cast<std::uint32_t>(outline_.texts_.size()),
                          static_cast<std::uint32_t>(text.size())};
    outline_.texts_ += text;
    if (!isASCII) {
        makeValid(range.offset);
    }
    return range;
}

TextRange OutlineBuilder::keepInOneLine(std::string_view text) {
    const TextForm form = formOf(text);
    return form.isOneLine ? keep(text, form.isASCII) : keepChanged(text);
}

TextRange OutlineBuilder::keepChanged(std::string_view text) {
    std::string& texts = outline_.texts_;
    const std::size_t begin = texts.size();
    while (true) {
        while (!text.empty() && isBlank(text.front())) {
            text.remove_prefix(1);
        }
        if (text.empty()) {
            break;
        }
        const std::size_t length = lengthInOneLine(text);
        texts += texts.size() > begin ? " " : "";
        texts += text.substr(0, length);
        text.remove_prefix(length);
    }
    makeValid(begin);
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(texts.size() - begin)};
}

/// Each text by itself: the end of one and the beginning of the next may look like a character.
void OutlineBuilder::makeValid(std::size_t begin) {
    std::string& texts = outline_.texts_;
    auto valid = static_cast<qsizetype>(begin);
    const auto size = static_cast<qsizetype>(texts.size());
    while ((valid += validUTF8Length({texts.data() + valid, size - valid})) < size) {
        texts[static_cast<std::size_t>(valid)] = '?';
    }
}

} // namespace navrel
