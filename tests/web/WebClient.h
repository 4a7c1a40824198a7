#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// One answer, taken apart. Status 0: the connection ended without one.
struct WebAnswer {
    int status = 0;
    std::map<std::string, std::string> fields; ///< names in lower case
    std::string body;
    bool hasEnded = false; ///< the connection has, behind the answer
};

/// A connection as plain bytes, with or without TLS: it keeps to no protocol by itself. Waits with
/// a deadline that no machine needs.
class WebClient {
public:
    enum class Kind { plain, tls };

    /// Connects to a port of an address; from an address of this machine where `from` is given.
    explicit WebClient(std::uint16_t port, Kind kind = Kind::plain,
                       const std::string& address = "127.0.0.1", const std::string& from = {});
    /// Connects to a Unix socket.
    explicit WebClient(const std::string& path);
    WebClient(WebClient&&) noexcept;
    ~WebClient();

    bool isConnected() const;
    int descriptor() const;

    /// Sends bytes; false where the connection does not take them.
    bool send(std::string_view bytes);

    /// The next answer: its body as long as its head says, or else to the end of the connection.
    WebAnswer answer(bool hasBody = true);
    WebAnswer ask(std::string_view bytes) {
        send(bytes);
        return answer();
    }

    /// Text up to and with `end`; what arrived where that never comes.
    std::string readUntil(std::string_view end);

    /// Waits for the end of the connection; what arrived before it, or nothing where it stays open.
    std::optional<std::string> readToEnd();

    /// Whether the connection ends, when nothing but heartbeats comes.
    bool ends() { return readToEnd().has_value(); }

private:
    class Socket;
    bool readSome();

    std::unique_ptr<Socket> socket_;
    std::string arrived_;
    bool hasEnded_ = false;
};

} // namespace navrel
