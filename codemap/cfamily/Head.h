#pragma once

#include "codemap/cfamily/Token.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace navrel::cfamily {

/// The tokens of a declaration so far: what stands before its body, or before its semicolon.
/// Brackets know their partners, so that readers step over groups.
class Head {
public:
    explicit Head(std::string_view text) : text_(text) {
        tokens_.reserve(kUsualTokens);
        open_.reserve(kUsualTokens);
    }

    std::string_view text() const { return text_; }
    bool empty() const { return tokens_.empty(); }
    std::size_t size() const { return tokens_.size(); }
    const Token& operator[](std::size_t index) const { return tokens_[index]; }
    const Token& back() const { return tokens_.back(); }
    std::string_view textOf(std::size_t index) const { return tokens_[index].in(text_); }
    bool is(std::size_t index, Sign sign) const {
        return index < size() && tokens_[index].is(sign);
    }
    bool is(std::size_t index, Word word) const {
        return index < size() && tokens_[index].is(word);
    }

    /// Whether a bracket is open.
    bool isNested() const { return !open_.empty(); }
    /// The index after a token, or after the group that it opens.
    std::size_t after(std::size_t index) const;
    /// The index after a "<" and what it encloses; `index + 1` where nothing closes it.
    std::size_t afterAngles(std::size_t index) const;

    /// Adds a token. A head that is too long for a declaration starts again.
    void push(const Token& token);
    /// Makes two tokens partners, as brackets are.
    void join(std::size_t opening, std::size_t closing);
    /// Goes on as if all open brackets were closed.
    void abandonGroups() { open_.clear(); }
    void clear();
    /// Forgets the tokens from an index on.
    void truncate(std::size_t size);

private:
    /// Heads that are longer take more room.
    static constexpr std::size_t kUsualTokens = 64;

    void match(Sign sign);
    void close(Sign opening, std::size_t index);

    std::string_view text_;
    std::vector<Token> tokens_;
    std::vector<std::uint32_t> open_;
    /// Angles that nothing closes are looked for once a head, so that time stays linear.
    mutable bool hasBrokenAngles_ = false;
};

/// Some tokens of a head that are a name: "A::f", "~A", "operator+".
struct NameRange {
    std::size_t first = SIZE_MAX;
    std::size_t last = 0;

    bool isValid() const { return first != SIZE_MAX; }
};

/// The name as clients see it: without white space and template arguments.
std::string textOfName(const Head& head, NameRange name);

} // namespace navrel::cfamily
