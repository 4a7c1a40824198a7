#include "bench/codemap/SourceTexts.h"

#include "codemap/SourceOutline.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace navrel::bench {

namespace {

std::string textOf(const std::filesystem::path& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    const std::string bytes = contents.str();
    return decodedSource(bytes).value_or(bytes);
}

Language languageOf(const std::filesystem::path& path) {
    const std::string extension = path.extension().string();
    return extension.empty() ? Language::none : languageOfExtension(extension.substr(1));
}

} // namespace

void SourceTexts::add(std::string text) {
    size += text.size();
    texts.push_back(std::move(text));
}

SourceTexts realTexts(const std::vector<Language>& languages) {
    SourceTexts found;
    const char* const folder = std::getenv("NAVREL_BENCH_SOURCES");
    if (folder == nullptr) {
        return found;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const bool isWanted = std::find(languages.begin(), languages.end(),
                                        languageOf(entry.path())) != languages.end();
        if (entry.is_regular_file() && isWanted && found.size < kTextsSize) {
            found.add(textOf(entry.path()));
        }
    }
    for (std::size_t index = 0; found.size > 0 && found.size < kTextsSize; ++index) {
        found.add(std::string(found.texts[index]));
    }
    return found;
}

} // namespace navrel::bench
