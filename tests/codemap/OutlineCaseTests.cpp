// Cases as files: cases/LANGUAGE/NAME holds one source and the file "expected", its outline in
// plain text (see OutlineText.h). NAVREL_UPDATE_CASES=1 in the environment writes the expected
// files again from what is found: read each difference before it is kept.

#include "codemap/SourceOutline.h"
#include "tests/codemap/OutlineText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace navrel {
namespace {

using Path = std::filesystem::path;

constexpr const char* kExpected = "expected";

std::string contentsOf(const Path& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

std::vector<Path> entriesOf(const Path& folder) {
    const std::filesystem::directory_iterator found(folder);
    std::vector<Path> entries(begin(found), end(found));
    std::sort(entries.begin(), entries.end());
    return entries;
}

/// The one file beside the expected outline; nothing where there is another number of them.
std::optional<Path> sourceOf(const Path& folder) {
    std::optional<Path> source;
    for (const Path& entry : entriesOf(folder)) {
        if (entry.filename() == kExpected) {
            continue;
        }
        if (source) {
            return std::nullopt;
        }
        source = entry;
    }
    return source;
}

std::string outlineTextOf(const Path& source) {
    const std::string extension = source.extension().string();
    const Language language = languageOfExtension(extension.empty() ? "" : extension.substr(1));
    const std::string bytes = contentsOf(source);
    return textOf(outlineOfSource(language, decodedSource(bytes).value_or(bytes)));
}

bool isToUpdate() {
    return std::getenv("NAVREL_UPDATE_CASES") != nullptr;
}

void update(const Path& folder, const std::string& found) {
    std::ofstream(folder / kExpected, std::ios::binary) << found;
}

class OutlineCases : public testing::TestWithParam<std::string> {};

TEST_P(OutlineCases, haveTheExpectedOutlines) {
    const std::vector<Path> cases = entriesOf(Path(NAVREL_OUTLINE_CASES) / GetParam());
    ASSERT_FALSE(cases.empty());
    for (const Path& folder : cases) {
        SCOPED_TRACE(folder.string());
        const auto source = sourceOf(folder);
        ASSERT_TRUE(source) << "one source, and its expected outline";
        const std::string found = outlineTextOf(*source);
        if (isToUpdate()) {
            update(folder, found);
        }
        ASSERT_TRUE(std::filesystem::exists(folder / kExpected));
        EXPECT_EQ(found, contentsOf(folder / kExpected));
    }
}

std::vector<std::string> languages() {
    std::vector<std::string> names;
    for (const Path& entry : entriesOf(NAVREL_OUTLINE_CASES)) {
        if (std::filesystem::is_directory(entry)) {
            names.push_back(entry.filename().string());
        }
    }
    return names;
}

INSTANTIATE_TEST_SUITE_P(Outline, OutlineCases, testing::ValuesIn(languages()),
                         [](const auto& parameter) { return parameter.param; });

} // namespace
} // namespace navrel
