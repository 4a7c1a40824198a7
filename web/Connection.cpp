#include "web/Connection.h"

#include <boost/asio/associated_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <utility>

namespace navrel {

namespace {

namespace asio = boost::asio;
using ErrorCode = ByteStream::ErrorCode;

/// The first byte of every TLS connection: a record of the handshake.
constexpr int kTLSHandshake = 0x16;

/// Runs a job on a pool and resumes the caller where it was.
template <typename Job>
asio::awaitable<HTTPResponse> runOn(asio::thread_pool& pool, Job job) {
    return asio::async_initiate<const asio::use_awaitable_t<>&, void(HTTPResponse)>(
        [&pool, job](auto handler) {
            asio::post(pool, [job, handler = std::move(handler)]() mutable {
                const auto executor = asio::get_associated_executor(handler);
                asio::post(executor, [handler = std::move(handler), response = job()]() mutable {
                    std::move(handler)(std::move(response));
                });
            });
        },
        asio::use_awaitable);
}

} // namespace

/// The stream of events that a connection has become.
class Connection::Events final : public EventStream {
public:
    Events(Connection& connection, int device)
        : EventStream(device), queue(connection.world_.limits.unsentSize),
          lastSent(connection.world_.now()), connection_(connection) {}

    void deliver(const std::string& event) override {
        queue.add(event);
        connection_.wake();
    }
    void end() override { connection_.close(); }

