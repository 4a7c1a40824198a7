#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <string_view>

namespace navrel::propertylist {

/// The encoding of an XML text that is not in UTF-8, as ICU names it: by its byte order mark, by
/// how it begins, or by its declaration. Empty for UTF-8, which is what a text without any of these
/// is in, and one that declares to be in UTF-16 and is not.
QByteArray otherEncodingOfXML(std::string_view bytes);

/// The text in UTF-8, without a byte order mark. Nil where there is no such encoding, or the bytes
/// are not in it.
std::optional<QByteArray> toUTF8(std::string_view bytes, const QByteArray& encoding);

} // namespace navrel::propertylist
