#pragma once

#include "support/propertylist/PropertyListIndex.h"

#include <cstdint>
#include <cstring>
#include <string_view>

// The hash of PropertyListIndex, apart from it so that tests can make keys that collide.
namespace navrel::propertylist {

/// Both halves of a product of two words, folded into one: every bit of either word moves about
/// half of the result's.
inline std::uint64_t mixed(std::uint64_t left, std::uint64_t right) {
    __extension__ using Product = unsigned __int128;
    const Product product = static_cast<Product>(left) * right;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

inline std::uint64_t wordAt(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Up to 8 bytes as a word.
inline std::uint64_t shortWordAt(const char* bytes, std::size_t count) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, count);
    return word;
}

/// A hash that only who knows the seed can aim at. Object identifiers have 24 bytes, which are
/// three words.
inline std::uint64_t hashOfKey(std::string_view key, const PropertyListIndex::Seed& seed) {
    std::uint64_t hash = seed[0] ^ key.size();
    const char* at = key.data();
    std::size_t left = key.size();
    if (left == 24) {
        hash = mixed(wordAt(at) ^ hash, wordAt(at + 8) ^ seed[1]);
        return mixed(hash ^ seed[2], wordAt(at + 16) ^ seed[3]);
    }
    for (; left > 8; at += 8, left -= 8) {
        hash = mixed(hash ^ seed[1], wordAt(at) ^ seed[2]);
    }
    return mixed(hash ^ seed[2], shortWordAt(at, left) ^ seed[3]);
}

} // namespace navrel::propertylist
