#pragma once

#include "codemap/Language.h"

#include <cstddef>
#include <string>
#include <vector>

namespace navrel::bench {

/// As much as a large project holds.
inline constexpr std::size_t kTextsSize = 45'000'000;

/// Sources in memory, as UTF-8.
struct SourceTexts {
    std::vector<std::string> texts;
    std::size_t size = 0; ///< in bytes

    void add(std::string text);
};

/// The sources of some languages in the folder that NAVREL_BENCH_SOURCES names, over and over until
/// there are 45 MB of them; none where there is no such folder, or no such source in it.
SourceTexts realTexts(const std::vector<Language>& languages);

/// Synthetic Swift from a fixed sequence: 45 MB with the density of declarations, comments and
/// strings that large projects have.
SourceTexts swiftTexts();

} // namespace navrel::bench
