#pragma once

#include <cstdint>
#include <string>
#include <thread>

namespace navrel::bench {

/// The least that serves HTTP: one thread that waits for bytes and sends the same answer for each
/// head that ends, whatever it asks for. The floor of the server for browsers.
class LeastServer {
public:
    /// `answer` is what each request gets: head and body.
    explicit LeastServer(std::string answer);
    /// Ends once its clients have gone.
    ~LeastServer();
    LeastServer(const LeastServer&) = delete;
    LeastServer& operator=(const LeastServer&) = delete;

    std::uint16_t port() const { return port_; }

private:
    void serve();

    const std::string answer_;
    int listener_ = -1;
    std::uint16_t port_ = 0;
    std::thread thread_;
};

} // namespace navrel::bench
