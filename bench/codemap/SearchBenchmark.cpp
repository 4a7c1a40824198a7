// Searching 100,000 symbols at each keystroke, compared with Debian's fzf on the same list.

#include "bench/Ratio.h"
#include "codemap/CodeMapViews.h"
#include "codemap/OutlineBuilder.h"

#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace navrel::bench {
namespace {

constexpr std::size_t kSymbols = 100'000;
constexpr std::size_t kSymbolsInFile = 40;
constexpr int kQueries = 200;
constexpr std::size_t kLongestQuery = 8;
/// As many results as fit a screen or two.
constexpr std::size_t kResults = 50;
/// fzf takes a process for each search, so it runs at every 30th keystroke only: enough for a
/// median.
constexpr std::size_t kKeystrokesToPeer = 30;
constexpr double kMillisecondsGoal = 10;
constexpr double kTimesFasterGoal = 10;

constexpr std::array kWords = {
    "view",  "table",   "cell",    "load",    "data",    "manager", "controller", "did",
    "will",  "select",  "row",     "at",      "index",   "path",    "request",    "response",
    "image", "cache",   "network", "session", "user",    "account", "update",     "delete",
    "tide",  "station", "chart",   "height",  "moon",    "phase",   "sea",        "level",
    "draw",  "layout",  "scroll",  "touch",   "gesture", "handler", "delegate",   "source",
    "text",  "field",   "label",   "button",  "color",   "font",    "animate",    "present",
};

/// Names such as programmers choose, and what a user types to find one. The same at every run.
class SyntheticNames {
public:
    std::string type() {
        std::string name = capital(word());
        name += capital(word());
        name += capital(word());
        return name;
    }
    std::string method() {
        std::string name = word();
        for (auto words = 1 + random_() % 2; words > 0; --words) {
            name += capital(word());
        }
        name += '(';
        for (auto labels = 1 + random_() % 2; labels > 0; --labels) {
            name += word();
            name += ':';
        }
        name += ')';
        return name;
    }
    std::string query() {
        const std::string name = random_() % 3 == 0 ? type() : method();
        std::string query;
        for (const char character : name) {
            const bool isTyped = random_() % 3 != 0 && std::isalpha(character) != 0;
            if (isTyped && query.size() < kLongestQuery) {
                query += static_cast<char>(std::tolower(character));
            }
        }
        return query;
    }

private:
    std::string word() { return kWords[random_() % kWords.size()]; }
    static std::string capital(std::string word) {
        word.front() = static_cast<char>(std::toupper(word.front()));
        return word;
    }

    std::mt19937 random_{13};
};

CodeMapSnapshot snapshotOf(const std::vector<std::string>& names) {
    CodeMapSnapshot::Content content;
    MapNode root;
    root.id = 1;
    root.kind = NodeKind::project;
    std::vector<MapNodePtr> files;
    for (std::size_t first = 0; first < names.size(); first += kSymbolsInFile) {
        OutlineBuilder outline(Language::swift);
        for (std::size_t index = first; index < first + kSymbolsInFile; ++index) {
            OutlineBuilder::Declaration declaration;
            declaration.kind = index == first ? SymbolKind::classType : SymbolKind::method;
            declaration.line = static_cast<std::uint32_t>(index - first + 1);
            declaration.name = names[index];
            outline.add(declaration, declaration.line);
        }
        auto file = std::make_shared<MapNode>();
        file->id = first + 2;
        file->kind = NodeKind::file;
        file->name = names[first] + ".swift";
        file->parent = 1;
        file->outline = std::make_shared<Outline>(outline.finish(kSymbolsInFile));
        root.children.push_back(file->id);
        files.push_back(std::move(file));
    }
    content.nodes.push_back(std::make_shared<MapNode>(root));
    content.nodes.insert(content.nodes.end(), files.begin(), files.end());
    return CodeMapSnapshot(std::move(content));
}

/// `fraction` is from 0 to 1.
double percentile(std::vector<double> values, double fraction) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(fraction * double(values.size() - 1))];
}

void writeLines(const std::vector<std::string>& lines, const std::string& path) {
    std::ofstream file(path);
    for (const std::string& line : lines) {
        file << line << '\n';
    }
}

/// What stands in the search field after each keystroke of some queries.
std::vector<std::string> keystrokesOf(SyntheticNames& source) {
    std::vector<std::string> keystrokes;
    for (int number = 0; number < kQueries; ++number) {
        const std::string query = source.query();
        for (std::size_t length = 1; length <= query.size(); ++length) {
            keystrokes.push_back(query.substr(0, length));
        }
    }
    return keystrokes;
}

/// How long fzf takes for a query on the lines of a file; nil if it fails, or finds nothing.
std::optional<double> millisecondsOfPeer(const std::string& query, const std::string& path) {
    const std::string command = "fzf --filter=" + query + " < " + path + " > /dev/null";
    bool hasFound = false;
    auto search = [&] { hasFound = std::system(command.c_str()) == 0; };
    const double seconds = secondsOf(search);
    return hasFound ? std::optional(1e3 * seconds) : std::nullopt;
}

struct Measurement {
    std::vector<double> own;  ///< in milliseconds, one for each keystroke
    std::vector<double> peer; ///< in milliseconds, of some of them
    std::size_t found = 0;    ///< results of all own searches
};

/// Nil if fzf fails.
std::optional<Measurement> measure(const CodeMapSnapshot& snapshot, const std::string& path,
                                   const std::vector<std::string>& keystrokes) {
    Measurement result;
    for (std::size_t index = 0; index < keystrokes.size(); ++index) {
        auto search = [&] {
            result.found += searchIn(snapshot, {keystrokes[index], {}, kResults}).items.size();
        };
        result.own.push_back(1e3 * secondsOf<ProcessorTime>(search));
        if (index % kKeystrokesToPeer == 0) {
            const auto peer = millisecondsOfPeer(keystrokes[index], path);
            if (!peer) {
                return std::nullopt;
            }
            result.peer.push_back(*peer);
        }
    }
    return result;
}

void print(const Measurement& measured) {
    std::printf("%zu keystrokes: median %.2f ms, longest %.2f ms; fzf: median %.1f ms\n",
                measured.own.size(), medianOf(measured.own), percentile(measured.own, 1),
                medianOf(measured.peer));
    printRatio("search 100,000 symbols a keystroke: 99th percentile, ms",
               percentile(measured.own, 0.99), kMillisecondsGoal);
    printRatio("search 100,000 symbols a keystroke: times faster than fzf",
               medianOf(measured.peer) / medianOf(measured.own), kTimesFasterGoal, Bound::atLeast);
}

int run() {
    SyntheticNames source;
    std::vector<std::string> names;
    for (std::size_t index = 0; index < kSymbols; ++index) {
        names.push_back(index % kSymbolsInFile == 0 ? source.type() : source.method());
    }
    const QTemporaryDir folder;
    const std::string path = folder.filePath(QStringLiteral("names")).toStdString();
    writeLines(names, path);
    const auto measured = measure(snapshotOf(names), path, keystrokesOf(source));
    if (!measured) {
        std::fprintf(stderr, "fzf is not installed, or finds nothing\n");
        return 1;
    }
    if (measured->found == 0) {
        std::fprintf(stderr, "the search finds nothing\n");
        return 1;
    }
    print(*measured);
    return 0;
}

} // namespace
} // namespace navrel::bench

int main() {
    return navrel::bench::run();
}
