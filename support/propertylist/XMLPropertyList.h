#pragma once

#include "support/propertylist/PropertyList.h"

#include <QByteArray>

#include <optional>
#include <string_view>

namespace navrel::propertylist {

/// The format of dates in XML, which are always UTC.
inline constexpr char kXMLDateFormat[] = "yyyy-MM-dd'T'HH:mm:ss'Z'";

/// Whether a text begins as only XML does: with a declaration, a document type, a comment or
/// <plist>. A "<" alone begins data of the old-style format.
bool isXML(std::string_view bytes);

/// Reads the XML format, in UTF-8 or the encoding that it declares, as `propertyListWithData` does.
/// Document types are skipped, but one with declarations of its own is refused: lists do not need
/// them, and what they define may grow without bound. Tags with more text than any list has are
/// refused too, since the XML reader takes time in proportion to the square of their attributes.
std::optional<QVariant> readXML(const QByteArray& bytes, std::optional<Error>* error);

} // namespace navrel::propertylist
