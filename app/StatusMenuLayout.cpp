#include "app/StatusMenuLayout.h"

#include "app/AppDelegate.h"
#include "app/StatusMenu.h"
#include "project/KZDataManager.h"

#include <utility>

namespace navrel {

namespace {

enum FixedTag {
    kVersionTag = 1,
    kCurrentProjectTag,
    kChooseProjectTag,
    kAutomaticSelectionTag,
    kManualTag,
    kAboutTag,
    kFindDeviceTag,
    kQuitTag,
    kPhoneOrTabletTag,
};

} // namespace

void layOutStatusMenu(StatusMenu& menu, AppDelegate& delegate, KZDataManager& dataManager,
                      std::function<void()> showDevices) {
    delegate.setMenu(&menu, &menu.addText(kVersionTag, QStringLiteral("Navrel")));
    menu.addSeparator();
    dataManager.setCurrentProjectItem(
        &menu.addText(kCurrentProjectTag, QStringLiteral("Current project: none")));
    menu.addAction(kChooseProjectTag, QStringLiteral("Choose Project…"),
                   [&dataManager] { dataManager.open(); });
    // The plain setter, as a user may well turn on what the program itself only turns off. The
    // preference is written when the program is quit through the menu.
    dataManager.setAutomaticProjectSelectionItem(&menu.addSwitch(
        kAutomaticSelectionTag, QStringLiteral("Select Project Automatically"), [&dataManager] {
            dataManager.setAutomaticProjectSelection(!dataManager.automaticProjectSelection());
        }));
    menu.addSeparator();
    menu.addAction(kPhoneOrTabletTag, QStringLiteral("Phone or Tablet…"), std::move(showDevices));
    menu.addSeparator();
    menu.addAction(kManualTag, QStringLiteral("Manual"), [&delegate] { delegate.manual(); });
    menu.addAction(kAboutTag, QStringLiteral("About Navrel"), [&delegate] { delegate.about(); });
    menu.addAction(kFindDeviceTag, QStringLiteral("Find iOS Device"),
                   [&delegate] { delegate.findIOSDevice(); });
    menu.addSeparator();
    menu.addAction(kQuitTag, QStringLiteral("Quit Navrel"), [&delegate] { delegate.quit(); });
    menu.addSeparator();
}

} // namespace navrel
