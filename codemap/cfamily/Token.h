#pragma once

#include <array>
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

namespace bytes {

inline constexpr std::uint8_t kNamePart = 1;
inline constexpr std::uint8_t kNameStart = 2;
inline constexpr std::uint8_t kDigit = 4;
inline constexpr std::uint8_t kBlank = 8;
inline constexpr std::uint8_t kLongSign = 16; ///< begins signs of several bytes, or digraphs

constexpr std::uint8_t classOf(unsigned byte) {
    if ((byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' ||
        byte == '$' || byte >= 0x80) {
        return kNamePart | kNameStart;
    }
    if (byte >= '0' && byte <= '9') {
        return kNamePart | kDigit;
    }
    if (byte == ' ' || (byte >= '\t' && byte <= '\r') || byte == 0) {
        return kBlank;
    }
    return std::string_view(".<:-&|>=!+%").find(static_cast<char>(byte)) != std::string_view::npos
               ? kLongSign
               : 0;
}

constexpr std::array<std::uint8_t, 256> makeClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned byte = 0; byte < classes.size(); ++byte) {
        classes[byte] = classOf(byte);
    }
    return classes;
}

inline constexpr std::array<std::uint8_t, 256> kClasses = makeClasses();

inline bool isOf(char byte, std::uint8_t kind) {
    return (kClasses[static_cast<unsigned char>(byte)] & kind) != 0;
}

} // namespace bytes

/// Whether a byte may stand in a name. All bytes beyond ASCII may.
inline bool isNameByte(char byte) {
    return bytes::isOf(byte, bytes::kNamePart);
}

inline bool isNameStart(char byte) {
    return bytes::isOf(byte, bytes::kNameStart);
}

inline bool isDigit(char byte) {
    return bytes::isOf(byte, bytes::kDigit);
}

/// Blanks, line ends, and NUL.
inline bool isBlank(char byte) {
    return bytes::isOf(byte, bytes::kBlank);
}

/// Whether a sign of several bytes may begin with a byte.
inline bool mayBeginLongSign(char byte) {
    return bytes::isOf(byte, bytes::kLongSign);
}

} // namespace navrel::cfamily
