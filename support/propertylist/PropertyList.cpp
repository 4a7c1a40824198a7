#include "support/propertylist/PropertyList.h"

#include "support/propertylist/PropertyListDocument.h"

namespace navrel {

const QString kPropertyListErrorDomain = QStringLiteral("PropertyListError");

std::optional<QVariant> propertyListWithData(QByteArrayView data, std::optional<Error>* error) {
    PropertyListDocument document;
    if (!document.read(QByteArray::fromRawData(data.data(), data.size()), error)) {
        return std::nullopt;
    }
    return document.root().toVariant();
}

} // namespace navrel
