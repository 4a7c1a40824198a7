#include "support/propertylist/PropertyListIndex.h"

#include "support/propertylist/PropertyListHash.h"

#include <QRandomGenerator>

#include <algorithm>
#include <bit>

namespace navrel {

namespace {

constexpr std::size_t kFewestSlots = 16;

// As for a document's nodes.
constexpr std::size_t kKeptSlots = std::size_t{128} << 10;
constexpr std::size_t kMostSpareSlotTimes = 4;

const PropertyListIndex::Seed& seedOfProcess() {
    static const PropertyListIndex::Seed seed = [] {
        PropertyListIndex::Seed words{};
        QRandomGenerator::system()->fillRange(words.data(), static_cast<qsizetype>(words.size()));
        return words;
    }();
    return seed;
}

std::uint32_t upperHalf(std::uint64_t hash) {
    return static_cast<std::uint32_t>(hash >> 32);
}

} // namespace

PropertyListIndex::PropertyListIndex() : seed_(seedOfProcess()) {}

void PropertyListIndex::build(Value dictionary) {
    document_ = dictionary.document_;
    size_ = 0;
    const std::size_t slotCount = std::bit_ceil(std::max(kFewestSlots, dictionary.count() * 2));
    if (slots_.capacity() > kKeptSlots && slots_.capacity() / kMostSpareSlotTimes > slotCount) {
        slots_ = {};
    }
    slots_.assign(slotCount, Slot());
    for (const auto [key, value] : dictionary.entries()) {
        insert(key);
    }
}

void PropertyListIndex::insert(Value key) {
    const std::string_view text = key.utf8();
    const std::uint64_t hash = propertylist::hashOfKey(text, seed_);
    Slot& slot = slots_[slotOf(text, hash)];
    size_ += slot.key == 0 ? 1 : 0;
    slot = {upperHalf(hash), key.index_};
}

PropertyListIndex::Value PropertyListIndex::find(std::string_view key) const {
    if (size_ == 0) {
        return {};
    }
    const Slot& slot = slots_[slotOf(key, propertylist::hashOfKey(key, seed_))];
    return slot.key == 0 ? Value() : keyAt(slot).next();
}

// Where a key is, or the free slot where it would be.
std::size_t PropertyListIndex::slotOf(std::string_view key, std::uint64_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t place = hash & mask;
    while (slots_[place].key != 0 &&
           (slots_[place].hash != upperHalf(hash) || keyAt(slots_[place]).utf8() != key)) {
        place = (place + 1) & mask;
    }
    return place;
}

std::size_t PropertyListIndex::longestProbe() const {
    std::size_t longest = 0;
    std::size_t run = 0;
    // Twice around, for the run that goes over the end.
    for (std::size_t i = 0; i < slots_.size() * 2; ++i) {
        run = slots_[i & (slots_.size() - 1)].key == 0 ? 0 : run + 1;
        longest = std::max(longest, run);
    }
    return longest;
}

} // namespace navrel
