// The whole map of a project: its first building against reading the files alone, how long a saved
// file takes to be in a snapshot, and what a symbol takes of memory.

#include "bench/Ratio.h"
#include "bench/scanning/SourceTree.h"
#include "codemap/CodeMap.h"
#include "codemap/MapBuilder.h"
#include "codemap/SourceOutline.h"
#include "codemap/tree/DiskStatus.h"
#include "codemap/tree/Paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <malloc.h>
#include <mutex>
#include <string>
#include <vector>

namespace navrel::bench {
namespace {

constexpr int kMapRounds = 9;
constexpr double kMapGoal = 4;
constexpr double kBytesGoal = 120;
constexpr int kFilesOfLargeProject = 20'000;
constexpr int kFilesOfFolder = 40;
constexpr int kSaves = 200;
constexpr double kMedianGoal = 80;
constexpr double kSlowGoal = 150;

/// A project of one synchronised folder.
std::string writeProject(const QTemporaryDir& place, const std::string& folder) {
    const std::string bundle = place.filePath(QStringLiteral("App.xcodeproj")).toStdString();
    QDir().mkpath(QString::fromStdString(bundle));
    std::ofstream(bundle + "/project.pbxproj")
        << "{ objects = {\nP = {isa = PBXProject; mainGroup = M; };\n"
           "M = {isa = PBXGroup; children = (S); };\n"
           "S = {isa = PBXFileSystemSynchronizedRootGroup; path = \""
        << folder << "\"; sourceTree = \"<absolute>\"; };\n}; rootObject = P; }\n";
    return bundle;
}

std::size_t heapInUse() {
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

void measureFirstMap(const SourceTree& tree, const std::string& bundle) {
    const auto readAlone = [&tree] {
        for (const QByteArray& path : tree.paths()) {
            benchmark::DoNotOptimize(contentOfFile(path.toStdString(), kMaximumSourceSize));
        }
    };
    const auto map = [&bundle] {
        benchmark::DoNotOptimize(MapBuilder(bundle).build(1).snapshot->symbolCount());
    };
    printRatio("first map of 45 MB, reading included / reading alone",
               timeRatio(readAlone, map, kMapRounds), kMapGoal);
}

void measureMemory(const std::string& bundle) {
    ::malloc_trim(0);
    const std::size_t before = heapInUse();
    MapBuilder builder(bundle);
    const CodeMapSnapshotPtr snapshot = builder.build(1).snapshot;
    const std::size_t after = heapInUse();
    std::size_t names = 0;
    std::size_t outlines = 0;
    for (const MapNodePtr& node : snapshot->nodes()) {
        if (node->outline) {
            outlines += node->outline->memory();
            for (const Symbol& symbol : node->outline->symbols()) {
                names += symbol.name.length;
            }
        }
    }
    const auto symbols = double(snapshot->symbolCount());
    std::printf("%zu files, %.0f symbols\n", snapshot->fileCount(), symbols);
    printRatio("memory of a symbol beside its name, search included, bytes",
               double(outlines - names) / symbols, kBytesGoal);
    printRatio("the same with the files and all that is kept of the disk, bytes",
               double(after - before - names) / symbols);
}

/// Waits for the snapshot that a saved file is in.
class LiveMap {
public:
    explicit LiveMap(const std::string& bundle) {
        map_.addObserver([this](const CodeMap::Change& change) {
            const std::lock_guard lock(mutex_);
            revision_ = change.revision;
            condition_.notify_all();
        });
        map_.open(bundle);
        std::unique_lock lock(mutex_);
        condition_.wait(lock, [this] { return map_.snapshot()->state() == MapState::loaded; });
    }

    template <typename Save>
    double millisecondsOf(Save save) {
        std::unique_lock lock(mutex_);
        const std::uint64_t before = revision_;
        save();
        const auto saved = std::chrono::steady_clock::now();
        condition_.wait(lock, [this, before] { return revision_ > before; });
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - saved)
            .count();
    }

private:
    std::mutex mutex_;
    std::condition_variable condition_;
    std::uint64_t revision_ = 0;
    CodeMap map_;
};

std::vector<std::string> writeLargeProject(const QTemporaryDir& place) {
    std::vector<std::string> files;
    for (int file = 0; file < kFilesOfLargeProject; ++file) {
        const std::string folder =
            place.path().toStdString() + "/Sources/Part" + std::to_string(file / kFilesOfFolder);
        if (file % kFilesOfFolder == 0) {
            QDir().mkpath(QString::fromStdString(folder));
        }
        files.push_back(folder + "/File" + std::to_string(file) + ".swift");
        std::ofstream(files.back()) << "struct S" << file << " {\n    func f() {}\n}\n";
    }
    return files;
}

void measureSaves() {
    const QTemporaryDir place;
    const std::vector<std::string> files = writeLargeProject(place);
    LiveMap map(writeProject(place, place.path().toStdString() + "/Sources"));
    std::vector<double> times;
    for (int save = 0; save < kSaves; ++save) {
        const std::string& file = files[static_cast<std::size_t>(save) * 97 % files.size()];
        times.push_back(map.millisecondsOf([&file, save] {
            // Every other editor writes another file and renames it.
            const std::string written = save % 2 == 0 ? file : file + "~";
            std::ofstream(written) << "struct Saved" << save << " {}\n";
            if (written != file) {
                std::rename(written.c_str(), file.c_str());
            }
        }));
    }
    std::sort(times.begin(), times.end());
    printRatio("file saved to snapshot, 20,000 files: median, ms", medianOf(times), kMedianGoal);
    printRatio("file saved to snapshot, 20,000 files: 99th percentile, ms",
               times[static_cast<std::size_t>(0.99 * double(times.size() - 1))], kSlowGoal);
}

void run() {
    const SourceTree tree;
    const QTemporaryDir place;
    const std::string folder(parentFolder(tree.paths().front().toStdString()));
    const std::string bundle = writeProject(place, folder);
    measureFirstMap(tree, bundle);
    measureMemory(bundle);
    measureSaves();
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    navrel::bench::run();
}
