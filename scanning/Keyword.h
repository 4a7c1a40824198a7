#pragma once

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace navrel {

/// The keyword of a declaration: up to eight letters, in lower case, which mostly take one
/// comparison.
class Keyword {
public:
    explicit constexpr Keyword(std::string_view letters)
        : letters_(letters), bytes_(padded(letters)),
          mask_(padded(std::string_view("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", letters.size()))) {}

    std::string_view letters() const { return letters_; }

    /// Whether it stands there, letter case counting.
    bool standsAt(const char* at, const char* end) const {
        if (end - at < std::ptrdiff_t(sizeof(quint64))) {
            return isPrefixOf(at, end);
        }
        quint64 bytes = 0;
        std::memcpy(&bytes, at, sizeof bytes);
        return (bytes & mask_) == bytes_;
    }

private:
    static constexpr quint64 padded(std::string_view bytes) {
        std::array<char, sizeof(quint64)> all{};
        std::copy(bytes.begin(), bytes.end(), all.begin());
        return std::bit_cast<quint64>(all);
    }

    // Short texts are most names: a call for each would take longer than this.
    bool isPrefixOf(const char* at, const char* end) const {
        const char* letter = letters_.data();
        const char* const lettersEnd = letter + letters_.size();
        for (; at < end && letter < lettersEnd && *at == *letter; ++at, ++letter) {
        }
        return letter == lettersEnd;
    }

    std::string_view letters_;
    quint64 bytes_;
    quint64 mask_;
};

} // namespace navrel
