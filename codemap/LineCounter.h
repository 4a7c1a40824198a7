#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace navrel {

/// How many line feeds a text holds.
std::uint32_t countLineFeeds(std::string_view text);

/// Line numbers of places in a text. Counts from the place asked about last, so that asking in the
/// order of the text costs one pass over it.
class LineCounter {
public:
    explicit LineCounter(std::string_view text) : text_(text) {}

    /// The line of an offset, from 1.
    std::uint32_t lineAt(std::size_t offset) {
        if (offset >= offset_) {
            line_ += countLineFeeds(text_.substr(offset_, offset - offset_));
        } else {
            line_ -= countLineFeeds(text_.substr(offset, offset_ - offset));
        }
        offset_ = offset;
        return line_;
    }

    /// How many lines the text has: a last one without a line feed counts.
    std::uint32_t lines() {
        const std::uint32_t last = lineAt(text_.size());
        return text_.empty() || text_.back() == '\n' ? last - 1 : last;
    }

private:
    std::string_view text_;
    std::size_t offset_ = 0;
    std::uint32_t line_ = 1;
};

} // namespace navrel
