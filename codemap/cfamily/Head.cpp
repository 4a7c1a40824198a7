#include "codemap/cfamily/Head.h"

#include <algorithm>

namespace navrel::cfamily {

namespace {

/// No declaration that is written by hand is nearly as long. A head may be looked through for each
/// of its tokens, so this bounds the time that a hostile text takes.
constexpr std::size_t kMaximumTokens = 4096;

/// "operator  +" and "operator new" in one spelling: one blank between words, none before signs.
std::string textOfOperator(std::string_view text) {
    std::string result;
    bool isBlankBefore = false;
    for (const char byte : text) {
        if (isBlank(byte)) {
            isBlankBefore = true;
            continue;
        }
        if (isBlankBefore && isNameByte(byte) && isNameByte(result.back())) {
            result += ' ';
        }
        isBlankBefore = false;
        result += byte;
    }
    return result;
}

} // namespace

std::size_t Head::after(std::size_t index) const {
    const std::uint32_t partner = tokens_[index].partner;
    return partner == kNoPartner || partner < index ? index + 1 : std::size_t{partner} + 1;
}

std::size_t Head::afterAngles(std::size_t index) const {
    if (tokens_[index].partner != kNoPartner) {
        return after(index);
    }
    if (hasBrokenAngles_) {
        return index + 1;
    }
    std::size_t depth = 0;
    for (std::size_t i = index; i < tokens_.size() && !tokens_[i].is(';'); i = after(i)) {
        if (tokens_[i].is('<')) {
            ++depth;
        } else if (tokens_[i].is('>') && --depth == 0) {
            return i + 1;
        }
    }
    hasBrokenAngles_ = true;
    return index + 1;
}

void Head::push(const Token& token) {
    if (tokens_.size() >= kMaximumTokens) {
        clear();
    }
    tokens_.push_back(token);
    if (token.kind == TokenKind::sign) {
        match(token.sign);
    }
}

/// Keeps brackets and their partners. The sign is the last token.
void Head::match(Sign sign) {
    const auto index = static_cast<std::uint32_t>(tokens_.size() - 1);
    switch (sign) {
    case '(':
    case '[':
        open_.push_back(index);
        return;
    case ')':
        close('(', index);
        return;
    case ']':
        close('[', index);
        return;
    default:
        return;
    }
}

void Head::join(std::size_t opening, std::size_t closing) {
    tokens_[opening].partner = static_cast<std::uint32_t>(closing);
    tokens_[closing].partner = static_cast<std::uint32_t>(opening);
}

/// Closes the innermost bracket of a kind, and those in it that are still open.
void Head::close(Sign opening, std::size_t index) {
    const auto found = std::find_if(open_.rbegin(), open_.rend(),
                                    [this, opening](auto at) { return tokens_[at].is(opening); });
    if (found == open_.rend()) {
        return;
    }
    join(*found, index);
    open_.erase(std::prev(found.base()), open_.end());
}

void Head::clear() {
    tokens_.clear();
    open_.clear();
    hasBrokenAngles_ = false;
}

void Head::truncate(std::size_t size) {
    if (size >= tokens_.size()) {
        return;
    }
    tokens_.resize(size);
    open_.clear();
    for (std::uint32_t index = 0; index < size; ++index) {
        Token& token = tokens_[index];
        const bool isOpening = token.is('(') || token.is('[');
        if (isOpening && (token.partner == kNoPartner || token.partner >= size)) {
            token.partner = kNoPartner;
            open_.push_back(index);
        }
    }
}

std::string textOfName(const Head& head, NameRange name) {
    if (name.first == name.last && head[name.first].kind == TokenKind::word) {
        return std::string(head.textOf(name.first));
    }
    std::string text;
    for (std::size_t index = name.first; index <= name.last;) {
        const Token& token = head[index];
        if (token.is('<')) {
            index = head.afterAngles(index);
            continue;
        }
        if (token.kind == TokenKind::operatorName) {
            text += textOfOperator(head.textOf(index));
        } else if (token.is(kScopeSign)) {
            text += "::";
        } else if (token.is(Word::specifier) || token.is(Word::templateHead)) {
            // namespace a::inline b, A<T>::template B<U>::f
        } else if (token.kind == TokenKind::word || token.is('~')) {
            text += head.textOf(index);
        }
        ++index;
    }
    return text;
}

} // namespace navrel::cfamily
