// Finding the declarations in 45 MB of sources in memory, against what any program must do for it:
// look at each byte, from line feed to line feed.

#include "bench/Ratio.h"
#include "bench/codemap/SourceTexts.h"
#include "codemap/SourceOutline.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace navrel::bench {
namespace {

constexpr double kGoal = 3;

void passLineByLine(const SourceTexts& sources) {
    std::size_t lines = 0;
    for (const std::string& text : sources.texts) {
        const char* place = text.data();
        const char* const end = place + text.size();
        while (place < end) {
            const void* feed = std::memchr(place, '\n', static_cast<std::size_t>(end - place));
            place = feed == nullptr ? end : static_cast<const char*>(feed) + 1;
            ++lines;
        }
    }
    benchmark::DoNotOptimize(lines);
}

void outlineAll(const SourceTexts& sources, Language language) {
    std::size_t symbols = 0;
    for (const std::string& text : sources.texts) {
        symbols += outlineOfSource(language, text).symbols().size();
    }
    benchmark::DoNotOptimize(symbols);
}

void printRow(const std::string& what, const SourceTexts& sources, Language language) {
    if (sources.size == 0) {
        return;
    }
    const double ratio =
        timeRatio([&] { passLineByLine(sources); }, [&] { outlineAll(sources, language); });
    printRatio("G outlines of " + what + ", of a pass by memchr", ratio, kGoal);
}

void printSpeed(const std::string& what, const SourceTexts& sources, Language language) {
    auto job = [&] { outlineAll(sources, language); };
    const double seconds = secondsOf(job);
    std::printf("%s: %.1f MB in %zu texts, %.2f GB/s\n", what.c_str(), double(sources.size) / 1e6,
                sources.texts.size(), double(sources.size) / 1e9 / seconds);
}

void measure(const std::string& what, const SourceTexts& sources, Language language) {
    printSpeed(what, sources, language);
    printRow(what, sources, language);
}

} // namespace
} // namespace navrel::bench

int main() {
    using namespace navrel;
    using namespace navrel::bench;

    measure("synthetic Swift", swiftTexts(), Language::swift);
    measure("real Swift", realTexts({Language::swift}), Language::swift);
    return EXIT_SUCCESS;
}
