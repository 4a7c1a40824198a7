#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <string_view>

namespace navrel::propertylist {

/// ICU's name for the encoding of an XML text that is not UTF-8: from its byte order mark, its
/// first bytes, or its declaration. Empty for UTF-8. That is also assumed for a text without any of
/// these, and for one that declares UTF-16 and is not.
QByteArray otherEncodingOfXML(std::string_view bytes);

/// The text in UTF-8, without a byte order mark. Nil if there is no such encoding, or the bytes are
/// not valid in it.
std::optional<QByteArray> toUTF8(std::string_view bytes, const QByteArray& encoding);

} // namespace navrel::propertylist
