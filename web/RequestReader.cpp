#include "web/RequestReader.h"

#include <algorithm>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/string_body.hpp>
#include <limits>

namespace navrel {

namespace {

namespace http = boost::beast::http;

constexpr std::string_view kTooLong = "The head of the request is too long.";

Method methodOf(http::verb verb) {
    switch (verb) {
    case http::verb::get:
        return Method::get;
    case http::verb::head:
        return Method::head;
    case http::verb::post:
        return Method::post;
    case http::verb::patch:
        return Method::patch;
    case http::verb::delete_:
        return Method::remove;
    default:
        return Method::other;
    }
}

HTTPResponse refusalOf(const boost::beast::error_code& error) {
    if (error == http::error::header_limit || error == http::error::buffer_overflow) {
        return errorResponse(431, kTooLong);
    }
    if (error == http::error::body_limit) {
        return errorResponse(413, "The body of the request is too long.");
    }
    if (error == http::error::bad_version) {
        return errorResponse(505, "This version of HTTP is not spoken here.");
    }
    if (error == http::error::bad_transfer_encoding) {
        return errorResponse(501, "Requests with a transfer encoding are not taken.");
    }
    return errorResponse(400, "This is not a request of HTTP.");
}

} // namespace

class RequestReader::Parser : public http::request_parser<http::string_body> {};

RequestReader::RequestReader(const Limits& limits)
    : limits_(limits), parser_(std::make_unique<Parser>()) {
    parser_->header_limit(static_cast<std::uint32_t>(
        std::min<std::size_t>(limits.headSize, std::numeric_limits<std::uint32_t>::max())));
    parser_->body_limit(limits.bodySize);
}

RequestReader::~RequestReader() = default;
RequestReader::RequestReader(RequestReader&&) noexcept = default;

std::size_t RequestReader::take(std::string_view bytes) {
    boost::beast::error_code error;
    const std::size_t taken =
        parser_->put(boost::asio::const_buffer(bytes.data(), bytes.size()), error);
    if (error && error != http::error::need_more) {
        refuse(refusalOf(error));
        return taken;
    }
    headSize_ += state_ == State::head ? taken : 0;
    if (state_ == State::head && parser_->is_header_done()) {
        endHead();
    }
    if (state_ == State::body && parser_->is_done()) {
        request_.body = std::move(parser_->get().body());
        state_ = State::complete;
    }
    return taken;
}

void RequestReader::endHead() {
    const auto& head = parser_->get();
    const auto fieldCount = std::distance(head.begin(), head.end());
    if (headSize_ > limits_.headSize) { // the parser takes a little more than its limit
        refuse(errorResponse(431, kTooLong));
        return;
    }
    if (static_cast<std::size_t>(fieldCount) > limits_.headFields) {
        refuse(errorResponse(431, "The head of the request has too many fields."));
        return;
    }
    const auto field = [&head](http::field name) { return std::string(head[name]); };
    request_.method = methodOf(head.method());
    request_.target = std::string(head.target());
    request_.host = field(http::field::host);
    request_.hostFields = head.count(http::field::host);
    request_.origin = field(http::field::origin);
    request_.cookie = field(http::field::cookie);
    request_.contentType = field(http::field::content_type);
    request_.acceptEncoding = field(http::field::accept_encoding);
    request_.ifNoneMatch = field(http::field::if_none_match);
    request_.ownHeader = std::string(head["X-Navrel"]);
    request_.hasTransferEncoding = head.count(http::field::transfer_encoding) > 0;
    request_.hasBody = parser_->content_length().value_or(0) > 0;
    request_.keepAlive = parser_->keep_alive();
    state_ = State::body;
}

void RequestReader::refuse(HTTPResponse response) {
    refusal_ = std::move(response);
    refusal_.close = true;
    state_ = State::refused;
}

} // namespace navrel
