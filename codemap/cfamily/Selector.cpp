#include "codemap/cfamily/Selector.h"

namespace navrel::cfamily {

namespace {

/// After attributes: "__attribute__((a))", "[[a]]".
std::size_t afterAttributes(const Head& head, std::size_t index) {
    while (head.is(index, Word::attribute) || head.is(index, '[')) {
        index = head.after(index);
        index = head.is(index, '(') ? head.after(index) : index;
    }
    return index;
}

/// After the colon: the type, attributes and the name of a parameter.
std::size_t afterParameter(const Head& head, std::size_t index) {
    if (head.is(index, '(')) {
        index = head.after(index);
    }
    index = afterAttributes(head, index);
    while (head.is(index, Word::specifier)) {
        index = afterAttributes(head, index + 1);
    }
    const bool hasName = index < head.size() && head[index].kind == TokenKind::word;
    return afterAttributes(head, hasName ? index + 1 : index);
}

bool isWordAt(const Head& head, std::size_t index) {
    return index < head.size() && head[index].kind == TokenKind::word;
}

} // namespace

std::string readSelector(const Head& head, std::size_t& first) {
    std::size_t i = 1;
    if (head.is(i, '(')) {
        i = head.after(i);
    }
    i = afterAttributes(head, i);
    first = i;
    std::string selector;
    while (i < head.size()) {
        const bool hasWord = isWordAt(head, i);
        const std::size_t colon = hasWord ? i + 1 : i;
        const bool hasColon = head.is(colon, ':');
        const bool isFirst = selector.empty();
        if (!hasColon && (!isFirst || !hasWord)) {
            break;
        }
        selector += hasWord ? head.textOf(i) : "";
        if (!hasColon) {
            break;
        }
        selector += ':';
        i = afterParameter(head, colon + 1);
    }
    return selector.empty() ? selector : std::string(head.textOf(0)) + selector;
}

} // namespace navrel::cfamily