    EventQueue queue;
    Time lastSent;

private:
    Connection& connection_;
};

Connection::Connection(StreamSocket socket, Caller caller, TLSContext tls, World& world)
    : caller_(std::move(caller)), tls_(std::move(tls)), world_(world), socket_(std::move(socket)),
      wakeUp_(socket_.get_executor(), Time::max()) {
    setDeadline(world_.limits.idleTime);
}

Connection::~Connection() = default;

void Connection::start(std::function<void()> ended) {
    auto serve = [self = shared_from_this(), ended = std::move(ended)]() -> Task<> {
        co_await self->run();
        self->close();
        ended();
    };
    asio::co_spawn(socket_.get_executor(), std::move(serve), asio::detached);
}

void Connection::close() {
    isClosed_ = true;
    ErrorCode ignored;
    socket_.close(ignored);
    if (stream_ != nullptr) {
        stream_->close();
    }
    wake();
}

void Connection::tick() {
    const Time now = world_.now();
    if (now >= deadline_) {
        close();
    } else if (events_ != nullptr && events_->queue.unsent() == 0 &&
               now - events_->lastSent >= world_.limits.heartbeat) {
        events_->deliver(std::string(kHeartbeat));
    }
}

void Connection::setDeadline(Limits::Duration duration) {
    deadline_ = world_.now() + duration;
}

void Connection::wake() {
    wakeUp_.cancel();
}

Connection::Task<> Connection::run() {
    bool goesOn = co_await begin();
    while (goesOn && !isClosed_) {
        goesOn = co_await serveRequest();
    }
}

/// Settles whether the two ends speak of TLS or of plain HTTP.
Connection::Task<bool> Connection::begin() {
    if (caller_.way == Caller::Way::owner) {
        stream_ = plainStream(std::move(socket_));
        co_return true;
    }
    ErrorCode error;
    socket_.non_blocking(true, error); // a byte that was announced may be gone again
    const int first = co_await peekFirstByte();
    if (first < 0 || isClosed_ || (first == kTLSHandshake && tls_ == nullptr)) {
        co_return false;
    }
    setDeadline(world_.limits.headTime);
    isRedirecting_ = tls_ != nullptr && first != kTLSHandshake;
    const bool isTLS = tls_ != nullptr && !isRedirecting_;
    stream_ = isTLS ? tlsStream(std::move(socket_), tls_) : plainStream(std::move(socket_));
    co_await stream_->shakeHands(error);
    co_return !error;
}

/// Waits for the first byte, which stays to be read. Negative where none comes.
Connection::Task<int> Connection::peekFirstByte() {
    ErrorCode error;
    co_await socket_.async_wait(asio::socket_base::wait_read,
                                asio::redirect_error(asio::use_awaitable, error));
    unsigned char first = 0;
    if (error ||
        socket_.receive(asio::buffer(&first, 1), asio::socket_base::message_peek, error) == 0) {
        co_return -1;
    }
    co_return error ? -1 : first;
}

/// False where the connection ends with this request.
Connection::Task<bool> Connection::serveRequest() {
    RequestReader reader(world_.limits);
    if (!co_await readHead(reader)) {
        co_return false;
    }
    const HTTPRequest& request = reader.request();
    if (isRedirecting_ || reader.state() == RequestReader::State::refused) {
        co_return co_await redirect(reader);
    }
    auto admitted = world_.site.admit(request, caller_, world_.now());
    if (const auto* refusal = std::get_if<HTTPResponse>(&admitted)) {
        const bool isWhole = reader.state() == RequestReader::State::complete;
        co_return co_await respond(*refusal, request,
                                   isWhole && request.keepAlive && !refusal->close);
    }
    const auto& visit = std::get<Site::Visit>(admitted);
    if (!co_await readBody(reader)) {
        co_return false;
    }
    if (reader.state() == RequestReader::State::refused) {
        co_return co_await respond(reader.refusal(), request, false);
    }
    setDeadline(world_.limits.answerTime);
    if (visit.runs() == Site::Runs::stream) {
        co_await serveEvents(visit);
        co_return false;
    }
    const HTTPResponse response = co_await work(visit, request);
    co_return co_await respond(response, request, request.keepAlive && !response.close);
}

Connection::Task<bool> Connection::readHead(RequestReader& reader) {
    setDeadline(unread_.empty() ? world_.limits.idleTime : world_.limits.headTime);
    for (;;) {
        const bool isFirst = unread_.empty();
        if (!isFirst) {
            unread_.erase(0, reader.take(unread_));
        }
        if (reader.state() != RequestReader::State::head) {
            co_return true;
        }
        if (!co_await readMore()) {
            co_return false;
        }
        if (isFirst) {
            setDeadline(world_.limits.headTime); // from its first byte, however it trickles
        }
    }
}

Connection::Task<bool> Connection::readBody(RequestReader& reader) {
    setDeadline(world_.limits.bodyTime);
    while (reader.state() == RequestReader::State::body) {
        unread_.erase(0, reader.take(unread_));
        const bool isShort = reader.state() == RequestReader::State::body;
        // Not as one condition: GCC 12 translates co_await behind && wrongly. It also destroys
        // temporaries of an expression with co_await twice: such an expression has none that own.
        if (isShort) {
            if (!co_await readMore()) {
                co_return false;
            }
        }
    }
    co_return true;
}

Connection::Task<bool> Connection::readMore() {
    ErrorCode error;
    const std::size_t size = co_await stream_->read(asio::buffer(chunk_), error);
    if (error || isClosed_) {
        co_return false;
    }
    unread_.append(chunk_.data(), size);
    co_return true;
}

Connection::Task<HTTPResponse> Connection::work(const Site::Visit& visit,
                                                const HTTPRequest& request) {
    Site& site = world_.site;
    if (visit.runs() == Site::Runs::here) {
        co_return site.answer(visit, request);
    }
    auto& pool = visit.runs() == Site::Runs::views ? world_.views : world_.repository;
    co_return co_await runOn(pool,
                             [&site, &visit, &request] { return site.answer(visit, request); });
}

/// Whether the connection goes on.
Connection::Task<bool> Connection::respond(const HTTPResponse& response, const HTTPRequest& request,
                                           bool keepAlive) {
    const std::string head = headOf(response, {.keepAlive = keepAlive});
    const bool hasBody = request.method != Method::head;
    setDeadline(world_.limits.answerTime);
    ErrorCode error;
    co_await stream_->write(head, hasBody ? response.bodyText() : std::string_view(), error);
    if (!error && !keepAlive) {
        co_await linger();
    }
    co_return !error && keepAlive && !isClosed_;
}

/// Answers what is not served: no HTTP, or not under TLS.
Connection::Task<bool> Connection::redirect(const RequestReader& reader) {
    const bool isRefused = reader.state() == RequestReader::State::refused;
    const HTTPResponse response =
        isRefused ? reader.refusal() : world_.site.redirectToTLS(reader.request());
    co_return co_await respond(response, reader.request(), false);
}

/// Reads for a moment what the other end still sends: to close at once would have the system throw
/// away the answer that is under way.
Connection::Task<> Connection::linger() {
    stream_->shutDown();
    setDeadline(world_.limits.lingerTime);
    std::size_t size = 0;
    ErrorCode error;
    while (!error && !isClosed_ && size < world_.limits.lingerSize) {
        size += co_await stream_->read(asio::buffer(chunk_), error);
    }
}

Connection::Task<> Connection::serveEvents(const Site::Visit& visit) {
    HTTPResponse response;
    response.contentType = "text/event-stream";
    if (!visit.cookie.empty()) {
        response.fields.emplace_back("Set-Cookie", visit.cookie);
    }
    const std::string head = headOf(response, {.isStream = true});
    ErrorCode error;
    co_await stream_->write(head, {}, error);
    if (error || isClosed_) {
        co_return;
    }
    Events events(*this, visit.device);
    events_ = &events;
    world_.site.openStream(events);
    auto watch = [self = shared_from_this()]() -> Task<> { co_await self->watchForEnd(); };
    asio::co_spawn(wakeUp_.get_executor(), std::move(watch), asio::detached);
    co_await sendEvents(events);
    world_.site.closeStream(events);
    events_ = nullptr;
}

Connection::Task<> Connection::sendEvents(Events& events) {
    ErrorCode error;
    while (!error && !isClosed_ && !hasEnded_) {
        if (events.queue.isEmpty()) {
            deadline_ = Time::max();
            ErrorCode woken;
            co_await wakeUp_.async_wait(asio::redirect_error(asio::use_awaitable, woken));
            continue;
        }
        setDeadline(world_.limits.answerTime);
        events.lastSent = world_.now();
        const std::string text = events.queue.take();
        co_await stream_->write(text, {}, error);
        events.queue.sent();
    }
}

/// A reader of events sends nothing more: whatever comes is the end.
Connection::Task<> Connection::watchForEnd() {
    ErrorCode error;
    co_await stream_->read(asio::buffer(chunk_), error);
    hasEnded_ = true;
    wake();
}

} // namespace navrel
