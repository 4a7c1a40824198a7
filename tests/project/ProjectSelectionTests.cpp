#include "project/store/SQLiteDatabase.h"
#include "tests/FakeMenuItem.h"
#include "tests/project/DataManagerFixture.h"

#include <chrono>

namespace navrel {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const QString kAutomatic = QStringLiteral("automaticProjectSelection");
const QString kLastKnown = QStringLiteral("lastKnownProject");

class ProjectSelection : public DataManagerTest {
protected:
    void fillStore() {
        context().insertObject();
        context().insertShortcut();
        context().insertElement();
        context().insertFiletype();
        ASSERT_FALSE(context().save().has_value());
    }
};

TEST_F(ProjectSelection, theFirstStartEverShowsThePanelAndEndsAutomaticSelection) {
    EXPECT_FALSE(manager().automaticProjectSelection());
    EXPECT_EQ(dialogs.panels, 1);
    EXPECT_EQ(dialogs.panelTitle, QStringLiteral("Select *.xcodeproj file to use with Navrel"));
    EXPECT_EQ(dialogs.panelFileTypes, QStringList{QStringLiteral("xcodeproj")});

    // Cancelled: nothing is selected and nothing written.
    EXPECT_EQ(manager().pbxProjPath(), std::nullopt);
    EXPECT_EQ(defaults.boolForKey(kAutomatic), std::nullopt);
    EXPECT_EQ(defaults.stringForKey(kLastKnown), std::nullopt);
}

TEST_F(ProjectSelection, aPickedProjectIsSelectedAndRemembered) {
    dialogs.pickedPath = bundle();
    EXPECT_EQ(manager().pbxProjPath(), bundle());
    EXPECT_FALSE(manager().automaticProjectSelection());
    EXPECT_EQ(defaults.boolForKey(kAutomatic), false);
    EXPECT_EQ(defaults.stringForKey(kLastKnown), bundle());
}

TEST_F(ProjectSelection, theLastKnownProjectIsSelectedAtStart) {
    defaults.setString(kLastKnown, bundle());
    EXPECT_EQ(manager().pbxProjPath(), bundle());
    EXPECT_EQ(dialogs.panels, 0);
    // It is loaded by the first update, not here.
    EXPECT_EQ(manager().projectPath(), std::nullopt);
}

TEST_F(ProjectSelection, theMenuEntryShowsWhetherAutomaticSelectionIsOn) {
    defaults.setString(kLastKnown, bundle());
    FakeMenuItem item;
    manager().setAutomaticProjectSelectionItem(&item);
    EXPECT_EQ(item.checked, true);
    manager().open();
    EXPECT_EQ(item.checked, false);
    manager().setAutomaticProjectSelection(true);
    EXPECT_EQ(item.checked, true);
    EXPECT_EQ(defaults.boolForKey(kAutomatic), std::nullopt);
}

TEST_F(ProjectSelection, automaticSelectionIsOnUnlessThePreferenceSaysOtherwise) {
    defaults.setString(kLastKnown, bundle());
    EXPECT_TRUE(manager().automaticProjectSelection());
    endManager();

    defaults.setBool(kAutomatic, false);
    EXPECT_FALSE(manager().automaticProjectSelection());
    endManager();

    defaults.setBool(kAutomatic, true);
    EXPECT_TRUE(manager().automaticProjectSelection());
}

TEST_F(ProjectSelection, theManagerHoldsItself) {
    KZDataManager& held = manager();
    EXPECT_EQ(held.weakSelf().get(), &held);
    EXPECT_GE(held.weakSelf().use_count(), 2);
}

TEST_F(ProjectSelection, theFirstSelectionOfARunEmptiesTheStore) {
    fillStore();
    endManager();
    defaults.setString(kLastKnown, bundle());

    EXPECT_THAT(context().objects(), IsEmpty());
    EXPECT_THAT(context().shortcuts(), IsEmpty());
    EXPECT_THAT(context().elements(), IsEmpty());
    EXPECT_EQ(context().filetypes().size(), 1U);
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(ProjectSelection, anotherProjectEmptiesTheStoreButForTheFileTypes) {
    manager().changeProjectToPath(QStringLiteral("/a/A.xcodeproj"));
    fillStore();

    manager().changeProjectToPath(QStringLiteral("/b/B.xcodeproj"));

    EXPECT_EQ(manager().pbxProjPath(), QStringLiteral("/b/B.xcodeproj"));
    EXPECT_EQ(defaults.stringForKey(kLastKnown), QStringLiteral("/b/B.xcodeproj"));
    EXPECT_THAT(context().objects(), IsEmpty());
    EXPECT_THAT(context().shortcuts(), IsEmpty());
    EXPECT_THAT(context().elements(), IsEmpty());
    EXPECT_EQ(context().filetypes().size(), 1U);
    EXPECT_FALSE(context().hasChanges());
}

TEST_F(ProjectSelection, theSelectedProjectIsNotSelectedAgain) {
    manager().changeProjectToPath(bundle());
    context().insertObject();
    defaults.setString(kLastKnown, QStringLiteral("untouched"));

    manager().changeProjectToPath(bundle());

    EXPECT_EQ(context().objects().size(), 1U);
    EXPECT_TRUE(context().hasChanges()) << "saved";
    EXPECT_EQ(defaults.stringForKey(kLastKnown), QStringLiteral("untouched"));
}

TEST_F(ProjectSelection, nilEqualsNothingAndRemovesThePreference) {
    manager().changeProjectToPath(bundle());
    for (int round = 0; round < 2; ++round) {
        context().insertObject();
        defaults.setString(kLastKnown, bundle());
        manager().changeProjectToPath(std::nullopt);

        EXPECT_EQ(manager().pbxProjPath(), std::nullopt);
        EXPECT_EQ(defaults.stringForKey(kLastKnown), std::nullopt);
        EXPECT_THAT(context().objects(), IsEmpty());
    }
}

TEST_F(ProjectSelection, theEmptyPathIsAProjectOfItsOwn) {
    manager().changeProjectToPath(QStringLiteral(""));
    EXPECT_EQ(manager().pbxProjPath(), QStringLiteral(""));
    EXPECT_EQ(defaults.stringForKey(kLastKnown), QStringLiteral(""));
}

TEST_F(ProjectSelection, aChangeOfProjectCommitsPendingEdits) {
    bool isCommitted = false;
    context().addPendingEdit([&] { return isCommitted = true; });
    manager().changeProjectToPath(bundle());
    EXPECT_TRUE(isCommitted);
}

TEST_F(ProjectSelection, aSaveThatFailsIsLoggedAndTheProjectChangesAllTheSame) {
    fillStore();
    SQLiteDatabase other;
    ASSERT_FALSE(other.open(storePath().toUtf8()).has_value());
    ASSERT_FALSE(other.execute("BEGIN IMMEDIATE").has_value());

    manager().changeProjectToPath(bundle());

    const std::vector<std::string> messages = takeLog();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages.front(), ::testing::HasSubstr("database is locked"));
    EXPECT_EQ(manager().pbxProjPath(), bundle());
    EXPECT_THAT(context().objects(), IsEmpty());
}

TEST_F(ProjectSelection, openTurnsAutomaticSelectionOffBeforeThePanelShows) {
    defaults.setString(kLastKnown, bundle());
    ASSERT_TRUE(manager().automaticProjectSelection());
    bool wasOn = true;
    dialogs.whileOpen = [&] { wasOn = manager().automaticProjectSelection(); };

    manager().open();

    EXPECT_FALSE(wasOn);
    // Cancelled: off for this run, and the preference stays as it was.
    EXPECT_FALSE(manager().automaticProjectSelection());
    EXPECT_EQ(defaults.boolForKey(kAutomatic), std::nullopt);
    EXPECT_EQ(manager().pbxProjPath(), bundle());
}

TEST_F(ProjectSelection, thereIsOneOpenPanelAtATime) {
    defaults.setString(kLastKnown, bundle());
    manager();
    dialogs.whileOpen = [&] {
        dialogs.whileOpen = nullptr;
        manager().setAutomaticProjectSelection(true);
        manager().open();
        EXPECT_EQ(dialogs.panels, 1);
        EXPECT_FALSE(manager().automaticProjectSelection());
        dialogs.pickedPath = QStringLiteral("/b/B.xcodeproj");
    };
    manager().open();
    EXPECT_EQ(manager().pbxProjPath(), QStringLiteral("/b/B.xcodeproj"));

    manager().open();
    EXPECT_EQ(dialogs.panels, 2) << "once it is closed the next may be shown";
}

TEST_F(ProjectSelection, nothingTurnsAutomaticSelectionOnAgain) {
    dialogs.pickedPath = bundle();
    manager();
    endManager();

    manager().update();
    manager().changeProjectToPath(QStringLiteral("/b/B.xcodeproj"));
    EXPECT_FALSE(manager().automaticProjectSelection());
    EXPECT_EQ(editor.projectQueries, 0);
}

TEST_F(ProjectSelection, theSetterWritesNoPreference) {
    manager().setAutomaticProjectSelection(true);
    EXPECT_TRUE(manager().automaticProjectSelection());
    EXPECT_EQ(defaults.boolForKey(kAutomatic), std::nullopt);
}

TEST_F(ProjectSelection, theActiveProjectIsTheEditorsAnswer) {
    for (const std::optional<QString>& answer :
         {std::optional(bundle()), std::optional(QStringLiteral("")), std::optional<QString>()}) {
        editor.projectPath = answer;
        EXPECT_EQ(manager().activeProject(), answer);
    }
}

TEST_F(ProjectSelection, automaticSelectionFollowsTheEditorAndLoadsAtOnce) {
    writeProject(ProjectText().group("MAIN", {}));
    const QString other = folder() + QStringLiteral("/Other.xcodeproj");
    write(other + QStringLiteral("/project.pbxproj"),
          ProjectText().group("MAIN", {"SUB"}).group("SUB", {}).text());
    manager().setAutomaticProjectSelection(true);

    editor.projectPath = bundle();
    manager().update();
    EXPECT_EQ(manager().pbxProjPath(), bundle());
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));

    editor.projectPath = other;
    manager().update();
    EXPECT_EQ(manager().pbxProjPath(), other);
    EXPECT_THAT(identifiers(), ElementsAre("MAIN", "SUB"));

    editor.projectPath = bundle();
    manager().update();
    EXPECT_THAT(identifiers(), ElementsAre("MAIN"));
}

