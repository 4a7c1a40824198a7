#include "desktop/tray/DBusMenu.h"

#include "desktop/MenuText.h"
#include "support/core/MainThread.h"

#include <QGuiApplication>
#include <QTimer>

namespace navrel {

namespace {

constexpr int kRootID = 0;

QVariantMap propertiesOfRoot() {
    return {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
}

QVariantMap propertiesOf(const MenuEntry& entry) {
    if (entry.kind() == MenuEntry::Kind::Separator) {
        return {{QStringLiteral("type"), QStringLiteral("separator")}};
    }
    const QString title = titleOnOneLine(entry.title());
    QVariantMap properties{{QStringLiteral("label"), withoutMnemonics(title, QChar(u'_'))}};
    if (title != entry.title()) {
        // Menus over D-Bus know no tooltips: the whole title is what a screen reader says.
        properties.insert(QStringLiteral("accessible-desc"), entry.title());
    }
    if (!entry.canBeChosen()) {
        properties.insert(QStringLiteral("enabled"), false);
    }
    if (entry.kind() == MenuEntry::Kind::Switch) {
        properties.insert(QStringLiteral("toggle-type"), QStringLiteral("checkmark"));
        properties.insert(QStringLiteral("toggle-state"), entry.isChecked() ? 1 : 0);
    }
    return properties;
}

/// Those of the names asked for; no names ask for all.
QVariantMap selected(const QVariantMap& properties, const QStringList& names) {
    if (names.isEmpty()) {
        return properties;
    }
    QVariantMap result;
    for (const QString& name : names) {
        const auto found = properties.constFind(name);
        if (found != properties.constEnd()) {
            result.insert(name, *found);
        }
    }
    return result;
}

} // namespace

DBusMenu::DBusMenu(StatusMenu& menu, QObject& exported)
    : QDBusAbstractAdaptor(&exported), menu_(menu) {
    registerDBusMenuTypes();
    setAutoRelaySignals(false);
    menu_.addView(*this);
}

DBusMenu::~DBusMenu() {
    menu_.removeView(*this);
}

QString DBusMenu::textDirection() const {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                                 : QStringLiteral("ltr");
}

void DBusMenu::menuDidChange() {
    NAVREL_ASSERT_MAIN_THREAD();
    Q_EMIT LayoutUpdated(++revision_, kRootID);
}

void DBusMenu::entryDidChange(const MenuEntry& entry) {
    NAVREL_ASSERT_MAIN_THREAD();
    QList<DBusMenuItemKeys> removed;
    const QVariantMap properties = propertiesOf(entry);
    const QString description = QStringLiteral("accessible-desc");
    if (!properties.contains(description)) {
        removed.append({entry.id(), {description}});
    }
    Q_EMIT ItemsPropertiesUpdated({{entry.id(), properties}}, removed);
}

bool DBusMenu::isKnown(int id) const {
    return id == kRootID || menu_.entryWithID(id) != nullptr;
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         DBusMenuLayoutItem& layout) {
    layout = {parentId, {}, {}};
    if (parentId != kRootID) {
        if (const MenuEntry* entry = menu_.entryWithID(parentId)) {
            layout.properties = selected(propertiesOf(*entry), propertyNames);
        }
        return revision_;
    }
    layout.properties = selected(propertiesOfRoot(), propertyNames);
    if (recursionDepth != 0) {
        for (const MenuEntry* entry : menu_.visibleEntries()) {
            layout.children.append(
                {entry->id(), selected(propertiesOf(*entry), propertyNames), {}});
        }
    }
    return revision_;
}

QList<DBusMenuItem> DBusMenu::GetGroupProperties(const QList<int>& ids,
                                                 const QStringList& propertyNames) {
    QList<DBusMenuItem> result;
    if (ids.isEmpty()) {
        for (const MenuEntry* entry : menu_.visibleEntries()) {
            result.append({entry->id(), selected(propertiesOf(*entry), propertyNames)});
        }
        return result;
    }
    for (const int id : ids) {
        if (id == kRootID) {
            result.append({id, selected(propertiesOfRoot(), propertyNames)});
        } else if (const MenuEntry* entry = menu_.entryWithID(id)) {
            result.append({id, selected(propertiesOf(*entry), propertyNames)});
        }
    }
    return result;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) {
    const MenuEntry* entry = menu_.entryWithID(id);
    const QVariantMap properties =
        id == kRootID ? propertiesOfRoot() : (entry ? propertiesOf(*entry) : QVariantMap());
    // D-Bus has no value for "none".
    return QDBusVariant(properties.value(name, QString()));
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (eventId == QStringLiteral("clicked")) {
        QTimer::singleShot(0, this, [this, id] { menu_.choose(id); });
    }
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent>& events) {
    NAVREL_ASSERT_MAIN_THREAD();
    QList<int> unknown;
    for (const DBusMenuEvent& event : events) {
        if (isKnown(event.id)) {
            Event(event.id, event.eventID, event.data, event.timestamp);
        } else {
            unknown.append(event.id);
        }
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int) {
    return false;
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    for (const int id : ids) {
        if (!isKnown(id)) {
            idErrors.append(id);
        }
    }
    return {};
}

} // namespace navrel
