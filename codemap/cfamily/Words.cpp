#include "codemap/cfamily/Words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace navrel::cfamily {

namespace {

using Entry = WordEntry;

constexpr std::array kEntries = {
    Entry{"typedef", Word::typeDefinition},
    Entry{"struct", Word::structType},
    Entry{"union", Word::unionType},
    Entry{"enum", Word::enumType},
    Entry{"extern", Word::externName},
    Entry{"static", Word::specifier},
    Entry{"inline", Word::specifier},
    Entry{"__inline", Word::specifier},
    Entry{"__inline__", Word::specifier},
    Entry{"register", Word::specifier},
    Entry{"const", Word::specifier},
    Entry{"__const", Word::specifier},
    Entry{"volatile", Word::specifier},
    Entry{"__volatile__", Word::specifier},
    Entry{"restrict", Word::specifier},
    Entry{"__restrict", Word::specifier},
    Entry{"__restrict__", Word::specifier},
    Entry{"__extension__", Word::specifier},
    Entry{"_Noreturn", Word::specifier},
    Entry{"_Thread_local", Word::specifier},
    Entry{"__thread", Word::specifier},
    Entry{"__block", Word::specifier},
    Entry{"__weak", Word::specifier},
    Entry{"__strong", Word::specifier},
    Entry{"__unsafe_unretained", Word::specifier},
    Entry{"__unused", Word::specifier},
    Entry{"_Nullable", Word::specifier},
    Entry{"_Nonnull", Word::specifier},
    Entry{"_Null_unspecified", Word::specifier},
    Entry{"__nullable", Word::specifier},
    Entry{"__nonnull", Word::specifier},
    Entry{"__kindof", Word::specifier},
    Entry{"__cdecl", Word::specifier},
    Entry{"__stdcall", Word::specifier},
    Entry{"__fastcall", Word::specifier},
    Entry{"export", Word::specifier, true},
    Entry{"thread_local", Word::specifier, true},
    Entry{"virtual", Word::specifier, true},
    Entry{"mutable", Word::specifier, true},
    Entry{"constexpr", Word::specifier, true},
    Entry{"consteval", Word::specifier, true},
    Entry{"constinit", Word::specifier, true},
    Entry{"explicit", Word::attribute, true},
    Entry{"noexcept", Word::attribute, true},
    Entry{"throw", Word::attribute, true},
    Entry{"void", Word::builtInType},
    Entry{"char", Word::builtInType},
    Entry{"short", Word::builtInType},
    Entry{"int", Word::builtInType},
    Entry{"long", Word::builtInType},
    Entry{"float", Word::builtInType},
    Entry{"double", Word::builtInType},
    Entry{"signed", Word::builtInType},
    Entry{"unsigned", Word::builtInType},
    Entry{"_Bool", Word::builtInType},
    Entry{"_Complex", Word::builtInType},
    Entry{"auto", Word::builtInType},
    Entry{"bool", Word::builtInType, true},
    Entry{"wchar_t", Word::builtInType, true},
    Entry{"typeof", Word::typeOfGroup},
    Entry{"__typeof__", Word::typeOfGroup},
    Entry{"__typeof", Word::typeOfGroup},
    Entry{"_Atomic", Word::typeOfGroup},
    Entry{"decltype", Word::typeOfGroup, true},
    Entry{"__attribute__", Word::attribute},
    Entry{"__attribute", Word::attribute},
    Entry{"__declspec", Word::attribute},
    Entry{"__pragma", Word::attribute},
    Entry{"_Pragma", Word::attribute},
    Entry{"_Alignas", Word::attribute},
    Entry{"alignas", Word::attribute, true},
    Entry{"asm", Word::attribute},
    Entry{"__asm", Word::attribute},
    Entry{"__asm__", Word::attribute},
    Entry{"static_assert", Word::assertion},
    Entry{"_Static_assert", Word::assertion},
    Entry{"if", Word::statement},
    Entry{"for", Word::statement},
    Entry{"while", Word::statement},
    Entry{"do", Word::statement},
    Entry{"switch", Word::statement},
    Entry{"case", Word::statement},
    Entry{"return", Word::statement},
    Entry{"goto", Word::statement},
    Entry{"break", Word::statement},
    Entry{"continue", Word::statement},
    Entry{"else", Word::statement},
    Entry{"sizeof", Word::statement},
    Entry{"catch", Word::statement, true},
    Entry{"delete", Word::statement, true},
    Entry{"class", Word::classType, true},
    Entry{"namespace", Word::namespaceScope, true},
    Entry{"template", Word::templateHead, true},
    Entry{"typename", Word::typeParameter, true},
    Entry{"using", Word::usingName, true},
    Entry{"friend", Word::friendName, true},
    Entry{"operator", Word::operatorName, true},
    Entry{"concept", Word::conceptName, true},
    Entry{"requires", Word::requiresClause, true},
    Entry{"public", Word::accessPublic, true},
    Entry{"protected", Word::accessProtected, true},
    Entry{"private", Word::accessPrivate, true},
};

// Open addressing: a power of two, four times as large as the table, so that most words that are
// none are turned away by the first look.
constexpr std::size_t kSlots = 512;
constexpr std::uint8_t kEmpty = 255;
static_assert(kEntries.size() < kEmpty);

constexpr std::size_t slotOf(std::string_view word) {
    const auto byteAt = [word](std::size_t index) {
        return std::size_t{static_cast<unsigned char>(word[index])};
    };
    return (byteAt(0) * 5 + byteAt(word.size() - 1) * 29 + byteAt(word.size() / 2) * 11 +
            word.size() * 67) %
           kSlots;
}

constexpr std::array<std::uint8_t, kSlots> makeSlots() {
    std::array<std::uint8_t, kSlots> slots{};
    slots.fill(kEmpty);
    for (std::size_t index = 0; index < kEntries.size(); ++index) {
        std::size_t slot = slotOf(kEntries[index].text);
        while (slots[slot] != kEmpty) {
            slot = (slot + 1) % kSlots;
        }
        slots[slot] = static_cast<std::uint8_t>(index);
    }
    return slots;
}

constexpr std::array<std::uint8_t, kSlots> kWordSlots = makeSlots();

/// In a header, a word of C++ is one where a name of C could not be followed by this.
bool standsAsInCpp(Word word, char next) {
    switch (word) {
    case Word::templateHead:
        return next == '<' || isNameStart(next);
    case Word::operatorName:
        return next != ';' && next != ',' && next != ')';
    case Word::accessPublic:
    case Word::accessProtected:
    case Word::accessPrivate:
        return next == ':' || isNameStart(next);
    case Word::namespaceScope:
        return isNameStart(next) || next == '{' || next == '[';
    case Word::attribute:
    case Word::requiresClause:
        return isNameStart(next) || next == '(' || next == '{' || next == ';';
    case Word::typeOfGroup:
        return next == '(';
    case Word::builtInType:
        return true;
    default:
        return isNameStart(next) || next == '[' || next == ':' || next == '<';
    }
}

struct AtEntry {
    std::string_view text;
    AtWord word;
};

constexpr std::array kAtEntries = {
    AtEntry{"interface", AtWord::interfaceType},
    AtEntry{"implementation", AtWord::implementation},
    AtEntry{"protocol", AtWord::protocol},
    AtEntry{"end", AtWord::end},
    AtEntry{"property", AtWord::property},
    AtEntry{"public", AtWord::accessPublic},
    AtEntry{"protected", AtWord::accessProtected},
    AtEntry{"private", AtWord::accessPrivate},
    AtEntry{"package", AtWord::accessPackage},
    AtEntry{"optional", AtWord::section},
    AtEntry{"required", AtWord::section},
    AtEntry{"class", AtWord::statement},
    AtEntry{"synthesize", AtWord::statement},
    AtEntry{"dynamic", AtWord::statement},
    AtEntry{"import", AtWord::statement},
    AtEntry{"compatibility_alias", AtWord::statement},
};

} // namespace

