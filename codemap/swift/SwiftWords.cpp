#include "codemap/swift/SwiftWords.h"

#include <array>
#include <cstddef>

namespace navrel {

namespace {

constexpr std::array kRules = {
    SwiftWordRule{"actor", SwiftWord::actorWord},
    SwiftWordRule{"associatedtype", SwiftWord::associatedType},
    SwiftWordRule{"case", SwiftWord::caseWord},
    SwiftWordRule{"class", SwiftWord::classWord},
    SwiftWordRule{"deinit", SwiftWord::deinitWord},
    SwiftWordRule{"enum", SwiftWord::enumWord},
    SwiftWordRule{"extension", SwiftWord::extensionWord},
    SwiftWordRule{"func", SwiftWord::function},
    SwiftWordRule{"import", SwiftWord::importWord},
    SwiftWordRule{"init", SwiftWord::initWord},
    SwiftWordRule{"let", SwiftWord::let},
    SwiftWordRule{"macro", SwiftWord::macroWord},
    SwiftWordRule{"operator", SwiftWord::operatorWord},
    SwiftWordRule{"precedencegroup", SwiftWord::precedenceGroup},
    SwiftWordRule{"protocol", SwiftWord::protocolWord},
    SwiftWordRule{"struct", SwiftWord::structWord},
    SwiftWordRule{"subscript", SwiftWord::subscriptWord},
    SwiftWordRule{"typealias", SwiftWord::typeAlias},
    SwiftWordRule{"var", SwiftWord::var},

    SwiftWordRule{"open", SwiftWord::accessModifier, Access::open},
    SwiftWordRule{"public", SwiftWord::accessModifier, Access::publicAccess},
    SwiftWordRule{"package", SwiftWord::accessModifier, Access::package},
    SwiftWordRule{"internal", SwiftWord::accessModifier, Access::internal},
    SwiftWordRule{"fileprivate", SwiftWord::accessModifier, Access::fileprivate},
    SwiftWordRule{"private", SwiftWord::accessModifier, Access::privateAccess},

    SwiftWordRule{"__consuming", SwiftWord::modifier},
    SwiftWordRule{"async", SwiftWord::continuation},
    SwiftWordRule{"borrowing", SwiftWord::modifier},
    SwiftWordRule{"consuming", SwiftWord::modifier},
    SwiftWordRule{"convenience", SwiftWord::modifier},
    SwiftWordRule{"distributed", SwiftWord::modifier},
    SwiftWordRule{"dynamic", SwiftWord::modifier},
    SwiftWordRule{"final", SwiftWord::modifier},
    SwiftWordRule{"indirect", SwiftWord::modifier},
    SwiftWordRule{"infix", SwiftWord::modifier},
    SwiftWordRule{"isolated", SwiftWord::modifier},
    SwiftWordRule{"lazy", SwiftWord::modifier},
    SwiftWordRule{"mutating", SwiftWord::modifier},
    SwiftWordRule{"nonisolated", SwiftWord::modifier},
    SwiftWordRule{"nonmutating", SwiftWord::modifier},
    SwiftWordRule{"optional", SwiftWord::modifier},
    SwiftWordRule{"override", SwiftWord::modifier},
    SwiftWordRule{"postfix", SwiftWord::modifier},
    SwiftWordRule{"prefix", SwiftWord::modifier},
    SwiftWordRule{"required", SwiftWord::modifier},
    SwiftWordRule{"static", SwiftWord::modifier},
    SwiftWordRule{"unowned", SwiftWord::modifier},
    SwiftWordRule{"weak", SwiftWord::modifier},

    SwiftWordRule{"catch", SwiftWord::statement},
    SwiftWordRule{"defer", SwiftWord::statement},
    SwiftWordRule{"do", SwiftWord::statement},
    SwiftWordRule{"for", SwiftWord::statement},
    SwiftWordRule{"guard", SwiftWord::statement},
    SwiftWordRule{"if", SwiftWord::statement},
    SwiftWordRule{"repeat", SwiftWord::statement},
    SwiftWordRule{"switch", SwiftWord::statement},
    SwiftWordRule{"while", SwiftWord::statement},

    SwiftWordRule{"as", SwiftWord::continuation},
    SwiftWordRule{"else", SwiftWord::continuation},
    SwiftWordRule{"in", SwiftWord::continuation},
    SwiftWordRule{"is", SwiftWord::continuation},
    SwiftWordRule{"reasync", SwiftWord::continuation},
    SwiftWordRule{"rethrows", SwiftWord::continuation},
    SwiftWordRule{"throws", SwiftWord::continuation},
    SwiftWordRule{"where", SwiftWord::whereWord},

    SwiftWordRule{"any", SwiftWord::prefixWord},
    SwiftWordRule{"await", SwiftWord::prefixWord},
    SwiftWordRule{"some", SwiftWord::prefixWord},
    SwiftWordRule{"try", SwiftWord::prefixWord},
};

constexpr SwiftWordRule kNoRule;

constexpr std::size_t kShortest = 2;
constexpr std::size_t kLongest = 15;
/// Many more than rules, so that most words that are none are turned away by the first look.
constexpr std::size_t kSlots = 1024;

constexpr std::size_t slotOf(std::string_view word) {
    const auto byteAt = [word](std::size_t index) {
        return static_cast<std::size_t>(static_cast<unsigned char>(word[index]));
    };
    return (byteAt(0) * 5 + byteAt(1) * 31 + byteAt(word.size() - 1) * 111 + word.size() * 67) %
           kSlots;
}

/// The index of a rule + 1 in the slot of its word, or in the next free one behind; 0 in others.
constexpr std::array<std::uint8_t, kSlots> makeSlots() {
    std::array<std::uint8_t, kSlots> slots{};
    for (std::size_t index = 0; index < kRules.size(); ++index) {
        std::size_t slot = slotOf(kRules[index].text);
        while (slots[slot] != 0) {
            slot = (slot + 1) % kSlots;
        }
        slots[slot] = static_cast<std::uint8_t>(index + 1);
    }
    return slots;
}

constexpr std::array<std::uint8_t, kSlots> kSlotOfRules = makeSlots();

} // namespace

const SwiftWordRule& swiftRuleOf(std::string_view word) {
    const bool mayBeRule = word.size() >= kShortest && word.size() <= kLongest && word[0] >= '_';
    if (!mayBeRule) { // none has capitals
        return kNoRule;
    }
    for (std::size_t slot = slotOf(word); kSlotOfRules[slot] != 0; slot = (slot + 1) % kSlots) {
        const SwiftWordRule& rule = kRules[kSlotOfRules[slot] - 1u];
        if (rule.text == word) {
            return rule;
        }
    }
    return kNoRule;
}

} // namespace navrel
