#pragma once

namespace navrel {

class AppDelegate;
class KZDataManager;
class StatusMenu;

/// Lays out the fixed entries of an empty status menu and connects them: each to what it does, and
/// the delegate and the data manager to those that they keep up to date. Both must outlive the
/// person's last choice, and the menu both.
void layOutStatusMenu(StatusMenu& menu, AppDelegate& delegate, KZDataManager& dataManager);

} // namespace navrel
