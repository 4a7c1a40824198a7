#pragma once

#include <cstdint>
#include <string_view>

namespace navrel::cfamily {

/// What a word means to the recogniser: words with the same effect share a value.
enum class Word : std::uint8_t {
    name, ///< no word of the language: names a type, a variable, a macro …
    typeDefinition,
    structType,
    unionType,
    classType,
    enumType,
    namespaceScope,
    templateHead,
    usingName,
    friendName,
    operatorName,
    conceptName,
    requiresClause,
    accessPublic,
    accessProtected,
    accessPrivate,
    externName,
    specifier,     ///< says how, not what: static, inline, const …
    builtInType,   ///< int, void, auto …
    typeOfGroup,   ///< a type with an expression in parentheses: decltype, typeof
    attribute,     ///< may have a group in parentheses that means nothing here
    statement,     ///< begins a statement of a body
    assertion,     ///< static_assert
    typeParameter, ///< typename
};

/// The words after "@" of Objective-C.
enum class AtWord : std::uint8_t {
    other,
    interfaceType,
    implementation,
    protocol,
    end,
    property,
    accessPublic,
    accessProtected,
    accessPrivate,
    accessPackage,
    statement, ///< ends with ";" and declares nothing: @class, @synthesize …
    section,   ///< @optional, @required
};

enum class TokenKind : std::uint8_t {
    end,
    word,
    number,
    string,
    character,
    sign,
    directive,    ///< a whole line of the preprocessor, with its continuations
    atWord,       ///< "@" and a word
    braces,       ///< a pair of braces with what is in it
    operatorName, ///< "operator" and its sign or type
};

/// Signs of one byte are that byte; digraphs are the byte that they stand for.
using Sign = char;
inline constexpr Sign kScopeSign = 1;    ///< ::
inline constexpr Sign kArrowSign = 2;    ///< ->
inline constexpr Sign kEllipsisSign = 3; ///< ...
inline constexpr Sign kLogicalSign = 4;  ///< && ||
inline constexpr Sign kOtherSign = 5;    ///< all others of several bytes

inline constexpr std::uint32_t kNoPartner = UINT32_MAX;

struct Token {
    std::uint32_t begin = 0; ///< in the text
    std::uint32_t end = 0;
    std::uint32_t partner = kNoPartner; ///< in a head: index of the matching bracket
    TokenKind kind = TokenKind::end;
    Sign sign = 0;
    Word word = Word::name;
    AtWord atWord = AtWord::other;

    bool is(Sign one) const { return kind == TokenKind::sign && sign == one; }
    bool is(Word one) const { return kind == TokenKind::word && word == one; }
    bool isName() const { return is(Word::name); }
    std::string_view in(std::string_view text) const { return text.substr(begin, end - begin); }
};

/// Whether a byte may stand in a name. All bytes beyond ASCII may.
bool isNameByte(char byte);
bool isNameStart(char byte);
bool isDigit(char byte);
/// Blanks, line ends, and NUL.
bool isBlank(char byte);

} // namespace navrel::cfamily
