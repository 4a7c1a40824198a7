// Scanning a tree of sources for superclasses, shortcuts and elements, reading included, against
// reading it alone, and the patterns by ICU against that. See SourceTree for what is scanned.

#include "bench/Ratio.h"
#include "bench/scanning/HostileTexts.h"
#include "bench/scanning/SourceTree.h"
#include "scanning/PlainScan.h"
#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceScan.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel::bench {
namespace {

constexpr double kReadGoal = 1.5;
constexpr double kPlainGoal = 60;
constexpr double kHostileGoal = 20;
constexpr int kHostileRounds = 11; // of each text
constexpr int kPlainRounds = 3;    // each takes seconds

std::size_t countOf(const SourceFindings& findings) {
    std::size_t count = findings.shortcuts().size() + (findings.superclass() ? 1 : 0);
    findings.visitElements([&count](const SourceElement&) { ++count; });
    return count;
}

/// The least that reading takes.
class Floor {
public:
    void read(const SourceTree& tree) {
        for (const QByteArray& path : tree.paths()) {
            const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
            struct stat status {};
            ::fstat(descriptor, &status);
            memory_.resize(std::max(memory_.size(), std::size_t(status.st_size)));
            benchmark::DoNotOptimize(::read(descriptor, memory_.data(), memory_.size()));
            ::close(descriptor);
        }
    }

private:
    std::vector<char> memory_;
};

class FastJob {
public:
    void scan(const SourceTree& tree) {
        std::size_t count = 0;
        for (const QByteArray& path : tree.paths()) {
            if (const auto text = buffer_.read(path)) {
                scanSource(*text, SourceName(path), *findings_);
                count += countOf(*findings_);
            }
        }
        benchmark::DoNotOptimize(count);
    }

private:
    SourceFileBuffer buffer_;
    std::unique_ptr<SourceFindings> findings_ = std::make_unique<SourceFindings>();
};

class PlainJob {
public:
    void scan(const SourceTree& tree) { scan(tree, plain_); }

    /// Makes the expressions anew for every file, as a program does that keeps none.
    void scanWithNewExpressions(const SourceTree& tree) { scan(tree, none_); }

private:
    void scan(const SourceTree& tree, std::optional<PlainScan>& kept) {
        std::size_t count = 0;
        for (const QByteArray& path : tree.paths()) {
            if (const auto text = buffer_.read(path)) {
                std::optional<PlainScan> made;
                PlainScan& plain = kept ? *kept : made.emplace();
                plain.scan(*text, SourceName(path), *findings_, std::nullopt);
                count += countOf(*findings_);
            }
        }
        benchmark::DoNotOptimize(count);
    }

    SourceFileBuffer buffer_;
    std::optional<PlainScan> plain_{std::in_place};
    std::optional<PlainScan> none_;
    std::unique_ptr<SourceFindings> findings_ = std::make_unique<SourceFindings>();
};

/// The tree's own sources, a megabyte at a time: the same one again would be learned by heart by
/// the processor.
class OrdinaryMegabytes {
public:
    explicit OrdinaryMegabytes(const SourceTree& tree) {
        SourceFileBuffer buffer;
        for (const QByteArray& path : tree.paths()) {
            if (const auto source = buffer.read(path)) {
                text_ += *source;
            }
        }
    }

    qsizetype size() const { return std::min(text_.size(), kMegabyte); }

    QByteArrayView next() {
        next_ = next_ + 2 * size() <= text_.size() ? next_ + size() : 0;
        return QByteArrayView(text_).sliced(next_, size());
    }

private:
    static constexpr qsizetype kMegabyte = qsizetype(1) << 20;

    QByteArray text_;
    qsizetype next_ = 0;
};

/// The hostile text that takes longest, byte for byte, as a multiple of ordinary source.
void measureHostileTexts(const SourceTree& tree) {
    OrdinaryMegabytes ordinary(tree);
    const auto findings = std::make_unique<SourceFindings>();
    const auto scan = [&findings](QByteArrayView text, QByteArrayView path) {
        scanSource(text, SourceName(path), *findings);
        benchmark::DoNotOptimize(countOf(*findings));
    };
    double worst = 0;
    double worstPattern = 0;
    for (const HostileText& hostile : makeHostileTexts()) {
        const double ratio =
            timeRatio<ProcessorTime>([&] { scan(ordinary.next(), "a.m"); },
                                     [&] { scan(hostile.text, hostile.path); }, kHostileRounds) *
            double(ordinary.size()) / double(hostile.text.size());
        if (ratio > kHostileGoal) {
            std::printf("%.1f ordinary megabytes: \"%s...\" in %s\n", ratio,
                        hostile.text.left(16).toPercentEncoding(" :(){}@/").constData(),
                        hostile.path);
        }
        double& worstOfKind = hostile.isNamedLikeAPattern() ? worstPattern : worst;
        worstOfKind = std::max(worstOfKind, ratio);
    }
    printRatio("B the worst hostile megabyte, of ordinary source", worst, kHostileGoal);
    printRatio("B the same in a header whose name is a pattern", worstPattern, kHostileGoal);
}

template <typename Job>
void registerBenchmark(const char* name, const SourceTree& tree, Job job) {
    benchmark::RegisterBenchmark(name, [&tree, job](benchmark::State& state) {
        for ([[maybe_unused]] const auto round : state) {
            job();
        }
        state.SetBytesProcessed(state.iterations() * tree.size());
    })->Unit(benchmark::kMillisecond);
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel::bench;

    benchmark::Initialize(&argc, argv);
    const SourceTree tree;
    Floor floor;
    FastJob fast;
    PlainJob plain;
    registerBenchmark("read", tree, [&] { floor.read(tree); });
    registerBenchmark("scan", tree, [&] { fast.scan(tree); });
    registerBenchmark("scan by the patterns", tree, [&] { plain.scan(tree); });
    benchmark::RunSpecifiedBenchmarks();
    printRatio("B scan, of reading alone",
               timeRatio([&] { floor.read(tree); }, [&] { fast.scan(tree); }), kReadGoal);
    printRatio("B the patterns by ICU, of the scan",
               timeRatio([&] { fast.scan(tree); }, [&] { plain.scan(tree); }, kPlainRounds),
               kPlainGoal, Bound::atLeast);
    printRatio("B the same with expressions made for every file, of the scan",
               timeRatio([&] { fast.scan(tree); }, [&] { plain.scanWithNewExpressions(tree); },
                         kPlainRounds),
               kPlainGoal, Bound::atLeast);
    measureHostileTexts(tree);
    return EXIT_SUCCESS;
}
