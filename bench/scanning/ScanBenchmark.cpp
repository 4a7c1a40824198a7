// Scanning a tree of sources for superclasses, shortcuts and elements, reading included, against
// reading it alone, and the patterns by ICU against that. See SourceTree for what is scanned.

#include "bench/Ratio.h"
#include "bench/RegisterBenchmark.h"
#include "bench/scanning/HostileTexts.h"
#include "bench/scanning/PlainPeer.h"
#include "bench/scanning/SourceTree.h"
#include "scanning/SourceFileBuffer.h"
#include "scanning/SourceScan.h"

#include <QFile>
#include <QTemporaryDir>
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

/// The least that reading takes.
class Floor {
public:
    void read(const SourceTree& tree) {
        for (const QByteArray& path : tree.paths()) {
            const int descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
            struct stat status = {};
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
        for (const QByteArray& path : tree.paths()) {
            scanFile(path);
        }
    }

    void scanFile(const QByteArray& path) {
        if (const auto text = buffer_.read(path)) {
            scanText(*text, path);
        }
    }

    void scanText(QByteArrayView text, QByteArrayView path) {
        scanSource(text, SourceName(path), *findings_);
        benchmark::DoNotOptimize(countOf(*findings_));
    }

private:
    SourceFileBuffer buffer_;
    std::unique_ptr<SourceFindings> findings_ = std::make_unique<SourceFindings>();
};

void scanPlainly(const SourceTree& tree, PlainPeer& plain) {
    std::size_t count = 0;
    for (const QByteArray& path : tree.paths()) {
        count += countOf(plain.scan(path));
    }
    benchmark::DoNotOptimize(count);
}

/// How many times the program's own scan goes into one by ICU.
double plainRatio(const SourceTree& tree, FastJob& fast, PlainPeer::Way way) {
    PlainPeer plain(way);
    return timeRatio([&] { fast.scan(tree); }, [&] { scanPlainly(tree, plain); }, kPlainRounds);
}

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

/// A text in a file of its name.
class HostileFile {
public:
    explicit HostileFile(const HostileText& hostile)
        : path_(QFile::encodeName(folder_.filePath(QString::fromUtf8(hostile.path)))) {
        QFile file(QFile::decodeName(path_));
        if (!file.open(QIODevice::WriteOnly) || file.write(hostile.text) != hostile.text.size()) {
            std::fprintf(stderr, "cannot write a hostile text\n");
            std::exit(EXIT_FAILURE);
        }
    }

    const QByteArray& path() const { return path_; }

private:
    QTemporaryDir folder_;
    QByteArray path_;
};

/// The hostile texts that take longest, byte for byte, as multiples of ordinary source: as files,
/// which is what they come as, and in memory, where the ordinary text is passed over so fast that
/// it decides what the ratio is.
class HostileMeasurement {
public:
    HostileMeasurement(const SourceTree& tree, FastJob& job)
        : tree_(tree), job_(job), ordinary_(tree) {}

    void measure(const HostileText& hostile) {
        const HostileFile file(hostile);
        const auto bytes = double(hostile.text.size());
        const double asFile =
            timeRatio<ProcessorTime>([&] { job_.scan(tree_); }, [&] { job_.scanFile(file.path()); },
                                     kHostileRounds) *
            double(tree_.size()) / bytes;
        const double inMemory =
            timeRatio<ProcessorTime>([&] { job_.scanText(ordinary_.next(), "a.m"); },
                                     [&] { job_.scanText(hostile.text, hostile.path); },
                                     kHostileRounds) *
            double(ordinary_.size()) / bytes;
        if (asFile > kHostileGoal) {
            std::printf("%.1f ordinary megabytes: \"%s...\" in %s\n", asFile,
                        hostile.text.left(16).toPercentEncoding(" :(){}@/").constData(),
                        hostile.path);
        }
        double& worstAsFile = hostile.isNamedLikeAPattern() ? worstPatternFile_ : worstFile_;
        worstAsFile = std::max(worstAsFile, asFile);
        worstInMemory_ = std::max(worstInMemory_, inMemory);
    }

    void print() const {
        printRatio("B the worst hostile megabyte, of ordinary source", worstFile_, kHostileGoal);
        printRatio("B the same in a header whose name is a pattern", worstPatternFile_,
                   kHostileGoal);
        printRatio("B the worst of both in memory, reading left out", worstInMemory_);
    }

private:
    const SourceTree& tree_;
    FastJob& job_;
    OrdinaryMegabytes ordinary_;
    double worstFile_ = 0;
    double worstPatternFile_ = 0;
    double worstInMemory_ = 0;
};

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel::bench;

    benchmark::Initialize(&argc, argv);
    const SourceTree tree;
    Floor floor;
    FastJob fast;
    PlainPeer plain(PlainPeer::Way::stepByStep);
    registerBenchmark("read", tree.size(), [&] { floor.read(tree); });
    registerBenchmark("scan", tree.size(), [&] { fast.scan(tree); });
    registerBenchmark("scan by ICU", tree.size(), [&] { scanPlainly(tree, plain); });
    benchmark::RunSpecifiedBenchmarks();
    printRatio("B scan, of reading alone",
               timeRatio([&] { floor.read(tree); }, [&] { fast.scan(tree); }), kReadGoal);
    printRatio("B plain ICU step by step, of the scan",
               plainRatio(tree, fast, PlainPeer::Way::stepByStep), kPlainGoal, Bound::atLeast);
    printRatio("B plain ICU, each text read at once, of the scan",
               plainRatio(tree, fast, PlainPeer::Way::textAtOnce));
    printRatio("B the same, expressions kept",
               plainRatio(tree, fast, PlainPeer::Way::expressionsKept));
    HostileMeasurement hostile(tree, fast);
    for (const HostileText& text : makeHostileTexts()) {
        hostile.measure(text);
    }
    hostile.print();
    return EXIT_SUCCESS;
}
