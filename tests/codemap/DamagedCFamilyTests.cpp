// What damage to a source costs: the source of each case that is not broken itself is cut at every
// byte, and loses each of its brackets. The declarations that end before the damage must stay as
// they are.

#include "codemap/SourceOutline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace navrel {
namespace {

using Path = std::filesystem::path;

struct CaseSource {
    Path path;
    Language language{};
    std::string text;
};

std::vector<CaseSource> sourcesOf(const std::string& language) {
    std::vector<CaseSource> sources;
    const Path folder = Path(NAVREL_OUTLINE_CASES) / language;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string extension = entry.path().extension().string();
        const bool isBroken = entry.path().filename().string().starts_with("Broken");
        if (!entry.is_regular_file() || extension.empty() || isBroken) {
            continue;
        }
        std::ifstream file(entry.path(), std::ios::binary);
        sources.push_back({entry.path(),
                           languageOfExtension(extension.substr(1)),
                           {std::istreambuf_iterator<char>(file), {}}});
    }
    return sources;
}

/// The declarations at file level that end before a line, with all that is inside them.
std::vector<std::string> finishedBefore(const Outline& outline, std::uint32_t line) {
    std::vector<std::string> found;
    for (std::size_t index = 0; index < outline.symbols().size();) {
        const Symbol& first = outline.symbols()[index];
        if (first.endLine >= line) {
            break;
        }
        for (; index < first.end; ++index) {
            const Symbol& symbol = outline.symbols()[index];
            found.push_back(std::string(nameOf(symbol.kind)) + " " +
                            std::string(outline.nameOf(symbol)) + " " +
                            std::to_string(symbol.line) + "-" + std::to_string(symbol.endLine));
        }
    }
    return found;
}

/// `place` is where the damage begins.
void expectUnchangedBefore(const CaseSource& source, const std::string& damaged,
                           std::size_t place) {
    const auto begin = source.text.begin();
    const auto line = static_cast<std::uint32_t>(
        1 + std::count(begin, begin + static_cast<std::ptrdiff_t>(place), '\n'));
    const Outline whole = outlineOfSource(source.language, source.text);
    const std::vector<std::string> expected = finishedBefore(whole, line);
    std::vector<std::string> found =
        finishedBefore(outlineOfSource(source.language, damaged), UINT32_MAX);
    ASSERT_GE(found.size(), expected.size()) << source.path << " at " << place;
    found.resize(expected.size());
    ASSERT_EQ(found, expected) << source.path << " at " << place;
}

class DamagedCFamilySources : public testing::TestWithParam<std::string> {};

TEST_P(DamagedCFamilySources, keepTheDeclarationsBeforeACut) {
    for (const CaseSource& source : sourcesOf(GetParam())) {
        for (std::size_t place = 0; place < source.text.size(); ++place) {
            expectUnchangedBefore(source, source.text.substr(0, place), place);
            if (HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST_P(DamagedCFamilySources, keepTheDeclarationsBeforeALostBracket) {
    for (const CaseSource& source : sourcesOf(GetParam())) {
        std::size_t place = source.text.find_first_of("{}()[]");
        while (place != std::string::npos) {
            std::string damaged = source.text;
            damaged.erase(place, 1);
            expectUnchangedBefore(source, damaged, place);
            if (HasFatalFailure()) {
                return;
            }
            place = source.text.find_first_of("{}()[]", place + 1);
        }
    }
}

TEST_P(DamagedCFamilySources, surviveSwappedHalves) {
    for (const CaseSource& source : sourcesOf(GetParam())) {
        for (std::size_t place = 0; place < source.text.size(); ++place) {
            const std::string swapped = source.text.substr(place) + source.text.substr(0, place);
            const Outline outline = outlineOfSource(source.language, swapped);
            for (const Symbol& symbol : outline.symbols()) {
                ASSERT_LE(symbol.endLine, outline.lines()) << source.path << " at " << place;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Outline, DamagedCFamilySources, testing::Values("objc", "cpp"),
                         [](const auto& parameter) { return parameter.param; });

} // namespace
} // namespace navrel
