#include "codemap/cfamily/TypeHead.h"

#include "codemap/cfamily/Declarator.h"
#include "codemap/cfamily/Words.h"

namespace navrel::cfamily {

namespace {

std::optional<SymbolKind> kindOf(const Token& token) {
    if (token.kind != TokenKind::word) {
        return std::nullopt;
    }
    switch (token.word) {
    case Word::structType:
        return SymbolKind::structType;
    case Word::unionType:
        return SymbolKind::unionType;
    case Word::classType:
        return SymbolKind::classType;
    case Word::enumType:
        return SymbolKind::enumType;
    default:
        return std::nullopt;
    }
}

/// NS_ENUM, CF_OPTIONS and their kin.
bool isEnumMacro(std::string_view word) {
    const bool isNamedSo =
        word.ends_with("_ENUM") || word.ends_with("_OPTIONS") || word == "SWIFT_ENUM_NAMED";
    return isNamedSo && isAllCapitals(word);
}

/// "NS_ENUM(NSInteger, Name)" at the end of a head.
std::optional<TypeHead> readEnumMacro(const Head& head) {
    if (!head.back().is(')') || head.back().partner == kNoPartner || head.back().partner == 0) {
        return std::nullopt;
    }
    const std::size_t opening = head.back().partner;
    const std::size_t macro = opening - 1;
    if (!head[macro].isName() || !isEnumMacro(head.textOf(macro))) {
        return std::nullopt;
    }
    TypeHead result;
    result.kind = SymbolKind::enumType;
    result.keyword = macro;
    for (std::size_t i = opening + 1; i + 1 < head.size(); ++i) {
        if (head.is(i, ',') && head[i + 1].isName()) {
            result.name = {i + 1, i + 1};
            break;
        }
    }
    return result;
}

/// The first word that begins a type, outside of template parameters and groups.
std::size_t keywordIn(const Head& head) {
    for (std::size_t i = 0; i < head.size();) {
        if (kindOf(head[i])) {
            return i;
        }
        i = head.is(i, '<') ? head.afterAngles(i) : head.after(i);
    }
    return head.size();
}

bool isBetterName(const Head& head, NameRange name, std::size_t candidate) {
    const std::string_view text = head.textOf(candidate);
    return !name.isValid() ||
           (text != "final" && (!isAllCapitals(text) || isAllCapitals(head.textOf(name.last))));
}

/// From the word after the keyword to the bases or the end; sets `end` to there.
NameRange readTypeName(const Head& head, std::size_t begin, std::size_t& end) {
    NameRange name;
    std::size_t i = begin;
    while (i < head.size() && !head.is(i, ':')) {
        if (head[i].is(kScopeSign) && name.isValid() && i + 1 < head.size() &&
            head[i + 1].isName()) {
            name.last = ++i;
            ++i;
        } else if (head[i].isName() && head.is(i + 1, '(')) {
            i = head.after(i + 1); // a macro
        } else if (head[i].isName()) {
            name = isBetterName(head, name, i) ? NameRange{i, i} : name;
            ++i;
        } else {
            i = head.is(i, '<') ? head.afterAngles(i) : head.after(i);
        }
    }
    end = i;
    return name;
}

std::string readBases(const Head& head, std::size_t colon) {
    std::string bases;
    std::string base;
    const auto finishBase = [&bases, &base] {
        bases += bases.empty() || base.empty() ? "" : "\n";
        bases += base;
        base.clear();
    };
    for (std::size_t i = colon + 1; i < head.size();) {
        if (head.is(i, ',')) {
            finishBase();
        } else if (head[i].isName()) {
            base += head.textOf(i);
        } else if (head[i].is(kScopeSign) && !base.empty()) {
            base += "::";
        }
        i = head.is(i, '<') ? head.afterAngles(i) : head.after(i);
    }
    finishBase();
    return bases;
}

/// "struct A f(void)" is a function; "struct A PACKED(1)" is not.
bool isFunctionOfType(const Head& head) {
    const Declarator declarator = readDeclarator(head, 0, false, "");
    return declarator.isFunction && declarator.name.isValid() &&
           !isAllCapitals(head.textOf(declarator.name.last));
}

} // namespace

std::optional<TypeHead> readTypeHead(const Head& head) {
    if (auto macro = readEnumMacro(head)) {
        return macro;
    }
    TypeHead result;
    result.keyword = keywordIn(head);
    if (result.keyword == head.size() || isFunctionOfType(head)) {
        return std::nullopt;
    }
    result.kind = *kindOf(head[result.keyword]);
    std::size_t colon = 0;
    result.name = readTypeName(head, result.keyword + 1, colon);
    if (result.kind != SymbolKind::enumType && colon < head.size()) {
        result.inherits = readBases(head, colon);
    }
    return result;
}

} // namespace navrel::cfamily