TEST_F(ProjectSelection, withNothingActiveTheEmptyProjectIsSelectedOnce) {
    FakeMenuItem item;
    manager().setCurrentProjectItem(&item);
    manager().changeProjectToPath(bundle());
    fillStore();
    manager().setAutomaticProjectSelection(true);
    editor.projectPath = QStringLiteral("");

    manager().update();
    EXPECT_EQ(manager().pbxProjPath(), QStringLiteral(""));
    EXPECT_EQ(defaults.stringForKey(kLastKnown), QStringLiteral(""));
    EXPECT_THAT(context().objects(), IsEmpty());
    EXPECT_EQ(item.title, QStringLiteral("Current project: "));
    EXPECT_EQ(manager().rootID(), std::nullopt);

    context().insertShortcut();
    manager().update();
    EXPECT_EQ(context().shortcuts().size(), 1U) << "the store was emptied again";
}

TEST_F(ProjectSelection, anEditorThatCannotBeAskedLeavesNoProject) {
    defaults.setString(kLastKnown, bundle());
    editor.projectPath = std::nullopt;
    manager().update();
    EXPECT_EQ(manager().pbxProjPath(), std::nullopt);
    EXPECT_EQ(defaults.stringForKey(kLastKnown), std::nullopt);
}

TEST_F(ProjectSelection, withoutAutomaticSelectionTheEditorIsNotAsked) {
    manager().setAutomaticProjectSelection(false);
    manager().update();
    EXPECT_EQ(editor.projectQueries, 0);
}

TEST_F(ProjectSelection, theFirstUpdateRunsOneSecondAfterTheStartAndThenEverySecond) {
    defaults.setString(kLastKnown, bundle());
    manager();
    clock.advance(milliseconds(999));
    EXPECT_EQ(editor.projectQueries, 0);
    clock.advance(milliseconds(1));
    EXPECT_EQ(editor.projectQueries, 1);
    clock.advance(milliseconds(999));
    EXPECT_EQ(editor.projectQueries, 1);
    clock.advance(milliseconds(1));
    EXPECT_EQ(editor.projectQueries, 2);
}

TEST_F(ProjectSelection, noUpdateRunsBehindAnOpenDialog) {
    defaults.setString(kLastKnown, bundle());
    manager();
    dialogs.whileOpen = [&] {
        manager().setAutomaticProjectSelection(true);
        clock.advance(std::chrono::seconds(5));
        EXPECT_EQ(editor.projectQueries, 0);
    };
    manager().open();
    ASSERT_EQ(dialogs.panels, 1);
    clock.advance(std::chrono::seconds(1));
    EXPECT_EQ(editor.projectQueries, 1);
}

} // namespace
} // namespace navrel
