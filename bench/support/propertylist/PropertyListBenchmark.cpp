// Reading project.pbxproj, with its text in memory, against one pass over its bytes. With
// NAVREL_BENCH_PBXPROJ set to a file's path, that file is measured as well.

#include "bench/Ratio.h"
#include "bench/RegisterBenchmark.h"
#include "bench/support/propertylist/ByteClassFloor.h"
#include "bench/support/propertylist/ProjectFile.h"
#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListIndex.h"

#include <QFile>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>

namespace navrel::bench {
namespace {

constexpr double kParseGoal = 1.75;
constexpr double kIndexGoal = 2.5;

struct Input {
    std::string name;
    QByteArray bytes;
};

std::vector<Input> makeInputs() {
    std::vector<Input> inputs = {{"2.7 MB, synthetic", makeProjectFile(2'700'000)},
                                 {"11 MB, synthetic", makeProjectFile(11'000'000)}};
    if (const char* path = std::getenv("NAVREL_BENCH_PBXPROJ")) {
        QFile file(QString::fromLocal8Bit(path));
        if (file.open(QIODevice::ReadOnly)) {
            inputs.push_back({"real file", file.readAll()});
        } else {
            std::fprintf(stderr, "cannot read %s\n", path);
        }
    }
    return inputs;
}

void readFloor(const Input& input) {
    benchmark::DoNotOptimize(sumOfByteClasses(input.bytes));
}

void parse(PropertyListDocument& document, const Input& input) {
    if (!document.read(input.bytes)) {
        std::fprintf(stderr, "%s is no property list\n", input.name.c_str());
        std::exit(EXIT_FAILURE);
    }
}

void parseAndIndex(PropertyListDocument& document, PropertyListIndex& index, const Input& input) {
    parse(document, input);
    index.build(document.root()["objects"]);
    benchmark::DoNotOptimize(index.size());
}

void measure(const Input& input) {
    PropertyListDocument document;
    PropertyListIndex index;
    const auto floor = [&] { readFloor(input); };
    printRatio("A parse, " + input.name, timeRatio(floor, [&] { parse(document, input); }),
               kParseGoal);
    printRatio("A parse and index, " + input.name,
               timeRatio(floor, [&] { parseAndIndex(document, index, input); }), kIndexGoal);
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel;
    using namespace navrel::bench;

    benchmark::Initialize(&argc, argv);
    const std::vector<Input> inputs = makeInputs();
    PropertyListDocument document;
    PropertyListIndex index;
    for (const Input& input : inputs) {
        registerBenchmark("floor/" + input.name, input.bytes.size(), [&] { readFloor(input); });
        registerBenchmark("parse/" + input.name, input.bytes.size(),
                          [&] { parse(document, input); });
        registerBenchmark("parse and index/" + input.name, input.bytes.size(),
                          [&] { parseAndIndex(document, index, input); });
    }
    benchmark::RunSpecifiedBenchmarks();
    for (const Input& input : inputs) {
        measure(input);
    }
    return EXIT_SUCCESS;
}
