#include "tests/FakeMenuItem.h"
#include "tests/app/ServedProject.h"

namespace navrel {
namespace {

class AppDelegateTest : public ServedProject {};

TEST_F(AppDelegateTest, theVersionEntryShowsNameAndFullVersion) {
    launch();
    FakeMenuItem item;
    const auto other =
        AppDelegate::create({*manager_, desktop_, *defaults_, version_, [this] { return hub_; }});
    other->setVersionItem(&item);
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

TEST_F(AppDelegateTest, terminationByOthersStoresAndClosesNothing) {
    launch();
    manager_->setAutomaticProjectSelection(true);
    delegate_->applicationWillTerminate();
    EXPECT_EQ(defaults_->boolForKey(QStringLiteral("automaticProjectSelection")), false);
    EXPECT_EQ(desktop_.terminations, 0);
}

} // namespace
} // namespace navrel
