#include "support/propertylist/PropertyList.h"

#include "support/propertylist/BinaryPropertyList.h"
#include "support/propertylist/PropertyListDocument.h"
#include "support/propertylist/PropertyListLimits.h"
#include "support/propertylist/PropertyListValues.h"
#include "support/propertylist/XMLPropertyList.h"

namespace navrel {

const QString kPropertyListErrorDomain = QStringLiteral("PropertyListError");

namespace {

std::optional<QVariant> readASCII(const QByteArray& bytes, std::optional<Error>* error) {
    PropertyListDocument document(kMaxPropertyListValues);
    if (!document.read(bytes, error)) {
        return std::nullopt;
    }
    return document.root().toVariant();
}

} // namespace

std::optional<bool> booleanOf(const QVariant& value) {
    if (value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float) {
        return value.toDouble() != 0;
    }
    const std::optional<qlonglong> integer = propertylist::integerOf(value);
    return integer ? std::optional(*integer != 0) : std::nullopt;
}

std::optional<QVariant> propertyListWithData(QByteArrayView data, std::optional<Error>* error) {
    if (data.startsWith(propertylist::kBinaryMagic)) {
        return propertylist::readBinary(data, error);
    }
    const QByteArray bytes = QByteArray::fromRawData(data.data(), data.size());
    if (propertylist::isXML({data.data(), static_cast<std::size_t>(data.size())})) {
        return propertylist::readXML(bytes, error);
    }
    return readASCII(bytes, error);
}

} // namespace navrel
