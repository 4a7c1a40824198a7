#pragma once

#include "support/propertylist/PropertyList.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace navrel::propertylist {

/// How a date stands in XML, always UTC.
inline constexpr char kXMLDateFormat[] = "yyyy-MM-dd'T'HH:mm:ss'Z'";

/// True for bytes that only XML begins with: a declaration, a document type, a comment or <plist>.
/// A lone "<" begins data of the old-style format.
bool isXML(std::string_view bytes);

/// Reads the XML format, in UTF-8 or the encoding that it declares. Document types are passed over,
/// but one with declarations of its own is refused: lists have no use for them, and what they
/// define unfolds without bound. So are tags with more text than any list's: the time that the XML
/// reader takes for a tag grows with the square of its attributes.
std::optional<QVariant> readXML(const QByteArray& bytes, std::optional<Error>* error);

} // namespace navrel::propertylist
