#include "web/HTTPMessage.h"

#include <algorithm>
#include <boost/json.hpp>

namespace navrel {

namespace {

/// Scripts and styles come from here alone, and no other page can frame or name this one.
constexpr std::string_view kContentPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; manifest-src 'self'; frame-ancestors 'none'; base-uri 'none'; "
    "form-action 'none'";

std::string_view reasonOf(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 202:
        return "Accepted";
    case 204:
        return "No Content";
    case 304:
        return "Not Modified";
    case 308:
        return "Permanent Redirect";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 403:
        return "Forbidden";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 409:
        return "Conflict";
    case 413:
        return "Content Too Large";
    case 415:
        return "Unsupported Media Type";
    case 421:
        return "Misdirected Request";
    case 429:
        return "Too Many Requests";
    case 431:
        return "Request Header Fields Too Large";
    case 501:
        return "Not Implemented";
    case 505:
        return "HTTP Version Not Supported";
    default:
        return "Error";
    }
}

void addField(std::string& head, std::string_view name, std::string_view value) {
    head.append(name).append(": ").append(value).append("\r\n");
}

bool hasField(const HTTPResponse& response, std::string_view name) {
    return std::any_of(response.fields.begin(), response.fields.end(),
                       [name](const auto& field) { return field.first == name; });
}

bool hasBody(int status) {
    return status != 204 && status != 304;
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    const auto last = text.find_last_not_of(" \t");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, last - first + 1);
}

/// Whether the parameters of an encoding (";q=0") refuse it.
bool isRefused(std::string_view parameters) {
    const auto quality = parameters.find("q=");
    if (quality == std::string_view::npos) {
        return false;
    }
    const std::string_view value = trimmed(parameters.substr(quality + 2));
    return value.find_first_not_of("0.") == std::string_view::npos;
}

} // namespace

HTTPResponse jsonResponse(int status, std::string body) {
    HTTPResponse response;
    response.status = status;
    response.contentType = kJSONType;
    response.body = std::make_shared<const std::string>(std::move(body));
    return response;
}

HTTPResponse errorResponse(int status, std::string_view error, std::string_view hint) {
    boost::json::object object = {{"error", error}};
    if (!hint.empty()) {
        object["hint"] = hint;
    }
    return jsonResponse(status, boost::json::serialize(object));
}

std::string headOf(const HTTPResponse& response, const HeadContext& context) {
    std::string head = "HTTP/1.1 " + std::to_string(response.status) + ' ';
    head.append(reasonOf(response.status)).append("\r\n");
    if (!response.contentType.empty()) {
        addField(head, "Content-Type", response.contentType);
    }
    if (!context.isStream && hasBody(response.status)) {
        addField(head, "Content-Length", std::to_string(response.bodyText().size()));
    }
    for (const auto& [name, value] : response.fields) {
        addField(head, name, value);
    }
    if (!hasField(response, "Cache-Control")) {
        addField(head, "Cache-Control", "no-store");
    }
    addField(head, "Content-Security-Policy", kContentPolicy);
    addField(head, "X-Content-Type-Options", "nosniff");
    addField(head, "Referrer-Policy", "no-referrer");
    addField(head, "Cross-Origin-Resource-Policy", "same-origin");
    addField(head, "Connection", context.keepAlive ? "keep-alive" : "close");
    head += "\r\n";
    return head;
}

bool acceptsGzip(std::string_view acceptEncoding) {
    while (!acceptEncoding.empty()) {
        const auto comma = acceptEncoding.find(',');
        const std::string_view item = acceptEncoding.substr(0, comma);
        const auto semicolon = item.find(';');
        const std::string_view name = trimmed(item.substr(0, semicolon));
        if (name == "gzip" || name == "*") {
            return semicolon == std::string_view::npos || !isRefused(item.substr(semicolon));
        }
        acceptEncoding.remove_prefix(comma == std::string_view::npos ? acceptEncoding.size()
                                                                     : comma + 1);
    }
    return false;
}

} // namespace navrel
