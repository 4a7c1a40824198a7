#pragma once

#include "support/propertylist/PropertyList.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace navrel::propertylist {

/// True for bytes that only XML begins with: a declaration, a document type, a comment or <plist>,
/// or the byte order mark of UTF-16, which the old-style format does not know. A lone "<" begins
/// data of the old-style format.
bool isXML(std::string_view bytes);

/// Reads the XML format, in any encoding that XML itself declares. Document types are passed over,
/// but one that declares entities is refused: lists have no use for them, and they unfold without
/// bound.
std::optional<QVariant> readXML(const QByteArray& bytes, std::optional<Error>* error);

} // namespace navrel::propertylist
