#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace navrel {

enum class Method { get, head, post, patch, remove, other };

/// What of a request matters here. Fields that are absent are empty.
struct HTTPRequest {
    Method method = Method::other;
    std::string target; ///< as sent: path and query
    std::string host;
    std::size_t hostFields = 0;
    std::string origin;
    std::string cookie;
    std::string contentType;
    std::string acceptEncoding;
    std::string ifNoneMatch;
    std::string ownHeader; ///< X-Navrel
    bool hasTransferEncoding = false;
    bool hasBody = false;
    bool keepAlive = false;
    std::string body;
};

/// An answer. Its body may be shared with other answers.
struct HTTPResponse {
    int status = 200;
    std::string contentType; ///< empty without a body
    std::shared_ptr<const std::string> body;
    std::vector<std::pair<std::string, std::string>> fields; ///< beside those of every answer
    bool close = false; ///< nothing more is read from the connection

    std::string_view bodyText() const {
        return body ? std::string_view(*body) : std::string_view();
    }
};

inline constexpr std::string_view kJSONType = "application/json";

HTTPResponse jsonResponse(int status, std::string body);
/// {"error":…,"hint":…}; no hint where that is empty.
HTTPResponse errorResponse(int status, std::string_view error, std::string_view hint = {});

/// What of its connection an answer's head depends on.
struct HeadContext {
    bool keepAlive = false;
    bool isStream = false; ///< without a length: ends with the connection
};

/// Status line and fields, with the blank line behind them. What the page may do is the same in
/// every answer. Browsers keep none whose fields do not say how long.
std::string headOf(const HTTPResponse& response, const HeadContext& context);

/// Whether a list of encodings (Accept-Encoding) allows gzip.
bool acceptsGzip(std::string_view acceptEncoding);

} // namespace navrel
