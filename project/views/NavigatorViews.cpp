#include "project/views/NavigatorViews.h"

#include "project/store/ManagedObjectContext.h"
#include "project/views/FiletypeViews.h"
#include "project/views/Shown.h"
#include "protocol/CompanionKeys.h"
#include "support/core/MainThread.h"
#include "support/text/Collation.h"
#include "support/text/UTF8.h"

#include <QVariantList>

#include <algorithm>
#include <utility>
#include <vector>

namespace navrel {

namespace {

QVariantMap navigatorItem(const CDObject& object) {
    return {{key::name, shown(object.name())},
            {key::identifier, shown(object.identifier())},
            {key::isGroup, shown(object.isGroup())},
            {key::path, shown(object.path())}};
}

/// The items of records, ordered by name.
QVariantList navigatorItems(std::vector<CDObject*> objects) {
    std::stable_sort(objects.begin(), objects.end(),
                     [](const CDObject* left, const CDObject* right) {
                         return localizedCaseInsensitiveCompare(left->name().value_or(""),
                                                                right->name().value_or("")) < 0;
                     });
    QVariantList items;
    for (const CDObject* object : objects) {
        items.append(navigatorItem(*object));
    }
    return items;
}

std::vector<CDObject*> visibleChildren(const ManagedObjectContext& context,
                                       QByteArrayView identifier) {
    std::vector<CDObject*> children = context.objectsWithParentID(identifier);
    std::vector<QByteArray> allowed = views::allowedExtensions(&context);
    std::sort(allowed.begin(), allowed.end());
    // Deliberate: with every file type switched off nothing is filtered and all children show.
    if (!allowed.empty()) {
        std::erase_if(children, [&](const CDObject* child) {
            const bool isAllowed =
                child->extension() &&
                std::binary_search(allowed.begin(), allowed.end(), *child->extension());
            return !isAllowed && !child->isGroup().value_or(false);
        });
    }
    return children;
}

} // namespace

std::optional<QVariantMap>
views::navigatorDictionaryForID(const ManagedObjectContext* records, const QByteArray& root,
                                const std::optional<QString>& identifier) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (records == nullptr) {
        return std::nullopt;
    }
    const QByteArray wanted = identifier ? identifier->toUtf8() : root;
    const CDObject* object = records->lastObjectWithIdentifier(wanted);
    if (object == nullptr) {
        return std::nullopt;
    }
    return QVariantMap{
        {key::identifier, shownUTF8(wanted)},
        {key::label, shown(object->name())},
        {key::items, navigatorItems(visibleChildren(*records, wanted))},
        {key::path, shown(object->path())},
    };
}

QVariantMap views::superclassDictionary(const ManagedObjectContext* records) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::vector<QByteArray> superclasses;
    if (records != nullptr) {
        for (const CDObject* object : records->objects()) {
            if (object->subclassOf()) {
                superclasses.push_back(*object->subclassOf());
            }
        }
    }
    std::sort(superclasses.begin(), superclasses.end());
    superclasses.erase(std::unique(superclasses.begin(), superclasses.end()), superclasses.end());

    QVariantList items;
    for (const QByteArray& superclass : superclasses) {
        items.append(shownUTF8(superclass));
    }
    return {{key::title, QStringLiteral("Superclass navigator")}, {key::items, items}};
}

QVariantMap views::navigatorDictionaryForSuperclass(const ManagedObjectContext* records,
                                                    const QString& superclass) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::vector<CDObject*> subclasses;
    if (records != nullptr) {
        subclasses = records->objectsWithSubclassOf(superclass.toUtf8());
    }
    return {{key::superclass, superclass},
            {key::label, superclass},
            {key::items, navigatorItems(std::move(subclasses))}};
}

std::optional<QString> views::objectIDForFileName(const ManagedObjectContext* records,
                                                  const QString& fileName) {
    NAVREL_ASSERT_MAIN_THREAD();
    if (records == nullptr) {
        return std::nullopt;
    }
    const auto objects = records->objectsWithName(fileName.toUtf8());
    if (objects.size() != 1 || !objects.front()->identifier()) {
        return std::nullopt;
    }
    return shownUTF8(*objects.front()->identifier());
}

} // namespace navrel
