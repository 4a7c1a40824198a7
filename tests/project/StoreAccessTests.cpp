#include "project/StoreErrorWindow.h"
#include "project/store/PersistentStoreCoordinator.h"
#include "project/store/SQLiteDatabase.h"
#include "project/store/StoreFile.h"
#include "tests/project/DataManagerFixture.h"
#include "tests/project/OpenStore.h"

#include <cerrno>
#include <chrono>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace navrel {
namespace {

using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class StoreAccess : public DataManagerTest {
protected:
    /// Keeps the store from being written while it lives.
    struct Lock {
        explicit Lock(const QString& path) {
            EXPECT_FALSE(database.open(path.toUtf8()).has_value());
            EXPECT_FALSE(database.execute("BEGIN IMMEDIATE").has_value());
        }
        SQLiteDatabase database;
    };

    static mode_t modeOf(const QString& path) {
        struct stat status = {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
        return status.st_mode & 07777U;
    }

    /// Switches one file type off and all others on.
    void switchOff(const char* extension) {
        for (CDFiletype* filetype : context().filetypes()) {
            filetype->setAllowed(filetype->extension() != extension);
        }
    }
};

TEST_F(StoreAccess, theStoreIsForTheMainThreadAlone) {
    manager();
    const auto askOnAnotherThread = [this] {
        setLogReceiver({});
        std::thread([this] { manager().managedObjectContext(); }).join();
    };
    EXPECT_DEATH(askOnAnotherThread(), "on the main thread");
}

TEST_F(StoreAccess, theStoresFolderIsNamedAfterTheApplication) {
    EXPECT_EQ(manager().applicationDocumentsDirectory(), storeFolder());
}

TEST_F(StoreAccess, theFirstUseMakesTheFoldersAndTheFile) {
    ASSERT_FALSE(QFile::exists(supportFolder()));
    EXPECT_NE(manager().persistentStoreCoordinator(), nullptr);
    EXPECT_TRUE(QFile::exists(storePath()));
    EXPECT_THAT(dialogs.errors, IsEmpty());
}

TEST_F(StoreAccess, modelCoordinatorAndContextStayTheSame) {
    const ManagedObjectModel* model = &manager().managedObjectModel();
    PersistentStoreCoordinator* coordinator = manager().persistentStoreCoordinator();
    ManagedObjectContext* first = manager().managedObjectContext();

    EXPECT_EQ(&manager().managedObjectModel(), model);
    EXPECT_EQ(manager().persistentStoreCoordinator(), coordinator);
    EXPECT_EQ(manager().managedObjectContext(), first);
    EXPECT_NE(first, nullptr);
}

TEST_F(StoreAccess, aFileInPlaceOfTheFolderIsPresentedAtEveryAccess) {
    write(storeFolder(), "a file");

    EXPECT_EQ(manager().persistentStoreCoordinator(), nullptr);
    ASSERT_EQ(dialogs.errors.size(), 1U);
    const Error& error = dialogs.errors.front();
    EXPECT_EQ(error, Error(QStringLiteral("YOUR_ERROR_DOMAIN"), 9999));
    EXPECT_EQ(error.localizedDescription(),
              QStringLiteral("Failed to initialize the application's saved data"));
    EXPECT_EQ(error.localizedFailureReason(),
              QStringLiteral("Expected a folder to store application data, found a file (%1).")
                  .arg(storeFolder()));
    EXPECT_EQ(error.underlyingError(), nullptr);

    clock.advance(StoreErrorWindow::kQuietTime);
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    EXPECT_EQ(dialogs.errors.size(), 2U);
}

TEST_F(StoreAccess, forAMinuteAfterItWasDismissedTheSameErrorIsCounted) {
    write(storeFolder(), "a file");
    for (int access = 0; access < 30; ++access) {
        EXPECT_EQ(manager().managedObjectContext(), nullptr);
        clock.advance(seconds(2));
    }
    EXPECT_EQ(dialogs.errors.size(), 1U);
    EXPECT_THAT(takeLog(), IsEmpty());

    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    EXPECT_EQ(dialogs.errors.size(), 2U);
    EXPECT_THAT(takeLog(), ElementsAre("The same 29 times more: " +
                                       dialogs.errors.front().description().toStdString()));
}

TEST_F(StoreAccess, aWindowThatIsShownIsNotShownAgain) {
    write(storeFolder(), "a file");
    dialogs.whileErrorShown = [&] { EXPECT_EQ(manager().managedObjectContext(), nullptr); };
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    EXPECT_EQ(dialogs.errors.size(), 1U);
}

TEST_F(StoreAccess, anotherCauseIsPresentedAtOnce) {
    write(storeFolder(), "a file");
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    QFile::remove(storeFolder());
    write(storePath(), QByteArray(5000, 'x'));
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    EXPECT_EQ(dialogs.errors.size(), 2U);
}

TEST_F(StoreAccess, theWindowNamesWhatToMoveAway) {
    const QString sentence =
        QStringLiteral("To start with an empty store, quit Navrel and move this away:\n");
    write(storeFolder(), "a file");
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    EXPECT_EQ(dialogs.errors.back().localizedRecoverySuggestion(), sentence + storeFolder());
    QFile::remove(storeFolder());
    write(storePath(), QByteArray(5000, 'x'));
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    EXPECT_EQ(dialogs.errors.back().localizedRecoverySuggestion(), sentence + storePath());
}

TEST_F(StoreAccess, folderAndStoreAreTheUsersAloneWhateverTheUmask) {
    for (const mode_t mask : {0U, 0777U}) {
        const mode_t former = ::umask(mask);
        context();
        ::umask(former);
        EXPECT_EQ(modeOf(storeFolder()), 0700U);
        EXPECT_EQ(modeOf(storePath()), 0600U);
        endManager();
        ASSERT_TRUE(QDir(storeFolder()).removeRecursively());
    }
}

TEST_F(StoreAccess, theRightsOfOthersAreTakenFromAnExistingStore) {
    context();
    endManager();
    ASSERT_EQ(::chmod(QFile::encodeName(storeFolder()).constData(), 0755), 0);
    ASSERT_EQ(::chmod(QFile::encodeName(storePath()).constData(), 0664), 0);
    context();
    EXPECT_EQ(modeOf(storeFolder()), 0700U);
    EXPECT_EQ(modeOf(storePath()), 0600U);
}

TEST_F(StoreAccess, aDeletedStoreIsWrittenAgainWhole) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    takeLog();
    ASSERT_TRUE(QDir(storeFolder()).removeRecursively());
    switchOff("m");
    pass();
    EXPECT_THAT(takeLog(), ElementsAre("The store was deleted: all of it is written again"));
    EXPECT_FALSE(context().hasChanges());
    pass();
    context().insertFiletype();
    pass();
    EXPECT_THAT(takeLog(), IsEmpty());
    endManager();

    const OpenStore store(storePath());
    ASSERT_EQ(store.error(), std::nullopt);
    EXPECT_EQ(store->objects().size(), 2U);
    EXPECT_EQ(store->elements().size(), 1U);
    EXPECT_EQ(store->filetypesWithExtension("m").front()->allowed(), false);
    EXPECT_EQ(modeOf(storePath()), 0600U);
}

TEST_F(StoreAccess, whatReplacedTheStoreIsKeptUnderAnotherName) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    takeLog();
    for (const char* suffix : {".found", ".found-2"}) {
        ASSERT_TRUE(QFile::remove(storePath()));
        write(storePath(), "somebody's file");
        context().insertFiletype();
        pass();
        const QString aside = storePath() + QLatin1String(suffix);
        EXPECT_THAT(takeLog(),
                    ElementsAre("The store was replaced: all of it is written again, and what was "
                                "put in its place is now " +
                                aside.toStdString()));
        QFile kept(aside);
        ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
        EXPECT_EQ(kept.readAll(), "somebody's file");
        EXPECT_FALSE(context().hasChanges());
    }
    endManager();
    const OpenStore store(storePath());
    ASSERT_EQ(store.error(), std::nullopt);
    EXPECT_EQ(store->objects().size(), 2U);
}

