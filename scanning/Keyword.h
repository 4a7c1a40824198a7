#pragma once

#include <QtGlobal>

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace navrel {

/// The keyword of a declaration: at most eight letters, in lower case, so that a comparison mostly
/// takes one instruction.
class Keyword {
public:
    explicit constexpr Keyword(std::string_view letters)
        : letters_(letters), bytes_(padded(letters)),
          mask_(padded(std::string_view("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", letters.size()))) {}

    std::string_view letters() const { return letters_; }

    /// Whether the text at `at` begins with it, in lower case.
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

    // A loop, since most names are short: a call would take longer.
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
