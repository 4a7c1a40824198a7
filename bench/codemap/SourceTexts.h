#pragma once

#include "codemap/Language.h"

#include <QByteArray>

#include <cstddef>
#include <string>
#include <vector>

namespace navrel::bench {

/// As much as a large project holds.
inline constexpr std::size_t kTextsSize = 45'000'000;

/// A source in memory, as UTF-8.
struct SourceText {
    Language language{};
    std::string text;
};

struct SourceTexts {
    std::vector<SourceText> texts;
    std::size_t size = 0; ///< in bytes

    void add(Language language, std::string text);
};

/// Files of some languages, of all that are named.
std::vector<std::string> filesOf(const std::vector<Language>& languages,
                                 const std::vector<QByteArray>& paths);
SourceTexts textsOf(const std::vector<std::string>& files);

/// The sources of some languages in the folder that NAVREL_BENCH_SOURCES names, over and over until
/// there are 45 MB of them; none where there is no such folder, or no such source in it.
SourceTexts realTexts(const std::vector<Language>& languages);

/// Synthetic Swift from a fixed sequence: 45 MB with the density of declarations, comments and
/// strings that large projects have.
SourceTexts swiftTexts();

} // namespace navrel::bench