TEST_F(StoreAccess, onceTheObstacleIsGoneTheNextAccessOpensTheStore) {
    write(storeFolder(), "a file");
    EXPECT_EQ(manager().managedObjectContext(), nullptr);
    QFile::remove(storeFolder());
    EXPECT_NE(manager().managedObjectContext(), nullptr);
}

TEST_F(StoreAccess, aFolderThatCannotBeMadeIsPresentedWithItsCause) {
    // The file lies where an intermediate folder would be.
    write(scratch_.filePath(QStringLiteral("support")), "a file");

    EXPECT_EQ(manager().persistentStoreCoordinator(), nullptr);
    ASSERT_EQ(dialogs.errors.size(), 1U);
    EXPECT_EQ(
        dialogs.errors.front().localizedFailureReason(),
        QStringLiteral("There was an error creating or loading the application's saved data."));
    ASSERT_NE(dialogs.errors.front().underlyingError(), nullptr);
    EXPECT_TRUE(dialogs.errors.front().underlyingError()->isPOSIX(ENOTDIR));
}

TEST_F(StoreAccess, theErrorOfMakingTheFolderIsTheCause) {
    // A link to nowhere: there is no such folder, and none can be made.
    ASSERT_TRUE(QDir().mkpath(supportFolder()));
    ASSERT_EQ(::symlink("/nowhere/at/all", storeFolder().toUtf8().constData()), 0);

    EXPECT_EQ(manager().persistentStoreCoordinator(), nullptr);
    ASSERT_EQ(dialogs.errors.size(), 1U);
    ASSERT_NE(dialogs.errors.front().underlyingError(), nullptr);
    EXPECT_EQ(dialogs.errors.front().underlyingError()->domain(), kPOSIXErrorDomain);
}

