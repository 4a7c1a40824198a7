// The data manager's views of what scanning found: the shortcuts of the project and the elements of
// a file, as property-list values for the device.

#include "project/KZDataManager.h"
#include "project/store/ManagedObjectContext.h"
#include "support/text/Collation.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <QVariantList>

#include <algorithm>
#include <array>
#include <vector>

namespace navrel {

namespace {

/// In the order in which they are asked: a later one that has a counterpart replaces an earlier.
constexpr std::array kCounterpartExtensions = {"h", "m", "mm", "cpp", "c"};

/// Only a store made by hand holds records without these; they show as empty.
QString shown(const std::optional<QByteArray>& text) {
    return shownUTF8(text.value_or(""));
}

QVariantMap shortcutItem(const CDShortcut& shortcut) {
    return {{QStringLiteral("shortcut"), shown(shortcut.shortcut())},
            {QStringLiteral("line"), shortcut.line().value_or(0)},
            {QStringLiteral("path"), shown(shortcut.path())}};
}

QVariantMap elementItem(const CDElement& element) {
    return {{QStringLiteral("name"), shown(element.name())},
            {QStringLiteral("line"), element.line().value_or(0)},
            {QStringLiteral("path"), shown(element.path())},
            {QStringLiteral("type"), shown(element.type())}};
}

QVariantList elementItems(const ManagedObjectContext& context, QByteArrayView identifier) {
    std::vector<CDElement*> elements = context.elementsWithIdentifier(identifier);
    std::stable_sort(
        elements.begin(), elements.end(),
        [](const CDElement* left, const CDElement* right) { return left->line() < right->line(); });
    QVariantList items;
    for (const CDElement* element : elements) {
        items.append(elementItem(*element));
    }
    return items;
}

/// The only other file of a name, or null where there is none or more than one.
const CDObject* onlyOtherFile(const ManagedObjectContext& context, const QByteArray& name,
                              QByteArrayView identifier) {
    std::vector<CDObject*> files = context.objectsWithName(name);
    std::erase_if(files, [&](const CDObject* file) {
        return !file->identifier() || *file->identifier() == identifier;
    });
    return files.size() == 1 ? files.front() : nullptr;
}

/// The header of an implementation file or the reverse, by name alone, wherever in the project. A
/// file of the very same name is a counterpart too, deliberately.
const CDObject* counterpartOf(const ManagedObjectContext& context, const CDObject& object) {
    const CDObject* counterpart = nullptr;
    if (object.name() && object.identifier()) {
        const QByteArray baseName = deletingPathExtension(*object.name());
        for (const char* extension : kCounterpartExtensions) {
            const QByteArray name = baseName + '.' + extension;
            if (const CDObject* other = onlyOtherFile(context, name, *object.identifier())) {
                counterpart = other;
            }
        }
    }
    return counterpart;
}

} // namespace

// Without a store there is no failed fetch that could be logged: the failure to open the store has
// been presented, and is at every attempt.

QVariantMap KZDataManager::shortcutsDictionary() {
    std::vector<CDShortcut*> shortcuts;
    if (const ManagedObjectContext* context = managedObjectContext()) {
        shortcuts = context->shortcuts();
    }
    std::stable_sort(shortcuts.begin(), shortcuts.end(),
                     [](const CDShortcut* left, const CDShortcut* right) {
                         return localizedCaseInsensitiveCompare(left->shortcut().value_or(""),
                                                                right->shortcut().value_or("")) < 0;
                     });
    QVariantList items;
    for (const CDShortcut* shortcut : shortcuts) {
        items.append(shortcutItem(*shortcut));
    }
    return {{QStringLiteral("items"), items}};
}

std::optional<QVariantMap> KZDataManager::elementsDictionaryForObjectID(const QString& identifier) {
    const ManagedObjectContext* context = managedObjectContext();
    const QByteArray wanted = identifier.toUtf8();
    const CDObject* object =
        context != nullptr ? context->lastObjectWithIdentifier(wanted) : nullptr;
    if (object == nullptr) {
        return std::nullopt;
    }
    QVariantMap dictionary{{QStringLiteral("title"), shown(object->name())},
                           {QStringLiteral("identifier"), identifier},
                           {QStringLiteral("items"), elementItems(*context, wanted)},
                           {QStringLiteral("path"), shown(object->path())}};
    if (const CDObject* counterpart = counterpartOf(*context, *object)) {
        dictionary.insert(QStringLiteral("counterpart"), shown(counterpart->identifier()));
    }
    return dictionary;
}

} // namespace navrel
