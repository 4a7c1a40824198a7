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

void SourceTexts::add(Language language, std::string text) {
    size += text.size();
    texts.push_back({language, std::move(text)});
}

std::vector<std::string> filesOf(const std::vector<Language>& languages,
                                 const std::vector<QByteArray>& paths) {
    std::vector<std::string> files;
    for (const QByteArray& path : paths) {
        const Language language = languageOf(path.toStdString());
        if (std::find(languages.begin(), languages.end(), language) != languages.end()) {
            files.push_back(path.toStdString());
        }
    }
    return files;
}

SourceTexts textsOf(const std::vector<std::string>& files) {
    SourceTexts texts;
    for (const std::string& file : files) {
        texts.add(languageOf(file), textOf(file));
    }
    return texts;
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
            found.add(languageOf(entry.path()), textOf(entry.path()));
        }
    }
    for (std::size_t index = 0; found.size > 0 && found.size < kTextsSize; ++index) {
        const SourceText again = found.texts[index];
        found.add(again.language, again.text);
    }
    return found;
}

} // namespace navrel::bench
