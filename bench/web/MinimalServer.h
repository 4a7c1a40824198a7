#pragma once

#include <cstdint>
#include <string>
#include <thread>

namespace navrel::bench {

/// The least work that serves HTTP, as the floor for the server for browsers: one thread sends the
/// same answer to every request. Clients must send each request whole, and wait for its answer.
class MinimalServer {
public:
    /// Listens on 127.0.0.1. `answer` is what each request gets: head and body.
    explicit MinimalServer(std::string answer);
    /// Takes no more clients, and blocks until those that are connected have gone.
    ~MinimalServer();
    MinimalServer(const MinimalServer&) = delete;
    MinimalServer& operator=(const MinimalServer&) = delete;

    /// In host byte order; 0 if it could not listen.
    std::uint16_t port() const { return port_; }

private:
    void serve();

    const std::string answer_;
    int listener_ = -1;
    std::uint16_t port_ = 0;
    std::thread thread_;
};

} // namespace navrel::bench
