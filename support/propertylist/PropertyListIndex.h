#pragma once

#include "support/propertylist/PropertyListDocument.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace navrel {

/// A hash index of the keys of one dictionary, for the "objects" of a project. `build` reuses the
/// memory, unless it is many times what the new index needs. The hash is keyed with random words of
/// the process, so no file can be made whose keys collide. One thread at a time.
class PropertyListIndex {
public:
    using Value = PropertyListDocument::Value;
    /// The words that key the hash.
    using Seed = std::array<std::uint64_t, 4>;

    /// Keyed with the process's random words.
    PropertyListIndex();
    explicit PropertyListIndex(const Seed& seed) : seed_(seed) {}

    /// Indexes a dictionary in place of the one before. For any other value the index is empty. It
    /// must not be used after the value's document has read again or was destroyed.
    void build(Value dictionary);

    /// The value of a key, the last one if the key is repeated; nothing for an absent key.
    Value find(std::string_view key) const;

    /// How many different keys there are.
    std::size_t size() const { return size_; }

    /// The largest number of slots that a look-up of a key visits: a few dozen in the largest
    /// dictionaries. For tests.
    std::size_t longestProbe() const;

private:
    struct Slot {
        std::uint32_t hash = 0; // the upper half of the key's hash
        std::uint32_t key = 0;  // the key's node; 0, which is no key's, in a free slot
    };

    void insert(Value key);
    std::size_t slotOf(std::string_view key, std::uint64_t hash) const;
    Value keyAt(const Slot& slot) const { return {document_, slot.key}; }

    Seed seed_;
    const PropertyListDocument* document_ = nullptr;
    std::vector<Slot> slots_; // a power of two of them, at most half in use
    std::size_t size_ = 0;
};

} // namespace navrel
