#pragma once

#include "support/propertylist/PropertyListIndex.h"

#include <cstdint>
#include <cstring>
#include <string_view>

// The hash of PropertyListIndex, in a header of its own so that tests can make keys that collide.
namespace navrel::propertylist {

/// The upper and lower half of a product of two words, combined by "exclusive or". A change of any
/// bit of either word changes about half of the result's bits.
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

/// A keyed hash: without the seed, keys that collide cannot be chosen. Object identifiers have 24
/// bytes, which are three words.
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
