#pragma once

#include "codemap/Outline.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace navrel {

/// Declarations nest no deeper in an outline: what lies deeper is left out.
inline constexpr std::size_t kMaximumOutlineDepth = 512;
/// One source has no more symbols, headings or notes each in its outline: the rest is left out.
inline constexpr std::size_t kMaximumSymbolsOfSource = 250'000;
/// A signature is cut off behind so many bytes: more than any screen shows of it.
inline constexpr std::size_t kMaximumSignatureLength = 1000;

/// What a recogniser of declarations writes its findings into, in the order of the text. Texts are
/// copied. One outline a builder.
class OutlineBuilder {
public:
    /// Room is made beforehand for what a source of so many bytes usually declares.
    explicit OutlineBuilder(Language language, std::size_t sourceSize = 0);

    struct Declaration {
        SymbolKind kind{};
        Access access = Access::unstated;
        std::uint32_t line = 0;     ///< of the name, from 1
        std::string_view name;      ///< kept once if it is a part of the signature's memory
        std::string_view signature; ///< without comments; runs of white space become one blank
        std::string_view inherits;  ///< names, a line feed between two
    };

    /// Adds a declaration inside the innermost open one, and opens it.
    void open(const Declaration& declaration);
    /// Ends the innermost open declaration. One must be open.
    void close(std::uint32_t endLine);
    /// Adds a declaration with nothing inside.
    void add(const Declaration& declaration, std::uint32_t endLine);
    /// How many declarations are open.
    std::size_t depth() const { return open_.size(); }

    void addHeading(std::uint32_t line, std::string_view text, bool separator);
    void addNote(NoteKind kind, std::uint32_t line, std::string_view text);

    /// The outline; closes what is still open at the last line. Bytes that are no UTF-8 become "?"
    /// in its texts. The builder is empty afterwards.
    Outline finish(std::uint32_t lines);

private:
    static constexpr std::uint32_t kLeftOut = UINT32_MAX;

    std::uint32_t append(const Declaration& declaration);
    TextRange keep(std::string_view text, bool isASCII);
    TextRange keepInOneLine(std::string_view text);
    TextRange keepChanged(std::string_view text);
    TextRange keepName(const Declaration& declaration, const Symbol& symbol);
    void makeValid(std::size_t begin);

    Outline outline_;
    std::vector<std::uint32_t> open_; // indexes of symbols, or kLeftOut
};

} // namespace navrel
