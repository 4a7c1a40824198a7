// Reading a tree of sources line by line against getline(3), which does not look at the encoding.

#include "bench/Ratio.h"
#include "bench/RegisterBenchmark.h"
#include "bench/scanning/SourceTree.h"
#include "scanning/QWFileReader.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

namespace navrel::bench {
namespace {

constexpr double kGoal = 0.85;

void readByGetline(const SourceTree& tree) {
    char* line = nullptr;
    std::size_t capacity = 0;
    std::size_t lines = 0;
    for (const QByteArray& path : tree.paths()) {
        std::FILE* file = std::fopen(path.constData(), "r");
        if (file == nullptr) {
            continue;
        }
        while (::getline(&line, &capacity, file) >= 0) {
            ++lines;
        }
        std::fclose(file);
    }
    std::free(line);
    benchmark::DoNotOptimize(lines);
}

void readByReader(const SourceTree& tree) {
    std::size_t lines = 0;
    for (const QByteArray& path : tree.paths()) {
        const auto reader = QWFileReader::initWithFilePath(path);
        while (reader != nullptr && reader->readLine()) {
            ++lines;
        }
    }
    benchmark::DoNotOptimize(lines);
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel::bench;

    benchmark::Initialize(&argc, argv);
    const SourceTree tree;
    registerBenchmark("getline(3)", tree.size(), [&] { readByGetline(tree); });
    registerBenchmark("line reader", tree.size(), [&] { readByReader(tree); });
    benchmark::RunSpecifiedBenchmarks();
    printRatio("E line reader, of getline(3)",
               timeRatio([&] { readByGetline(tree); }, [&] { readByReader(tree); }), kGoal);
    return EXIT_SUCCESS;
}
