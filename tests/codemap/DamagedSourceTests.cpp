// Sources that were cut, lost a bracket or had their halves swapped: the outline still holds what
// comes before the damage. Over the committed cases of Swift, and over files of all languages below
// the folder that NAVREL_DAMAGE_SOURCES names: at most kMostSources, others
// with --gtest_shuffle --gtest_random_seed=N.

#include "codemap/SourceOutline.h"
#include "fuzz/codemap/OutlineInvariants.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace navrel {
namespace {

using Path = std::filesystem::path;

constexpr unsigned kSeed = 20240607;
constexpr std::string_view kBrackets = "(){}[]";
constexpr std::size_t kMostSources = 500;

struct Source {
    std::string path;
    Language language{};
    std::string text;
};

Language languageOf(const Path& path) {
    const std::string extension = path.extension().string();
    return extension.empty() ? Language::none : languageOfExtension(extension.substr(1));
}

std::vector<Path> sourcesBelow(const Path& folder) {
    std::vector<Path> sources;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file() && languageOf(entry.path()) != Language::none) {
            sources.push_back(entry.path());
        }
    }
    std::sort(sources.begin(), sources.end());
    return sources;
}

Source read(const Path& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string bytes = contents.str();
    return {path.string(), languageOf(path), decodedSource(bytes).value_or(bytes)};
}

Outline outlineOf(const Source& source, std::string_view text) {
    Outline outline = outlineOfSource(source.language, text);
    OutlineInvariants(outline, text).check();
    return outline;
}

std::uint32_t lineAt(std::string_view text, std::size_t offset) {
    return 1 + static_cast<std::uint32_t>(std::count(
                   text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

std::string textOf(const Outline& outline, const Symbol& symbol) {
    return std::string(nameOf(symbol.kind)) + ' ' + std::string(outline.nameOf(symbol)) + ' ' +
           std::to_string(symbol.line);
}

/// The declarations that end before a line, with their ends.
std::vector<std::string> declarationsBefore(const Outline& outline, std::uint32_t line) {
    std::vector<std::string> found;
    for (const Symbol& symbol : outline.symbols()) {
        if (symbol.endLine < line) {
            found.push_back(textOf(outline, symbol) + '-' + std::to_string(symbol.endLine));
        }
    }
    return found;
}

/// The declarations of a sound text that end before a line, and are not in the damaged one. The
/// last one may be drawn into the damage, and end in it.
std::vector<std::string> missingBefore(std::uint32_t line, const Outline& sound,
                                       const Outline& damaged) {
    std::vector<std::string> missing = declarationsBefore(sound, line);
    for (const std::string& one : declarationsBefore(damaged, line)) {
        missing.erase(std::remove(missing.begin(), missing.end(), one), missing.end());
    }
    for (const Symbol& symbol : damaged.symbols()) {
        if (symbol.endLine >= line && !missing.empty() &&
            missing.back().starts_with(textOf(damaged, symbol) + '-')) {
            missing.pop_back(); // drawn into the damage
        }
    }
    return missing;
}

void expectUnchangedBefore(std::size_t damage, const Source& source, const std::string& damaged) {
    const std::uint32_t line = lineAt(source.text, damage);
    EXPECT_EQ(missingBefore(line, outlineOf(source, source.text), outlineOf(source, damaged)),
              std::vector<std::string>())
        << source.path << " from line " << line;
}

class DamagedSource : public testing::Test {
protected:
    std::size_t placeIn(const std::string& text) { return random_() % (text.size() + 1); }

    std::vector<Source> sources() {
        std::vector<Path> paths = sourcesBelow(Path(NAVREL_OUTLINE_CASES) / "swift");
        if (const char* folder = std::getenv("NAVREL_DAMAGE_SOURCES")) {
            std::vector<Path> others = sourcesBelow(folder);
            std::shuffle(others.begin(), others.end(), random_);
            others.resize(std::min(others.size(), kMostSources));
            std::move(others.begin(), others.end(), std::back_inserter(paths));
        }
        std::vector<Source> sources;
        std::transform(paths.begin(), paths.end(), std::back_inserter(sources), read);
        return sources;
    }

    std::mt19937 random_{kSeed +
                         static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed())};
    const std::vector<Source> sources_ = sources();
};

TEST_F(DamagedSource, aCutCostsNothingBeforeIt) {
    ASSERT_FALSE(sources_.empty());
    for (const Source& source : sources_) {
        const std::size_t place = placeIn(source.text);
        expectUnchangedBefore(place, source, source.text.substr(0, place));
    }
}

TEST_F(DamagedSource, aMissingBracketCostsNothingBeforeIt) {
    ASSERT_FALSE(sources_.empty());
    for (const Source& source : sources_) {
        const std::size_t place = source.text.find_first_of(kBrackets, placeIn(source.text));
        if (place != std::string::npos) {
            std::string damaged = source.text;
            damaged.erase(place, 1);
            expectUnchangedBefore(place, source, damaged);
        }
    }
}

TEST_F(DamagedSource, swappedHalvesAreSurvived) {
    ASSERT_FALSE(sources_.empty());
    for (const Source& source : sources_) {
        const std::size_t place = placeIn(source.text);
        const std::string damaged = source.text.substr(place) + source.text.substr(0, place);
        EXPECT_EQ(outlineOf(source, damaged).language(), source.language);
    }
}

} // namespace
} // namespace navrel
