// The status menu's shortcut entries and fixed entries, in the running program.

#include "app/StatusMenu.h"
#include "app/StatusMenuLayout.h"
#include "tests/app/ServedProject.h"

#include <gmock/gmock.h>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A project of two files with shortcut comments, and its menu.
class ShellTest : public ServedProject {
protected:
    void SetUp() override {
        project_.addEntry("AA0000000000000000000001", "One.m");
        project_.addEntry("AA0000000000000000000002", "Two.m");
        write("One.m", "// navrel: First_of & \"all\"\nint one;\n// navrel: Second\n");
        write("Two.m", "\n\n// navrel: Third\n");
        launchUnconnected();
        layOutStatusMenu(menu_, *delegate_, *manager_, [this] { ++deviceWindows_; });
        menu_.setState([this] { return state_; });
    }

    void write(const char* name, const QByteArray& text) const {
        project_.writeFile(QString::fromLatin1(name), text);
    }

    std::vector<QString> shortcutTitles() const {
        std::vector<QString> titles;
        for (const auto& entry : menu_.entries()) {
            if (entry->tag() >= kFirstShortcutTag) {
                titles.push_back(entry->title());
            }
        }
        return titles;
    }

    const MenuEntry& entryWithTag(int tag) const {
        for (const auto& entry : menu_.entries()) {
            if (entry->tag() == tag) {
                return *entry;
            }
        }
        ADD_FAILURE() << "No entry is tagged " << tag;
        return *menu_.entries().front();
    }

    void choose(int tag) { menu_.choose(entryWithTag(tag).id()); }

    StatusMenu menu_;
    int deviceWindows_ = 0;
    std::vector<StateSentence> state_;
};

const QString kFirst = QStringLiteral("First_of & \"all\"");
const QString kSecond = QStringLiteral("Second");
const QString kThird = QStringLiteral("Third");

TEST_F(ShellTest, anActiveFileBringsTheWholeProjectsShortcuts) {
    editor_.fileName = QStringLiteral("Two.m");
    delegate_->createMenu();
    EXPECT_THAT(shortcutTitles(), ElementsAre(kFirst, kSecond, kThird));
}

TEST_F(ShellTest, shortcutsAddedWhileStayingInOneFileShowAfterTheNextSwitch) {
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    write("Two.m", "// navrel: Added\n");
    runPass();
    delegate_->createMenu();
    EXPECT_THAT(shortcutTitles(), ElementsAre(kFirst, kSecond, kThird));

    editor_.fileName = QStringLiteral("Two.m");
    delegate_->createMenu();
    EXPECT_THAT(shortcutTitles(), ElementsAre(QStringLiteral("Added"), kFirst, kSecond));
}

TEST_F(ShellTest, withoutAnActiveFileTheLastListStays) {
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    editor_.fileName = std::nullopt;
    write("Two.m", "// navrel: Added\n");
    runPass();
    delegate_->createMenu();
    delegate_->createMenu();
    EXPECT_THAT(shortcutTitles(), ElementsAre(kFirst, kSecond, kThird));

    // Back in the same file the list is taken again: nothing was remembered of it.
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    EXPECT_THAT(shortcutTitles(), ElementsAre(QStringLiteral("Added"), kFirst, kSecond));
}

TEST_F(ShellTest, aProjectWithoutShortcutsEmptiesTheList) {
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    write("One.m", "int one;\n");
    write("Two.m", "int two;\n");
    runPass();
    editor_.fileName = QStringLiteral("Two.m");
    delegate_->createMenu();
    EXPECT_THAT(shortcutTitles(), IsEmpty());
}

TEST_F(ShellTest, choosingTheEntryTaggedOneHundredAndTwoOpensTheThirdShortcutAtItsLine) {
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    choose(102);
    ASSERT_EQ(editor_.opened.size(), 1U);
    EXPECT_EQ(editor_.opened.at(0).path, project_.folder() + QStringLiteral("/Two.m"));
    EXPECT_EQ(editor_.opened.at(0).line, 3);
}

TEST_F(ShellTest, aFixedEntryIsNoShortcut) {
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    for (const auto& entry : menu_.entries()) {
        if (entry->tag() < kFirstShortcutTag) {
            delegate_->openFileForMenuItem(*entry);
        }
    }
    EXPECT_TRUE(editor_.opened.empty());
}

TEST_F(ShellTest, anEntryWhoseShortcutIsGoneIsIgnored) {
    StatusMenu other;
    other.setShortcuts({kFirst, kSecond, kThird, QStringLiteral("Fourth")}, {});
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    delegate_->openFileForMenuItem(*other.entries().at(3));
    EXPECT_TRUE(editor_.opened.empty());
    delegate_->openFileForMenuItem(*other.entries().at(0));
    EXPECT_EQ(editor_.opened.size(), 1U);
}

