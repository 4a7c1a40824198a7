#include "project/views/FiletypeViews.h"

#include "project/store/ManagedObjectContext.h"
#include "project/views/Shown.h"
#include "protocol/CompanionKeys.h"
#include "support/core/MainThread.h"
#include "support/propertylist/PropertyList.h"

#include <QVariantList>

#include <algorithm>
#include <optional>

namespace navrel {

QVariantMap views::allowedFileTypesDictionary(const ManagedObjectContext* records) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::vector<CDFiletype*> filetypes;
    if (records != nullptr) {
        filetypes = records->filetypes();
    }
    std::stable_sort(filetypes.begin(), filetypes.end(),
                     [](const CDFiletype* left, const CDFiletype* right) {
                         return left->extension() < right->extension();
                     });
    QVariantList items;
    for (const CDFiletype* filetype : filetypes) {
        items.append(QVariantMap{{key::extension, shown(filetype->extension())},
                                 {key::allowed, shown(filetype->allowed())}});
    }
    return {{key::items, items}};
}

std::vector<QByteArray> views::allowedExtensions(const ManagedObjectContext* records) {
    NAVREL_ASSERT_MAIN_THREAD();
    std::vector<QByteArray> extensions;
    if (records != nullptr) {
        for (const CDFiletype* filetype : records->filetypes()) {
            if (filetype->allowed().value_or(false) && filetype->extension()) {
                extensions.push_back(*filetype->extension());
            }
        }
    }
    return extensions;
}

QStringList views::allowedFileTypes(const ManagedObjectContext* records) {
    NAVREL_ASSERT_MAIN_THREAD();
    QStringList extensions;
    for (const QByteArray& extension : allowedExtensions(records)) {
        extensions.append(shownUTF8(extension));
    }
    return extensions;
}

QVariantMap views::changeFiletypeAllowanceWithDictionary(const ManagedObjectContext* records,
                                                         const QVariantMap& request) {
    NAVREL_ASSERT_MAIN_THREAD();
    const QVariant extension = request.value(key::extension);
    const std::optional<bool> allowed = booleanOf(request.value(key::allowed));
    if (records != nullptr && extension.typeId() == QMetaType::QString && allowed) {
        for (CDFiletype* filetype :
             records->filetypesWithExtension(extension.toString().toUtf8())) {
            filetype->setAllowed(allowed);
        }
    }
    return allowedFileTypesDictionary(records);
}

} // namespace navrel
