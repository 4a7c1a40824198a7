#include "desktop/tray/MenuWidget.h"

#include "desktop/MenuText.h"
#include "support/core/MainThread.h"

#include <QTimer>

namespace navrel {

MenuWidget::MenuWidget(StatusMenu& menu) : menu_(menu) {
    setToolTipsVisible(true);
    setAccessibleName(QStringLiteral("Navrel"));
    menu_.addView(*this);
    menuDidChange();
}

MenuWidget::~MenuWidget() {
    menu_.removeView(*this);
}

void MenuWidget::menuDidChange() {
    NAVREL_ASSERT_MAIN_THREAD();
    clear();
    actions_.clear();
    for (const MenuEntry* entry : menu_.visibleEntries()) {
        QAction* action = addAction(QString());
        actions_.insert(entry->id(), action);
        show(*entry, *action);
        connect(action, &QAction::triggered, this, [this, id = entry->id()] {
            // What is chosen may be a dialog, or replace this very action.
            QTimer::singleShot(0, this, [this, id] { choose(id); });
        });
    }
}

void MenuWidget::choose(int id) {
    NAVREL_ASSERT_MAIN_THREAD();
    menu_.choose(id);
    if (const MenuEntry* entry = menu_.entryWithID(id)) {
        // The click turned the check mark over, whether or not the choice turned the state.
        entryDidChange(*entry);
    }
}

void MenuWidget::entryDidChange(const MenuEntry& entry) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (QAction* action = actions_.value(entry.id())) {
        show(entry, *action);
    }
}

void MenuWidget::show(const MenuEntry& entry, QAction& action) const {
    const QString title = titleOnOneLine(entry.title());
    action.setSeparator(entry.kind() == MenuEntry::Kind::Separator);
    action.setText(withoutMnemonics(title, QChar(u'&')));
    // Only where it says more: Qt would show the text itself.
    action.setToolTip(title == entry.title() ? QString() : toolTipForTitle(entry.title()));
    action.setEnabled(entry.canBeChosen() || action.isSeparator());
    action.setCheckable(entry.kind() == MenuEntry::Kind::Switch);
    action.setChecked(entry.isChecked());
}

} // namespace navrel
