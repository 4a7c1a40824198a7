// The data manager's views: the store as property-list values for the device.

#include "project/KZDataManager.h"
#include "project/ProjectFile.h"
#include "project/store/ManagedObjectContext.h"
#include "support/propertylist/PropertyList.h"
#include "support/text/Collation.h"
#include "support/text/UTF8.h"

#include <QVariantList>

#include <algorithm>
#include <utility>
#include <vector>

namespace navrel {

namespace {

/// Only a store made by hand holds records without these; they show as empty.
QString shown(const std::optional<QByteArray>& text) {
    return shownUTF8(text.value_or(""));
}

int shown(std::optional<bool> flag) {
    return flag.value_or(false) ? 1 : 0;
}

QVariantMap navigatorItem(const CDObject& object) {
    return {{QStringLiteral("name"), shown(object.name())},
            {QStringLiteral("identifier"), shown(object.identifier())},
            {QStringLiteral("isGroup"), shown(object.isGroup())},
            {QStringLiteral("path"), shown(object.path())}};
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

std::vector<QByteArray> extensionsAllowedIn(const ManagedObjectContext& context) {
    std::vector<QByteArray> extensions;
    for (const CDFiletype* filetype : context.filetypes()) {
        if (filetype->allowed().value_or(false) && filetype->extension()) {
            extensions.push_back(*filetype->extension());
        }
    }
    return extensions;
}

std::vector<CDObject*> visibleChildren(const ManagedObjectContext& context,
                                       QByteArrayView identifier) {
    std::vector<CDObject*> children = context.objectsWithParentID(identifier);
    std::vector<QByteArray> allowed = extensionsAllowedIn(context);
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
KZDataManager::navigatorDictionaryForID(const std::optional<QString>& identifier) {
    const std::optional<QByteArray>& root = projectFile_->rootID();
    ManagedObjectContext* context = root ? managedObjectContext() : nullptr;
    if (context == nullptr) {
        return std::nullopt;
    }
    const QByteArray wanted = identifier ? identifier->toUtf8() : *root;
    const CDObject* object = context->lastObjectWithIdentifier(wanted);
    if (object == nullptr) {
        return std::nullopt;
    }
    return QVariantMap{
        {QStringLiteral("identifier"), shownUTF8(wanted)},
        {QStringLiteral("label"), shown(object->name())},
        {QStringLiteral("items"), navigatorItems(visibleChildren(*context, wanted))},
        {QStringLiteral("path"), shown(object->path())},
    };
}

QVariantMap KZDataManager::superclassDictionary() {
    std::vector<QByteArray> superclasses;
    if (const ManagedObjectContext* context = managedObjectContext()) {
        for (const CDObject* object : context->objects()) {
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
    return {{QStringLiteral("title"), QStringLiteral("Superclass navigator")},
            {QStringLiteral("items"), items}};
}

QVariantMap KZDataManager::navigatorDictionaryForSuperclass(const QString& superclass) {
    std::vector<CDObject*> subclasses;
    if (const ManagedObjectContext* context = managedObjectContext()) {
        subclasses = context->objectsWithSubclassOf(superclass.toUtf8());
    }
    return {{QStringLiteral("superclass"), superclass},
            {QStringLiteral("label"), superclass},
            {QStringLiteral("items"), navigatorItems(std::move(subclasses))}};
}

QVariantMap KZDataManager::allowedFileTypesDictionary() {
    std::vector<CDFiletype*> filetypes;
    if (const ManagedObjectContext* context = managedObjectContext()) {
        filetypes = context->filetypes();
    }
    std::stable_sort(filetypes.begin(), filetypes.end(),
                     [](const CDFiletype* left, const CDFiletype* right) {
                         return left->extension() < right->extension();
                     });
    QVariantList items;
    for (const CDFiletype* filetype : filetypes) {
        items.append(QVariantMap{{QStringLiteral("extension"), shown(filetype->extension())},
                                 {QStringLiteral("allowed"), shown(filetype->allowed())}});
    }
    return {{QStringLiteral("items"), items}};
}

QStringList KZDataManager::allowedFileTypes() {
    QStringList extensions;
    if (const ManagedObjectContext* context = managedObjectContext()) {
        for (const QByteArray& extension : extensionsAllowedIn(*context)) {
            extensions.append(shownUTF8(extension));
        }
    }
    return extensions;
}

QVariantMap KZDataManager::changeFiletypeAllowanceWithDictionary(const QVariantMap& request) {
    const QVariant extension = request.value(QStringLiteral("extension"));
    const std::optional<bool> allowed = booleanOf(request.value(QStringLiteral("allowed")));
    const ManagedObjectContext* context = managedObjectContext();
    if (context != nullptr && extension.typeId() == QMetaType::QString && allowed) {
        for (CDFiletype* filetype :
             context->filetypesWithExtension(extension.toString().toUtf8())) {
            filetype->setAllowed(allowed);
        }
    }
    return allowedFileTypesDictionary();
}

} // namespace navrel
