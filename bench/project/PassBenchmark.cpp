// The update pass over an unchanged project against one `stat` by absolute path a file.

#include "bench/Ratio.h"
#include "bench/RegisterBenchmark.h"
#include "bench/project/QuietWorld.h"
#include "project/KZDataManager.h"
#include "project/store/CDObject.h"
#include "project/store/ManagedObjectContext.h"
#include "support/core/UserDefaults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace navrel::bench {
namespace {

constexpr int kFilesInFolder = 20;
constexpr int kFoldersInFolder = 25;
constexpr double kGoal = 0.85;

/// A project on disk, of files in folders in folders, and its bundle.
class ProjectOnDisk {
public:
    explicit ProjectOnDisk(int files) {
        for (int first = 0; first < files; first += kFilesInFolder) {
            addFolder(first / kFilesInFolder, std::min(first + kFilesInFolder, files) - first);
        }
        for (auto& [name, folders] : sections_) {
            addGroup(name, name, folders);
            mainChildren_ += name + ", ";
        }
        addGroup("MAIN", "Sources", mainChildren_);
        QDir().mkpath(bundle());
        write(bundle() + QStringLiteral("/project.pbxproj"),
              "{ objects = {\n" + objects_ +
                  "PROJECT = {isa = PBXProject; mainGroup = MAIN;}; }; rootObject = PROJECT; }\n");
    }

    QString bundle() const { return path("App.xcodeproj"); }
    QString scratchPath(const char* name) const {
        return folder_.filePath(QString::fromUtf8(name));
    }
    const std::vector<QByteArray>& files() const { return files_; }

private:
    /// Projects lie a few folders deep in a person's home.
    QString path(const QByteArray& name) const {
        return folder_.filePath(QString::fromUtf8("Development/App/" + name));
    }

    void addFolder(int number, int files) {
        // Padded: the map's order is then that of the files, in which the floor takes them too.
        const QByteArray section =
            "Section" + QByteArray::number(number / kFoldersInFolder).rightJustified(4, '0');
        const QByteArray name = "Group" + QByteArray::number(number);
        const QString folder = path("Sources/" + section + '/' + name);
        QDir().mkpath(folder);
        QByteArray children;
        for (int file = 0; file < files; ++file) {
            const QByteArray fileName = "File" + QByteArray::number(file) + "Controller.m";
            const QByteArray identifier =
                (name + "FILE" + QByteArray::number(file)).rightJustified(24, '0');
            objects_ += identifier + " = {isa = PBXFileReference; path = " + fileName + ";};\n";
            children += identifier + ", ";
            files_.push_back(folder.toUtf8() + '/' + fileName);
            write(QString::fromUtf8(files_.back()), "");
        }
        addGroup(name, name, children);
        sections_[section] += name + ", ";
    }

    void addGroup(const QByteArray& identifier, const QByteArray& path,
                  const QByteArray& children) {
        objects_ += identifier + " = {isa = PBXGroup; path = " + path + "; children = (" +
                    children + ");};\n";
    }

    static void write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            std::exit(EXIT_FAILURE);
        }
    }

    QTemporaryDir folder_;
    QByteArray objects_;
    QByteArray mainChildren_;
    std::map<QByteArray, QByteArray> sections_;
    std::vector<QByteArray> files_;
};

/// A data manager that has loaded the project.
class LoadedProject {
public:
    explicit LoadedProject(int files)
        : project_(files), defaults_(project_.scratchPath("defaults")),
          manager_(KZDataManager::init(
              {defaults_, editor_, dialogs_, project_.scratchPath("support")})) {
        manager_->changeProjectToPath(project_.bundle());
        // The first pass loads, the second finds nothing changed.
        pass();
        pass();
        if (manager_->managedObjectContext()->objects().size() < project_.files().size()) {
            std::exit(EXIT_FAILURE);
        }
    }
    ~LoadedProject() { manager_->setWeakSelf(nullptr); }

    std::string size() const { return std::to_string(project_.files().size()) + " files"; }

    void pass() { manager_->updateInBackground(); }

    void statEveryFile() const {
        struct stat status = {};
        for (const QByteArray& path : project_.files()) {
            if (::stat(path.constData(), &status) != 0) {
                std::exit(EXIT_FAILURE);
            }
            benchmark::DoNotOptimize(status);
        }
    }

private:
    ProjectOnDisk project_;
    UserDefaults defaults_;
    NoEditor editor_;
    NoDialogs dialogs_;
    std::shared_ptr<KZDataManager> manager_;
};

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel::bench;

    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    std::vector<std::unique_ptr<LoadedProject>> projects;
    for (const int files : {2'000, 10'000, 100'000}) {
        projects.push_back(std::make_unique<LoadedProject>(files));
        LoadedProject& project = *projects.back();
        registerBenchmark("stat every file/" + project.size(), [&] { project.statEveryFile(); });
        registerBenchmark("pass/" + project.size(), [&] { project.pass(); });
    }
    benchmark::RunSpecifiedBenchmarks();
    for (const auto& project : projects) {
        printRatio("C pass over " + project->size() + ", nothing changed",
                   timeRatio([&] { project->statEveryFile(); }, [&] { project->pass(); }), kGoal);
    }
    return EXIT_SUCCESS;
}
