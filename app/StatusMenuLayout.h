#pragma once

#include <functional>

namespace navrel {

class AppDelegate;
class KZDataManager;
class StatusMenu;

/// Lays out the fixed entries of an empty status menu and connects them: each to what it does, and
/// the delegate and the data manager to those that they keep up to date. Both must outlive the
/// user's last choice, and the menu both. `showDevices`, which the entry "Phone or Tablet…" calls,
/// opens the window that pairs browsers.
void layOutStatusMenu(StatusMenu& menu, AppDelegate& delegate, KZDataManager& dataManager,
                      std::function<void()> showDevices);

} // namespace navrel
