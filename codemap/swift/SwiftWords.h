#pragma once

#include "codemap/Outline.h"

#include <cstdint>
#include <string_view>

namespace navrel {

/// The words that mean something between declarations. Most of them are ordinary names elsewhere.
enum class SwiftWord : std::uint8_t {
    none,
    // What introduces a declaration.
    actorWord,
    associatedType,
    caseWord,
    classWord,
    deinitWord,
    enumWord,
    extensionWord,
    function,
    importWord,
    initWord,
    let,
    macroWord,
    operatorWord,
    precedenceGroup,
    protocolWord,
    structWord,
    subscriptWord,
    typeAlias,
    var,
    // What may stand before.
    accessModifier,
    modifier,
    // What belongs to a statement: its block ends it.
    statement,
    // What continues the line before: "where", "throws" …
    continuation,
    whereWord,
    // What needs something behind it: "try", "await" …
    prefixWord,
};

struct SwiftWordRule {
    std::string_view text;
    SwiftWord word = SwiftWord::none;
    Access access = Access::unstated; ///< of an access modifier
};

/// The rule of a word, the same for all that mean nothing.
const SwiftWordRule& swiftRuleOf(std::string_view word);

/// Whether a word begins a declaration, which may have modifiers.
constexpr bool introducesDeclaration(SwiftWord word) {
    return word >= SwiftWord::actorWord && word <= SwiftWord::var;
}
/// Whether a word is never a name without backticks, which begins a declaration.
constexpr bool isReserved(SwiftWord word) {
    return introducesDeclaration(word) && word != SwiftWord::actorWord &&
           word != SwiftWord::macroWord;
}
constexpr bool isModifier(SwiftWord word) {
    return word == SwiftWord::accessModifier || word == SwiftWord::modifier;
}

} // namespace navrel
