#include "app/StatusMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace navrel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordingView final : public StatusMenuView {
public:
    int menuChanges = 0;
    std::vector<int> changedEntries;

    void menuDidChange() override { ++menuChanges; }
    void entryDidChange(const MenuEntry& entry) override { changedEntries.push_back(entry.id()); }
};

std::vector<QString> visibleTitles(const StatusMenu& menu) {
    std::vector<QString> titles;
    for (const MenuEntry* entry : menu.visibleEntries()) {
        const bool isSeparator = entry->kind() == MenuEntry::Kind::Separator;
        titles.push_back(isSeparator ? QStringLiteral("-") : entry->title());
    }
    return titles;
}

QStringList titles(int count) {
    QStringList result;
    for (int i = 0; i < count; ++i) {
        result.append(QString::number(i));
    }
    return result;
}

TEST(StatusMenu, shortcutsStandBelowTheFixedEntriesTaggedFromOneHundredInOrder) {
    StatusMenu menu;
    menu.addText(1, QStringLiteral("fixed"));
    menu.setShortcuts({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")}, {});

    std::vector<int> tags;
    for (const auto& entry : menu.entries()) {
        tags.push_back(entry->tag());
    }
    EXPECT_THAT(tags, ElementsAre(1, 100, 101, 102));
}

TEST(StatusMenu, newShortcutsReplaceTheFormerOnesAndLeaveTheFixedEntries) {
    StatusMenu menu;
    menu.addText(99, QStringLiteral("fixed"));
    menu.setShortcuts({QStringLiteral("a"), QStringLiteral("b")}, {});
    menu.setShortcuts({QStringLiteral("c")}, {});
    EXPECT_THAT(visibleTitles(menu), ElementsAre(QStringLiteral("fixed"), QStringLiteral("c")));
    menu.setShortcuts({}, {});
    EXPECT_THAT(visibleTitles(menu), ElementsAre(QStringLiteral("fixed")));
}

TEST(StatusMenu, separatorsShowOnlyBetweenEntries) {
    StatusMenu menu;
    menu.addSeparator();
    menu.addText(1, QStringLiteral("a"));
    menu.addSeparator();
    menu.addSeparator();
    menu.addText(2, QStringLiteral("b"));
    menu.addSeparator();
    EXPECT_THAT(visibleTitles(menu),
                ElementsAre(QStringLiteral("a"), QStringLiteral("-"), QStringLiteral("b")));
    menu.setShortcuts({QStringLiteral("c")}, {});
    EXPECT_EQ(visibleTitles(menu).size(), 5U);
}

TEST(StatusMenu, choosingRunsTheActionOfThatEntry) {
    StatusMenu menu;
    int quits = 0;
    std::vector<int> chosenTags;
    const MenuEntry& quit = menu.addAction(8, QStringLiteral("Quit"), [&] { ++quits; });
    menu.setShortcuts({QStringLiteral("a"), QStringLiteral("b")},
                      [&](const MenuEntry& entry) { chosenTags.push_back(entry.tag()); });

    menu.choose(quit.id());
    menu.choose(menu.entries().back()->id());
    EXPECT_EQ(quits, 1);
    EXPECT_THAT(chosenTags, ElementsAre(101));
}

TEST(StatusMenu, whatIsOnlyReadOrUnknownCannotBeChosen) {
    StatusMenu menu;
    const MenuEntry& text = menu.addText(1, QStringLiteral("version"));
    menu.addSeparator();
    int chosen = 0;
    menu.setShortcuts({QStringLiteral("a")}, [&](const MenuEntry&) { ++chosen; });
    const int goneID = menu.entries().back()->id();
    menu.setShortcuts({QStringLiteral("b")}, [&](const MenuEntry&) { ++chosen; });

    menu.choose(text.id());
    menu.choose(menu.entries().at(1)->id());
    menu.choose(goneID);
    menu.choose(0);
    menu.choose(-1);
    menu.choose(1'000'000);
    EXPECT_EQ(chosen, 0);
    EXPECT_EQ(menu.entryWithID(goneID), nullptr);
}

TEST(StatusMenu, anActionMayReplaceItsOwnEntry) {
    StatusMenu menu;
    const MenuEntry::Action replace = [&](const MenuEntry&) {
        menu.setShortcuts({QStringLiteral("after")}, {});
    };
    menu.setShortcuts({QStringLiteral("before")}, replace);
    menu.choose(menu.entries().back()->id());
    EXPECT_THAT(visibleTitles(menu), ElementsAre(QStringLiteral("after")));
}

TEST(StatusMenu, viewsHearOfChangesAndOnlyOfThose) {
    StatusMenu menu;
    MenuEntry& project = menu.addText(2, QStringLiteral("none"));
    MenuEntry& automatic = menu.addSwitch(4, QStringLiteral("Automatic"), [] {});
    RecordingView view;
    menu.addView(view);

    project.setTitle(QStringLiteral("App"));
    project.setTitle(QStringLiteral("App"));
    automatic.setChecked(true);
    automatic.setChecked(true);
    EXPECT_THAT(view.changedEntries, ElementsAre(project.id(), automatic.id()));
    menu.setShortcuts({QStringLiteral("a"), QStringLiteral("b")}, {});
    EXPECT_EQ(view.menuChanges, 1);

    menu.removeView(view);
    project.setTitle(QStringLiteral("Other"));
    menu.setShortcuts({}, {});
    EXPECT_EQ(view.menuChanges, 1);
    EXPECT_EQ(view.changedEntries.size(), 2U);
}

TEST(StatusMenu, aMenuOfThousandsShowsTheFirstAndTellsOfTheOthers) {
    StatusMenu menu;
    menu.setShortcuts(titles(kMaximumVisibleShortcuts), {});
    EXPECT_EQ(menu.visibleEntries().size(), std::size_t{kMaximumVisibleShortcuts});

    menu.setShortcuts(titles(kMaximumVisibleShortcuts + 7), {});
    const auto visible = menu.visibleEntries();
    ASSERT_EQ(visible.size(), std::size_t{kMaximumVisibleShortcuts} + 1);
    EXPECT_EQ(visible.back()->title(), QStringLiteral("7 more on the device"));
    EXPECT_FALSE(visible.back()->canBeChosen());
    EXPECT_EQ(menu.entryWithID(visible.back()->id()), visible.back());
}

} // namespace
} // namespace navrel