const WordEntry* findWord(std::string_view word) {
    for (std::size_t slot = slotOf(word); kWordSlots[slot] != kEmpty; slot = (slot + 1) % kSlots) {
        if (kEntries[kWordSlots[slot]].text == word) {
            return &kEntries[kWordSlots[slot]];
        }
    }
    return nullptr;
}

Word wordOf(const WordEntry& entry, Dialect dialect, char next) {
    if (!entry.isCppOnly || dialect == Dialect::cpp) {
        return entry.word;
    }
    return dialect == Dialect::unknown && standsAsInCpp(entry.word, next) ? entry.word : Word::name;
}

AtWord atWordOf(std::string_view word) {
    for (const AtEntry& entry : kAtEntries) {
        if (entry.text == word) {
            return entry.word;
        }
    }
    return AtWord::other;
}

bool looksLikeMacro(std::string_view word) {
    return isAllCapitals(word) || isAllCapitals(word.substr(0, word.rfind('_')));
}

bool isAllCapitals(std::string_view word) {
    bool hasCapital = false;
    for (const char byte : word) {
        if (byte >= 'A' && byte <= 'Z') {
            hasCapital = true;
        } else if (byte != '_' && !isDigit(byte)) {
            return false;
        }
    }
    return hasCapital && word.size() > 1;
}

} // namespace navrel::cfamily
