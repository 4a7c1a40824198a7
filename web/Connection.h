#pragma once

#include "web/ByteStream.h"
#include "web/EventQueue.h"
#include "web/Limits.h"
#include "web/RequestReader.h"
#include "web/Site.h"

#include <array>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/thread_pool.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace navrel {

/// One connection: request by request, until one of both ends it. Every wait has a deadline, which
/// `tick` enforces. Network thread.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// What connections work with, borrowed.
    struct World {
        Site& site;
        const Limits& limits;
        std::function<Time()> now;
        boost::asio::thread_pool& views;
        boost::asio::thread_pool& repository;
    };

    /// Serves a connected socket. `tls` is null where the port speaks plain HTTP.
    Connection(StreamSocket socket, Caller caller, TLSContext tls, World& world);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Serves until the end, of which `ended` is told once.
    void start(std::function<void()> ended);
    void close();
    /// Closes what is overdue; keeps an event stream alive. To be called several times a second.
    void tick();

    const Caller& caller() const { return caller_; }

private:
    class Events;

    template <typename Value = void>
    using Task = boost::asio::awaitable<Value>;

    Task<> run();
    Task<bool> begin();
    Task<int> peekFirstByte();
    Task<bool> serveRequest();
    Task<bool> readHead(RequestReader& reader);
    Task<bool> readBody(RequestReader& reader);
    Task<bool> readMore();
    Task<HTTPResponse> work(const Site::Visit& visit, const HTTPRequest& request);
    Task<bool> respond(const HTTPResponse& response, const HTTPRequest& request, bool keepAlive);
    Task<bool> redirect(const RequestReader& reader);
    Task<> linger();
    Task<> serveEvents(const Site::Visit& visit);
    Task<> sendEvents(Events& events);
    Task<> watchForEnd();
    void setDeadline(Limits::Duration duration);
    void wake();

    const Caller caller_;
    const TLSContext tls_;
    World& world_;
    StreamSocket socket_; ///< until there is a stream
    std::unique_ptr<ByteStream> stream_;
    boost::asio::steady_timer wakeUp_; ///< what the sender of events waits for
    Time deadline_;
    std::string unread_; ///< arrived, but not taken by a reader
    std::array<char, 4096> chunk_ = {};
    Events* events_ = nullptr;
    bool isRedirecting_ = false; ///< plain text on a port of TLS
    bool isClosed_ = false;
    bool hasEnded_ = false; ///< the other end of an event stream has
};

} // namespace navrel
