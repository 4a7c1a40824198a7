#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace navrel::cfamily {

class Lexer;

/// Finds the brace that closes another, for looking at what follows a body before it is read. What
/// was found on the way is remembered, so that nested bodies are not passed over again.
class BraceMatcher {
public:
    /// The place of the brace that closes the one at `opening`; the text's size where none does.
    /// Leaves the lexer anywhere.
    std::size_t closingOf(std::size_t opening, Lexer& lexer);

private:
    void search(std::size_t opening, Lexer& lexer);
    void readDirective(std::string_view line);

    std::vector<std::pair<std::size_t, std::size_t>> pairs_; ///< in the order of the opening ones
    std::vector<std::size_t> open_;                          ///< indexes of pairs
    std::vector<std::size_t> conditions_;                    ///< how many were open at each #if
    std::size_t end_ = 0;                                    ///< what is before it is known
};

} // namespace navrel::cfamily
