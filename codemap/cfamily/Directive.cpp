#include "codemap/cfamily/Directive.h"

#include "codemap/cfamily/Token.h"

#include <algorithm>
#include <array>

namespace navrel::cfamily {

namespace {

using Kind = Directive::Kind;

struct DirectiveWord {
    std::string_view word;
    Kind kind;
};

constexpr std::array kDirectiveWords = {
    DirectiveWord{"if", Kind::condition},        DirectiveWord{"ifdef", Kind::condition},
    DirectiveWord{"ifndef", Kind::condition},    DirectiveWord{"elif", Kind::alternative},
    DirectiveWord{"elifdef", Kind::alternative}, DirectiveWord{"elifndef", Kind::alternative},
    DirectiveWord{"else", Kind::alternative},    DirectiveWord{"endif", Kind::endOfCondition},
    DirectiveWord{"define", Kind::definition},   DirectiveWord{"pragma", Kind::mark},
    DirectiveWord{"warning", Kind::warning},     DirectiveWord{"error", Kind::error},
};

bool isBlankOrContinuation(char byte) {
    return isBlank(byte) || byte == '\\';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlankOrContinuation(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Behind comments, which stand for blanks.
std::string_view behindComments(std::string_view text) {
    while (text.starts_with("/*")) {
        const std::size_t end = text.find("*/", 2);
        text = trimmed(text.substr(std::min(end, text.size() - 2) + 2));
    }
    return text;
}

std::string_view takeWord(std::string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isNameByte);
    const auto length = static_cast<std::size_t>(end - text.begin());
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(length);
    return word;
}

void readDefinition(std::string_view rest, Directive& directive) {
    directive.text = takeWord(rest);
    if (directive.text.empty()) {
        directive.kind = Kind::other;
    } else if (rest.starts_with('(')) {
        directive.parameters = rest.substr(0, std::min(rest.find(')'), rest.size() - 1) + 1);
    }
}

void readMark(std::string_view rest, Directive& directive) {
    if (takeWord(rest) != "mark") {
        directive.kind = Kind::other;
        return;
    }
    rest = trimmed(rest);
    directive.isSeparator = rest.starts_with('-');
    directive.text = directive.isSeparator ? trimmed(rest.substr(1)) : rest;
}

} // namespace

Directive readDirective(std::string_view line) {
    Directive directive;
    line.remove_prefix(line.starts_with("%:") ? 2 : 1);
    std::string_view rest = trimmed(line);
    const std::string_view word = takeWord(rest);
    const auto entry = std::find_if(kDirectiveWords.begin(), kDirectiveWords.end(),
                                    [word](const DirectiveWord& one) { return one.word == word; });
    if (entry == kDirectiveWords.end()) {
        return directive;
    }
    directive.kind = entry->kind;
    rest = trimmed(rest);
    switch (directive.kind) {
    case Kind::condition: {
        const std::string_view value = takeWord(rest);
        directive.isNever = word == "if" && value == "0" && trimmed(rest).empty();
        break;
    }
    case Kind::definition:
        readDefinition(behindComments(rest), directive);
        break;
    case Kind::mark:
        readMark(rest, directive);
        break;
    default:
        directive.text = rest;
    }
    return directive;
}

} // namespace navrel::cfamily
