#include "project/views/ScanViews.h"

#include "project/store/ManagedObjectContext.h"
#include "project/views/Shown.h"
#include "protocol/CompanionKeys.h"
#include "support/core/MainThread.h"
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

QVariantMap shortcutItem(const CDShortcut& shortcut) {
    return {{key::shortcut, shown(shortcut.shortcut())},
            {key::line, shortcut.line().value_or(0)},
            {key::path, shown(shortcut.path())}};
}

QVariantMap elementItem(const CDElement& element) {
    return {{key::name, shown(element.name())},
            {key::line, element.line().value_or(0)},
            {key::path, shown(element.path())},
            {key::type, shown(element.type())}};
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

QVariantMap views::shortcutsDictionary(const ManagedObjectContext* records) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::vector<CDShortcut*> shortcuts;
    if (records != nullptr) {
        shortcuts = records->shortcuts();
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
    return {{key::items, items}};
}

std::optional<QVariantMap> views::elementsDictionaryForObjectID(const ManagedObjectContext* records,
                                                                const QString& identifier) {
    NAVREL_ASSERT_MAIN_THREAD();
    const QByteArray wanted = identifier.toUtf8();
    const CDObject* object =
        records != nullptr ? records->lastObjectWithIdentifier(wanted) : nullptr;
    if (object == nullptr) {
        return std::nullopt;
    }
    QVariantMap dictionary{{key::title, shown(object->name())},
                           {key::identifier, identifier},
                           {key::items, elementItems(*records, wanted)},
                           {key::path, shown(object->path())}};
    if (const CDObject* counterpart = counterpartOf(*records, *object)) {
        dictionary.insert(key::counterpart, shown(counterpart->identifier()));
    }
    return dictionary;
}

} // namespace navrel
