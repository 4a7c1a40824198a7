// Finding the declarations in 45 MB of sources in memory, against what any program must do for it:
// look at each byte, from line feed to line feed; and those of the C family against Universal
// Ctags.

#include "bench/Ratio.h"
#include "bench/codemap/SourceTexts.h"
#include "bench/scanning/SourceTree.h"
#include "codemap/SourceOutline.h"

#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace navrel::bench {
namespace {

constexpr double kGoal = 3;
constexpr double kTimesFaster = 5;
constexpr int kPeerRounds = 5;

void passLineByLine(const SourceTexts& sources) {
    std::size_t lines = 0;
    for (const auto& [language, text] : sources.texts) {
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

void outlineAll(const SourceTexts& sources) {
    std::size_t symbols = 0;
    for (const auto& [language, text] : sources.texts) {
        symbols += outlineOfSource(language, text).symbols().size();
    }
    benchmark::DoNotOptimize(symbols);
}

void printRow(const std::string& what, const SourceTexts& sources) {
    const double ratio = timeRatio([&] { passLineByLine(sources); }, [&] { outlineAll(sources); });
    printRatio("G outlines of " + what + ", of a pass by memchr", ratio, kGoal);
}

void printSpeed(const std::string& what, const SourceTexts& sources) {
    auto job = [&] { outlineAll(sources); };
    const double seconds = secondsOf(job);
    std::printf("%s: %.1f MB in %zu texts, %.2f GB/s\n", what.c_str(), double(sources.size) / 1e6,
                sources.texts.size(), double(sources.size) / 1e9 / seconds);
}

void measure(const std::string& what, const SourceTexts& sources) {
    if (sources.size == 0) {
        return; // no such sources in the folder that was named
    }
    printSpeed(what, sources);
    printRow(what, sources);
}

/// The peer reads the files, which are in memory by then.
void measureAgainstCtags(const std::vector<std::string>& files, const SourceTexts& sources) {
    const QTemporaryDir folder;
    const std::string list = folder.filePath(QStringLiteral("list")).toStdString();
    {
        std::ofstream names(list);
        for (const std::string& file : files) {
            names << file << '\n';
        }
    }
    const std::string command =
        "ctags --kinds-C=+p --kinds-C++=+p --sort=no -L " + list + " -f - > /dev/null 2>&1";
    bool isThere = true;
    const auto peer = [&] { isThere = isThere && std::system(command.c_str()) == 0; };
    const double ratio = timeRatio([&] { outlineAll(sources); }, peer, kPeerRounds);
    if (!isThere) {
        std::fprintf(stderr, "ctags is not there, or fails\n");
        return;
    }
    printRatio("G outlines of the C family: times faster than ctags", ratio, kTimesFaster,
               Bound::atLeast);
}

void measureCFamily() {
    const SourceTree tree;
    const std::vector<std::string> files =
        filesOf({Language::objectiveC, Language::c, Language::objectiveCpp, Language::cpp,
                 Language::cppHeader, Language::header},
                tree.paths());
    const SourceTexts sources = textsOf(files);
    measure("C and Objective-C", sources);
    measureAgainstCtags(files, sources);
}

} // namespace
} // namespace navrel::bench

int main() {
    using namespace navrel;
    using namespace navrel::bench;

    measure("synthetic Swift", swiftTexts());
    measure("real Swift", realTexts({Language::swift}));
    measureCFamily();
    return EXIT_SUCCESS;
}
