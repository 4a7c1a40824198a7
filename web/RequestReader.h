#pragma once

#include "web/HTTPMessage.h"
#include "web/Limits.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// Reads one request from the bytes of a connection. Pure: bytes in, a request or a refusal out.
/// Stops behind the head, so that a request can be refused with its body unread.
class RequestReader {
public:
    enum class State {
        head,     ///< the head is not complete
        body,     ///< `request` has all but its body
        complete, ///< `request` is whole
        refused,  ///< `refusal` says why; nothing more is read
    };

    explicit RequestReader(const Limits& limits);
    ~RequestReader();
    RequestReader(RequestReader&&) noexcept;
    RequestReader& operator=(RequestReader&&) = delete;

    /// Takes bytes from the front of `bytes` and returns how many; those left must be given again,
    /// with more behind them, once these have arrived. Returns at the end of the head and at the
    /// end of the request; must not be called again once complete or refused.
    std::size_t take(std::string_view bytes);

    State state() const { return state_; }
    const HTTPRequest& request() const { return request_; }
    const HTTPResponse& refusal() const { return refusal_; }

private:
    class Parser;

    void endHead();
    void refuse(HTTPResponse response);

    const Limits& limits_;
    std::unique_ptr<Parser> parser_;
    State state_ = State::head;
    std::size_t headSize_ = 0; ///< bytes that were taken of it
    HTTPRequest request_;
    HTTPResponse refusal_;
};

} // namespace navrel
