#pragma once

#include <QString>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

// Reading the JSON views that Navrel serves. What is missing, or of another type, counts as empty:
// the answer may come from a newer Navrel, or from something else.

/// The object in a text; nothing for anything else.
std::optional<boost::json::object> objectIn(std::string_view text);

/// A text as it came; a number as its digits.
std::string bytesAt(const boost::json::object& object, const char* key);
/// The same, made harmless for a terminal.
QString textAt(const boost::json::object& object, const char* key);
qint64 numberAt(const boost::json::object& object, const char* key);
bool flagAt(const boost::json::object& object, const char* key);
const boost::json::array& arrayAt(const boost::json::object& object, const char* key);
const boost::json::object& objectAt(const boost::json::object& object, const char* key);
const boost::json::object& objectOf(const boost::json::value& value);

} // namespace navrel
