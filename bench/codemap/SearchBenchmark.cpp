// Searching 100,000 symbols at each keystroke, against Debian's fzf over the same list.

#include "bench/Ratio.h"
#include "codemap/CodeMapViews.h"
#include "codemap/OutlineBuilder.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace navrel::bench {
namespace {

constexpr std::size_t kSymbols = 100'000;
constexpr std::size_t kSymbolsOfFile = 40;
constexpr int kQueries = 200;
/// The peer takes a process each: every so many keystrokes are enough for a median.
constexpr std::size_t kPeerEvery = 30;
constexpr double kLongestMilliseconds = 10;
constexpr double kTimesFaster = 10;

constexpr std::array kWords = {
    "view",  "table",   "cell",    "load",    "data",    "manager", "controller", "did",
    "will",  "select",  "row",     "at",      "index",   "path",    "request",    "response",
    "image", "cache",   "network", "session", "user",    "account", "update",     "delete",
    "tide",  "station", "chart",   "height",  "moon",    "phase",   "sea",        "level",
    "draw",  "layout",  "scroll",  "touch",   "gesture", "handler", "delegate",   "source",
    "text",  "field",   "label",   "button",  "color",   "font",    "animate",    "present",
};

/// Names as programmers give them.
class Names {
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
            if (isTyped && query.size() < 8) {
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
    for (std::size_t first = 0; first < names.size(); first += kSymbolsOfFile) {
        OutlineBuilder outline(Language::swift);
        for (std::size_t index = first; index < first + kSymbolsOfFile; ++index) {
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
        file->outline = std::make_shared<Outline>(outline.finish(kSymbolsOfFile));
        root.children.push_back(file->id);
        files.push_back(std::move(file));
    }
    content.nodes.push_back(std::make_shared<MapNode>(root));
    content.nodes.insert(content.nodes.end(), files.begin(), files.end());
    return CodeMapSnapshot(std::move(content));
}

double percentile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    return values[static_cast<std::size_t>(part * double(values.size() - 1))];
}

int run() {
    Names source;
    std::vector<std::string> names;
    for (std::size_t index = 0; index < kSymbols; ++index) {
        names.push_back(index % kSymbolsOfFile == 0 ? source.type() : source.method());
    }
    const CodeMapSnapshot snapshot = snapshotOf(names);
    const QTemporaryDir folder;
    const std::string list = folder.filePath(QStringLiteral("list")).toStdString();
    {
        std::ofstream file(list);
        for (const std::string& name : names) {
            file << name << '\n';
        }
    }
    std::vector<std::string> keystrokes;
    for (int query = 0; query < kQueries; ++query) {
        const std::string whole = source.query();
        for (std::size_t length = 1; length <= whole.size(); ++length) {
            keystrokes.push_back(whole.substr(0, length));
        }
    }
    std::vector<double> own;
    std::vector<double> peers;
    std::size_t found = 0;
    for (std::size_t index = 0; index < keystrokes.size(); ++index) {
        auto search = [&] {
            found += searchIn(snapshot, {keystrokes[index], {}, 50}).items.size();
        };
        own.push_back(1e3 * secondsOf<ProcessorTime>(search));
        if (index % kPeerEvery == 0) {
            std::string command = "fzf --filter=";
            command.append(keystrokes[index]).append(" < ").append(list).append(" > /dev/null");
            bool isThere = true;
            auto peer = [&] { isThere = std::system(command.c_str()) == 0; };
            peers.push_back(1e3 * secondsOf(peer));
            if (!isThere) {
                std::fprintf(stderr, "fzf is not there, or finds nothing\n");
                return 1;
            }
        }
    }
    if (found == 0) {
        return 1;
    }
    std::printf("%zu keystrokes: median %.2f ms, longest %.2f ms; fzf: median %.1f ms\n",
                keystrokes.size(), medianOf(own), percentile(own, 1), medianOf(peers));
    printRatio("search 100,000 symbols a keystroke: 99th percentile, ms", percentile(own, 0.99),
               kLongestMilliseconds);
    printRatio("search 100,000 symbols a keystroke: times faster than fzf",
               medianOf(peers) / medianOf(own), kTimesFaster, Bound::atLeast);
    return 0;
}

} // namespace
} // namespace navrel::bench

int main() {
    return navrel::bench::run();
}