TEST_F(ShellTest, theMenuIsBroughtUpToDateOnceASecond) {
    editor_.fileName = QStringLiteral("One.m");
    clock_.advance(std::chrono::milliseconds(999));
    EXPECT_THAT(shortcutTitles(), IsEmpty());
    clock_.advance(std::chrono::milliseconds(1));
    EXPECT_EQ(shortcutTitles().size(), 3U);
    write("One.m", "int one;\n");
    runPass();
    editor_.fileName = QStringLiteral("Two.m");
    clock_.advance(std::chrono::seconds(1));
    EXPECT_EQ(shortcutTitles().size(), 1U);
}

TEST_F(ShellTest, theFixedEntriesStandInOrderWithTagsBelowOneHundred) {
    editor_.fileName = QStringLiteral("One.m");
    delegate_->createMenu();
    std::vector<QString> titles;
    for (const MenuEntry* entry : menu_.visibleEntries()) {
        if (entry->kind() != MenuEntry::Kind::Separator && entry->tag() < kFirstShortcutTag) {
            titles.push_back(entry->title());
        }
    }
    EXPECT_THAT(titles,
                ElementsAre(QStringLiteral("Navrel"), QStringLiteral("Current project: none"),
                            QStringLiteral("Choose Project…"),
                            QStringLiteral("Select Project Automatically"),
                            QStringLiteral("Phone or Tablet…"), QStringLiteral("Manual"),
                            QStringLiteral("About Navrel"), QStringLiteral("Find iOS Device"),
                            QStringLiteral("Quit Navrel")));
    EXPECT_GE(menu_.visibleEntries().back()->tag(), kFirstShortcutTag);
}

TEST_F(ShellTest, theCurrentProjectEntryShowsTheBundlesName) {
    runPass();
    EXPECT_EQ(entryWithTag(2).title(),
              QStringLiteral("Current project: ") + project_.bundle().section(u'/', -1));
    EXPECT_FALSE(entryWithTag(2).canBeChosen());
    EXPECT_FALSE(entryWithTag(1).canBeChosen());
}

TEST_F(ShellTest, choosingAProjectShowsTheOpenPanelAndEndsAutomaticSelection) {
    manager_->setAutomaticProjectSelection(true);
    EXPECT_TRUE(entryWithTag(4).isChecked());
    choose(3);
    EXPECT_EQ(desktop_.panelTitles,
              QStringList{QStringLiteral("Select *.xcodeproj file to use with Navrel")});
    EXPECT_FALSE(entryWithTag(4).isChecked());
}

TEST_F(ShellTest, theAutomaticEntryTurnsSelectionOnAndOffWithoutWritingThePreference) {
    ASSERT_FALSE(entryWithTag(4).isChecked());
    choose(4);
    EXPECT_TRUE(manager_->automaticProjectSelection());
    EXPECT_TRUE(entryWithTag(4).isChecked());
    EXPECT_EQ(defaults_->boolForKey(QStringLiteral("automaticProjectSelection")), false);
    choose(4);
    EXPECT_FALSE(manager_->automaticProjectSelection());
    EXPECT_FALSE(entryWithTag(4).isChecked());
}

TEST_F(ShellTest, phoneOrTabletOpensTheWindowOfDevices) {
    choose(9);
    EXPECT_EQ(deviceWindows_, 1);
}

TEST_F(ShellTest, theAboutEntryShowsHowTheProgramStandsNow) {
    state_ = {{StateSentence::Part::editor,
               StateSentence::Level::idle,
               QStringLiteral("No editor answers."),
               {}}};
    choose(6);
    ASSERT_EQ(desktop_.aboutPages.size(), 1);
    EXPECT_TRUE(desktop_.aboutPages.at(0).contains(QStringLiteral("No editor answers.")));
}

TEST_F(ShellTest, theQuitEntryStoresAutomaticSelectionAndEndsTheProgram) {
    choose(4);
    choose(8);
    EXPECT_EQ(defaults_->boolForKey(QStringLiteral("automaticProjectSelection")), true);
    EXPECT_EQ(desktop_.terminations, 1);
}

TEST_F(ShellTest, findingADeviceIsAnEntryThatDoesNothing) {
    const QStringList before = log_.messages();
    choose(7);
    EXPECT_EQ(log_.messages(), before);
    EXPECT_TRUE(editor_.opened.empty());
    EXPECT_TRUE(desktop_.openedURLs.isEmpty());
}

} // namespace
} // namespace navrel
