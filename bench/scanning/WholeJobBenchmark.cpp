// The first load of a project of some 45 MB of sources, from its project file to the committed
// store, against a plain load of the same files.

#include "bench/Ratio.h"
#include "bench/RegisterBenchmark.h"
#include "bench/project/QuietWorld.h"
#include "bench/scanning/PlainLoad.h"
#include "bench/scanning/SourceTree.h"
#include "project/KZDataManager.h"
#include "project/store/ManagedObjectContext.h"
#include "support/core/UserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <vector>

namespace navrel::bench {
namespace {

constexpr double kGoal = 0.1;
constexpr int kWholeJobRounds = 5; // a plain load takes seconds

[[noreturn]] void fail(const char* reason) {
    std::fprintf(stderr, "%s\n", reason);
    std::exit(EXIT_FAILURE);
}

/// A project bundle that lists the files of a tree, with a group for each folder.
class ProjectOfTree {
public:
    explicit ProjectOfTree(const SourceTree& tree) {
        QDir().mkpath(bundle());
        QFile file(bundle() + QStringLiteral("/project.pbxproj"));
        const QByteArray text = projectFile(tree);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            fail("cannot write the project file");
        }
    }

    QString bundle() const { return folder_.filePath(QStringLiteral("App.xcodeproj")); }

private:
    QByteArray projectFile(const SourceTree& tree) const {
        QByteArray objects;
        std::map<QString, QByteArray> children; // of each folder
        int number = 0;
        for (const QByteArray& path : tree.paths()) {
            const QFileInfo file(QString::fromUtf8(path));
            const QByteArray identifier = QByteArray::number(number++).rightJustified(24, '0');
            objects += identifier + " = {isa = PBXFileReference; path = \"" +
                       file.fileName().toUtf8() + "\"; sourceTree = \"<group>\";};\n";
            children[file.path()] += identifier + ", ";
        }
        QByteArray groups;
        number = 0;
        for (const auto& [folder, files] : children) {
            const QByteArray identifier = "GROUP" + QByteArray::number(number++);
            // Paths are joined, also absolute ones: it has to lead there from the bundle's folder.
            const QByteArray path = QDir(folder_.path()).relativeFilePath(folder).toUtf8();
            objects += identifier + " = {isa = PBXGroup; path = \"" + path + "\"; children = (" +
                       files + ");};\n";
            groups += identifier + ", ";
        }
        return "{ objects = {\n" + objects + "MAIN = {isa = PBXGroup; children = (" + groups +
               ");};\nPROJECT = {isa = PBXProject; mainGroup = MAIN;}; }; rootObject = PROJECT; "
               "}\n";
    }

    QTemporaryDir folder_;
};

/// The program's own load, into a new store.
class OwnLoad {
public:
    OwnLoad(const ProjectOfTree& project, const QString& storeFolder)
        : defaults_(storeFolder + QStringLiteral("/defaults")),
          manager_(KZDataManager::init({defaults_, editor_, dialogs_, storeFolder})) {
        manager_->changeProjectToPath(project.bundle());
        manager_->updateInBackground();
        const ManagedObjectContext* const context = manager_->managedObjectContext();
        if (context == nullptr || context->hasChanges()) {
            fail("the load was not saved");
        }
        elements_ = context->elements().size();
    }
    ~OwnLoad() { manager_->setWeakSelf(nullptr); }

    std::size_t elements() const { return elements_; }

private:
    NoEditor editor_;
    NoDialogs dialogs_;
    UserDefaults defaults_;
    std::shared_ptr<KZDataManager> manager_;
    std::size_t elements_ = 0;
};

/// Both loads, each into a place of its own that nothing was written to before.
class Loads {
public:
    explicit Loads(const SourceTree& tree) : tree_(tree), project_(tree) {}

    /// The program keeps what it has loaded as long as it runs.
    void loadOwn() {
        kept_.push_back(std::make_unique<OwnLoad>(project_, newFolder()));
        expectElements(kept_.back()->elements());
    }
    void loadPlain(PlainLoad& plain) {
        expectElements(plain.load(tree_, newFolder() + QStringLiteral("/store")));
    }

private:
    QString newFolder() {
        const QString folder = folder_.filePath(QString::number(folders_++));
        QDir().mkpath(folder);
        return folder;
    }

    /// Loads that find different things have not done the same job.
    void expectElements(std::size_t count) {
        if (count == 0 || (elements_ != 0 && elements_ != count)) {
            fail("the loads found different elements");
        }
        elements_ = count;
    }

    const SourceTree& tree_;
    ProjectOfTree project_;
    QTemporaryDir folder_;
    std::vector<std::unique_ptr<OwnLoad>> kept_;
    int folders_ = 0;
    std::size_t elements_ = 0;
};

double ratioTo(PlainPeer::Way way, Loads& loads) {
    PlainLoad plain(way);
    return timeRatio([&] { loads.loadPlain(plain); }, [&] { loads.loadOwn(); }, kWholeJobRounds);
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel::bench;

    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    const SourceTree tree;
    Loads loads(tree);
    PlainLoad plain(PlainPeer::Way::stepByStep);
    registerBenchmark("first load", [&] { loads.loadOwn(); });
    registerBenchmark("plain load", [&] { loads.loadPlain(plain); });
    benchmark::RunSpecifiedBenchmarks();
    printRatio("whole first load, of one by plain ICU and QtSql, step by step",
               ratioTo(PlainPeer::Way::stepByStep, loads), kGoal);
    printRatio("the same, each text read at once", ratioTo(PlainPeer::Way::textAtOnce, loads));
    printRatio("the same, expressions kept", ratioTo(PlainPeer::Way::expressionsKept, loads));
    return EXIT_SUCCESS;
}
