#include "app/MenuEntry.h"

#include "app/StatusMenu.h"

#include <utility>

namespace navrel {

MenuEntry::MenuEntry(StatusMenu& menu, int id, Kind kind, int tag, QString title, Action action)
    : menu_(menu), id_(id), kind_(kind), tag_(tag), title_(std::move(title)),
      action_(std::move(action)) {}

void MenuEntry::setTitle(const QString& title) {
    if (title_ != title) {
        title_ = title;
        menu_.entryDidChange(*this);
    }
}

void MenuEntry::setChecked(bool checked) {
    if (isChecked_ != checked) {
        isChecked_ = checked;
        menu_.entryDidChange(*this);
    }
}

} // namespace navrel
