#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace navrel {

/// A name of few ASCII characters, as most are, that can say where a character is without a look at
/// each. Bit n of a set of places stands for the name's character n.
class ShortName {
public:
    static constexpr std::size_t kMaximumLength = 64;

    /// Whether the name is short and ASCII. If not, nothing else must be asked.
    bool set(std::string_view name);

    /// The places of a character, letter case aside. `folded` must not be a capital.
    std::uint64_t placesOf(char32_t folded) const;

private:
    std::size_t length_ = 0;
    std::array<char, kMaximumLength> folded_{}; ///< what is behind the name has no meaning
};

} // namespace navrel
