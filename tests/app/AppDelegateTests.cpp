#include "tests/FakeMenuItem.h"
#include "tests/app/ServedProject.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace navrel {
namespace {

class AppDelegateTest : public ServedProject {};

TEST_F(AppDelegateTest, theVersionEntryShowsNameAndFullVersion) {
    launch();
    FakeMenuItem item;
    const auto other =
        AppDelegate::create({*manager_, desktop_, *defaults_, version_, [this] { return hub_; }});
    other->setMenu(nullptr, &item);
    other->applicationDidFinishLaunching();
    EXPECT_EQ(item.title, QStringLiteral("Navrel (v1.4.2)"));
}

TEST_F(AppDelegateTest, quittingRemembersAutomaticSelectionAndEndsTheProgram) {
    launch();
    manager_->setAutomaticProjectSelection(true);
    delegate_->quit();
    EXPECT_EQ(defaults_->boolForKey(QStringLiteral("automaticProjectSelection")), true);
    EXPECT_EQ(desktop_.terminations, 1);

    manager_->setAutomaticProjectSelection(false);
    delegate_->quit();
    EXPECT_EQ(defaults_->boolForKey(QStringLiteral("automaticProjectSelection")), false);
}

TEST_F(AppDelegateTest, quittingLeavesTheStoreInOneFileThatTheNextStartReads) {
    project_.writeFile(QStringLiteral("a.h"), "\n");
    project_.addEntry("A", "a.h");
    launch();
    manager_->changeFiletypeAllowanceWithDictionary(
        {{QStringLiteral("extension"), QStringLiteral("h")}, {QStringLiteral("allowed"), false}});
    runPass();
    delegate_->quit();

    // Deliberate: nothing is closed at the end. So what is there now is what the next start finds.
    const QString folder = QStringLiteral("/data/nl.kelvane.Navrel");
    const QString name = QStringLiteral("OSXCoreDataObjC.storedata");
    EXPECT_EQ(QDir(profile_.path() + folder).entryList(QDir::Files), QStringList{name});
    const QTemporaryDir next;
    ASSERT_TRUE(QDir().mkpath(next.path() + folder));
    ASSERT_TRUE(QFile::copy(profile_.path() + folder + QLatin1Char('/') + name,
                            next.path() + folder + QLatin1Char('/') + name));
    const auto manager =
        KZDataManager::init({*defaults_, editor_, desktop_, next.filePath(QStringLiteral("data"))});
    EXPECT_EQ(manager->allowedFileTypesDictionary(), manager_->allowedFileTypesDictionary());
    EXPECT_EQ(manager->allowedFileTypes(), QStringList());
    manager->setWeakSelf(nullptr);
}

TEST_F(AppDelegateTest, terminationByOthersStoresAndClosesNothing) {
    launch();
    manager_->setAutomaticProjectSelection(true);
    delegate_->applicationWillTerminate();
    EXPECT_EQ(defaults_->boolForKey(QStringLiteral("automaticProjectSelection")), false);
    EXPECT_EQ(desktop_.terminations, 0);
}

} // namespace
} // namespace navrel
