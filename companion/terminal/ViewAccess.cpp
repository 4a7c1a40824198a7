#include "companion/terminal/ViewAccess.h"

#include "companion/terminal/TerminalText.h"

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

namespace navrel {

namespace json = boost::json;

std::optional<json::object> objectIn(std::string_view text) {
    json::error_code error;
    json::value value = json::parse(text, error);
    return !error && value.is_object() ? std::optional(std::move(value.get_object()))
                                       : std::nullopt;
}

std::string bytesAt(const json::object& object, const char* key) {
    const json::value* const value = object.if_contains(key);
    if (value == nullptr || value->is_structured() || value->is_null()) {
        return {};
    }
    return value->is_string() ? std::string(value->get_string()) : json::serialize(*value);
}

QString textAt(const json::object& object, const char* key) {
    return TerminalText::harmless(QString::fromStdString(bytesAt(object, key)));
}

qint64 numberAt(const json::object& object, const char* key) {
    const json::value* const value = object.if_contains(key);
    json::error_code error;
    const qint64 number = value == nullptr ? 0 : value->to_number<qint64>(error);
    return error ? 0 : number;
}

bool flagAt(const json::object& object, const char* key) {
    const json::value* const value = object.if_contains(key);
    return value != nullptr && value->is_bool() && value->get_bool();
}

const json::array& arrayAt(const json::object& object, const char* key) {
    static const json::array kNothing;
    const json::value* const value = object.if_contains(key);
    return value != nullptr && value->is_array() ? value->get_array() : kNothing;
}

const json::object& objectOf(const json::value& value) {
    static const json::object kNothing;
    return value.is_object() ? value.get_object() : kNothing;
}

const json::object& objectAt(const json::object& object, const char* key) {
    static const json::object kNothing;
    const json::value* const value = object.if_contains(key);
    return value == nullptr ? kNothing : objectOf(*value);
}

} // namespace navrel