TEST_F(StoreAccess, aFileThatIsNoStoreIsPresentedWithItsCauseAndLeftAlone) {
    write(storePath(), QByteArray(5000, 'x'));

    EXPECT_EQ(manager().persistentStoreCoordinator(), nullptr);
    ASSERT_EQ(dialogs.errors.size(), 1U);
    EXPECT_EQ(
        dialogs.errors.front().localizedFailureReason(),
        QStringLiteral("There was an error creating or loading the application's saved data."));
    ASSERT_NE(dialogs.errors.front().underlyingError(), nullptr);
    EXPECT_EQ(*dialogs.errors.front().underlyingError(), Error(kSQLiteErrorDomain, SQLITE_NOTADB));
    EXPECT_EQ(QFileInfo(storePath()).size(), 5000);
}

TEST_F(StoreAccess, withoutAStoreEveryOperationYieldsNothing) {
    write(storeFolder(), "a file");
    writeProject(ProjectText().group("MAIN", {}));
    manager().changeProjectToPath(bundle());
    manager().updateInBackground();
    manager().generateObjectForID("MAIN", folder().toUtf8(), std::nullopt, 0);

    EXPECT_EQ(manager().rootID(), QStringLiteral("MAIN"));
    EXPECT_EQ(manager().navigatorDictionaryForID(std::nullopt), std::nullopt);
    const QString items = QStringLiteral("items");
    EXPECT_TRUE(manager().superclassDictionary().value(items).toList().isEmpty());
    EXPECT_TRUE(
        manager().navigatorDictionaryForSuperclass(QString()).value(items).toList().isEmpty());
    EXPECT_TRUE(manager().allowedFileTypesDictionary().value(items).toList().isEmpty());
    EXPECT_TRUE(manager().allowedFileTypes().isEmpty());
    EXPECT_TRUE(
        manager().changeFiletypeAllowanceWithDictionary({}).value(items).toList().isEmpty());
    EXPECT_TRUE(manager().applicationShouldTerminate());
}

TEST_F(StoreAccess, fileTypesOutliveTheProgramAndProjectsDoNot) {
    writeFile("a.m");
    load(ProjectText().group("MAIN", {"A"}).file("A", "a.m"));
    manager().changeFiletypeAllowanceWithDictionary(
        {{QStringLiteral("extension"), QStringLiteral("m")}, {QStringLiteral("allowed"), 0}});
    pass();
    endManager();

    manager();
    EXPECT_THAT(identifiers(), IsEmpty());
    EXPECT_THAT(context().shortcuts(), IsEmpty());
    EXPECT_THAT(context().elements(), IsEmpty());
    ASSERT_EQ(context().filetypes().size(), 1U);
    EXPECT_EQ(context().filetypes().front()->allowed(), false);
}

TEST_F(StoreAccess, quittingBeforeTheContextWasMadeTerminatesAndMakesNone) {
    EXPECT_TRUE(manager().applicationShouldTerminate());
    EXPECT_FALSE(QFile::exists(storePath()));
}

TEST_F(StoreAccess, quittingWithNothingToSaveTerminatesInSilence) {
    context();
    EXPECT_TRUE(manager().applicationShouldTerminate());
    EXPECT_EQ(dialogs.alerts, 0);
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(StoreAccess, quittingSavesAndTerminates) {
    context().insertElement();
    EXPECT_TRUE(manager().applicationShouldTerminate());
    EXPECT_THAT(takeLog(), ElementsAre("Terminating"));
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(StoreAccess, anEditThatCannotBeCommittedKeepsTheProgramRunning) {
    context().addPendingEdit([] { return false; });
    EXPECT_FALSE(manager().applicationShouldTerminate());
    EXPECT_THAT(takeLog(), ElementsAre("KZDataManager:applicationShouldTerminate: unable to commit "
                                       "editing to terminate"));
}

TEST_F(StoreAccess, aSaveErrorThatWasDealtWithKeepsTheProgramRunning) {
    context().insertElement();
    const Lock lock(storePath());
    dialogs.dealsWithErrors = true;

    EXPECT_FALSE(manager().applicationShouldTerminate());
    ASSERT_EQ(dialogs.errors.size(), 1U);
    EXPECT_EQ(dialogs.errors.front(), Error(kSQLiteErrorDomain, SQLITE_BUSY));
    EXPECT_EQ(dialogs.alerts, 0);
}

TEST_F(StoreAccess, quitAnywayKeepsTheProgramRunningOnPurpose) {
    context().insertElement();
    const Lock lock(storePath());
    dialogs.alertAnswer = 1000;

    EXPECT_FALSE(manager().applicationShouldTerminate());
    EXPECT_EQ(dialogs.alertTexts,
              (QStringList{QStringLiteral("Could not save changes while quitting. Quit anyway?"),
                           QStringLiteral("Quitting now will lose any changes you have made since "
                                          "the last successful save"),
                           QStringLiteral("Quit anyway"), QStringLiteral("Cancel")}));
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(StoreAccess, cancelQuitsOnPurpose) {
    context().insertElement();
    const Lock lock(storePath());
    for (const int answer : {1001, 0}) {
        dialogs.alertAnswer = answer;
        EXPECT_TRUE(manager().applicationShouldTerminate());
        EXPECT_THAT(takeLog(), ElementsAre("Terminating"));
    }
}

} // namespace
} // namespace navrel
