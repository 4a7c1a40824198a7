// The store against bare prepared statements on a file with the same tables: 100,000 elements
// inserted and saved, the elements of one file fetched, and one changed file saved.

#include "bench/Ratio.h"
#include "bench/RegisterBenchmark.h"
#include "bench/project/BareStore.h"
#include "project/store/ManagedObjectContext.h"
#include "project/store/PersistentStoreCoordinator.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>

#include <cstdlib>

namespace navrel::bench {
namespace {

constexpr int kFiles = 2'500;
constexpr int kElementsOfFile = 40;
constexpr double kLoadGoal = 1.15;
constexpr double kFetchGoal = 0.1;
constexpr double kChangeGoal = 1.25;

std::vector<ElementRow> rowsOfFile(int file, int version) {
    const QByteArray identifier = QByteArray::number(file).rightJustified(24, '0');
    const QByteArray path = "/home/someone/project/Sources/Group" + QByteArray::number(file / 20) +
                            "/File" + QByteArray::number(file) + ".m";
    static const QByteArray types[] = {"method", "property", "mark", "class"};
    std::vector<ElementRow> rows;
    for (int element = 0; element < kElementsOfFile; ++element) {
        rows.push_back({identifier, element * 7 + 1,
                        "-tableView:numberOfRowsInSection:" + QByteArray::number(element + version),
                        path, types[element % 4]});
    }
    return rows;
}

std::vector<ElementRow> rowsOfAllFiles() {
    std::vector<ElementRow> rows;
    for (int file = 0; file < kFiles; ++file) {
        for (ElementRow& row : rowsOfFile(file, 0)) {
            rows.push_back(std::move(row));
        }
    }
    return rows;
}

/// A store of the program's own, with the record of one file in it.
class OwnStore {
public:
    explicit OwnStore(const QString& path) {
        require(coordinator_.addPersistentStoreAtPath(path));
        context_ = std::make_unique<ManagedObjectContext>(coordinator_);
        object_ = &context_->insertObject();
        require(context_->save());
    }

    void removeAll() {
        context_->deleteAllElements();
        require(context_->save());
    }
    void insert(const std::vector<ElementRow>& rows) {
        insertRows(rows);
        require(context_->save());
    }
    void replace(const std::vector<ElementRow>& rows, qint64 date) {
        for (CDElement* element : context_->elementsWithIdentifier(rows.front().identifier)) {
            context_->deleteElement(*element);
        }
        object_->setModified(date);
        insertRows(rows);
        require(context_->save());
    }
    qint64 fetch(const QByteArray& identifier) const {
        qint64 sum = 0;
        for (const CDElement* element : context_->elementsWithIdentifier(identifier)) {
            sum += *element->line();
            sum += element->name()->size() > 0 && element->path()->size() > 0 &&
                           element->type()->size() > 0
                       ? 0
                       : 1;
        }
        return sum;
    }

private:
    void insertRows(const std::vector<ElementRow>& rows) {
        for (const ElementRow& row : rows) {
            CDElement& element = context_->insertElement();
            element.setIdentifier(row.identifier);
            element.setLine(row.line);
            element.setName(row.name);
            element.setPath(row.path);
            element.setType(row.type);
        }
    }

    PersistentStoreCoordinator coordinator_;
    std::unique_ptr<ManagedObjectContext> context_;
    CDObject* object_ = nullptr;
};

/// Both stores in one folder: on one disk, taking turns.
class Stores {
public:
    Stores() : own_(path("own")) {
        for (const char* name : {"bare", "indexed"}) {
            const OwnStore makesTheTables(path(name));
        }
        bare_ = std::make_unique<BareStore>(path("bare"), false);
        indexed_ = std::make_unique<BareStore>(path("indexed"), true);
    }

    OwnStore& own() { return own_; }
    BareStore& bare() { return *bare_; }
    BareStore& indexed() { return *indexed_; }

private:
    QString path(const char* name) const { return folder_.filePath(QString::fromUtf8(name)); }

    QTemporaryDir folder_;
    OwnStore own_;
    std::unique_ptr<BareStore> bare_;
    std::unique_ptr<BareStore> indexed_;
};

/// As `timeRatio`, for jobs that need an empty table each time.
double loadRatio(Stores& stores, const std::vector<ElementRow>& rows) {
    std::vector<double> floorTimes;
    std::vector<double> ownTimes;
    auto floor = [&] { stores.bare().insert(rows); };
    auto own = [&] { stores.own().insert(rows); };
    for (int round = 0; round < kRounds; ++round) {
        stores.bare().removeAll();
        floorTimes.push_back(secondsOf(floor));
        stores.own().removeAll();
        ownTimes.push_back(secondsOf(own));
    }
    return medianOf(ownTimes) / medianOf(floorTimes);
}

double fetchRatio(Stores& stores, const std::vector<ElementRow>& rows) {
    stores.indexed().insert(rows);
    const auto fetchAll = [&](auto& store) {
        qint64 sum = 0;
        for (int file = 0; file < kFiles; ++file) {
            // Not one after the other, as a person does not look at them.
            const int chosen = file * 997 % kFiles;
            sum += store.fetch(rows[static_cast<std::size_t>(chosen) * kElementsOfFile].identifier);
        }
        benchmark::DoNotOptimize(sum);
    };
    return timeRatio([&] { fetchAll(stores.indexed()); }, [&] { fetchAll(stores.own()); });
}

double changeRatio(Stores& stores) {
    std::vector<std::vector<ElementRow>> files;
    for (int file = 0; file <= kRounds; ++file) {
        files.push_back(rowsOfFile(file, 1));
    }
    // Both take the files in order; the bare rows are numbered as they were inserted.
    std::size_t nextBare = 0;
    std::size_t nextOwn = 0;
    return timeRatio(
        [&] {
            const auto firstRow = static_cast<qint64>(nextBare * kElementsOfFile + 1);
            stores.bare().replace(firstRow, files[nextBare], firstRow);
            ++nextBare;
        },
        [&] {
            stores.own().replace(files[nextOwn], static_cast<qint64>(nextOwn + 1));
            ++nextOwn;
        });
}

} // namespace
} // namespace navrel::bench

int main(int argc, char** argv) {
    using namespace navrel::bench;

    benchmark::Initialize(&argc, argv);
    Stores stores;
    const std::vector<ElementRow> rows = rowsOfAllFiles();
    registerBenchmark("bare statements: load 100,000 elements", [&] {
        stores.bare().removeAll();
        stores.bare().insert(rows);
    });
    registerBenchmark("store: load 100,000 elements", [&] {
        stores.own().removeAll();
        stores.own().insert(rows);
    });
    benchmark::RunSpecifiedBenchmarks();

    printRatio("F store, load 100,000 elements", loadRatio(stores, rows), kLoadGoal);
    printRatio("F store, fetch a file's elements", fetchRatio(stores, rows), kFetchGoal);
    printRatio("F store, save one changed file", changeRatio(stores), kChangeGoal);
    return EXIT_SUCCESS;
}
