#pragma once

#include <QByteArray>
#include <QUrl>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace navrel {

/// A web server on a free port of the loopback address, with a thread of its own: it answers while
/// the test's thread waits. Each connection is one request.
class TestWebServer {
public:
    /// What is done with the connection of a request; it is closed afterwards.
    using Answer = std::function<void(int connection, const TestWebServer& server)>;

    explicit TestWebServer(Answer answer);
    /// Answers every request with this text.
    static Answer text(const QByteArray& body, const QByteArray& status = "200 OK");
    static Answer redirection(const QByteArray& location);
    /// The bytes as they are, headers included.
    static Answer raw(const QByteArray& bytes);
    /// Accepts, and says nothing until the server ends.
    static Answer stall();
    ~TestWebServer();
    TestWebServer(const TestWebServer&) = delete;
    TestWebServer& operator=(const TestWebServer&) = delete;

    QUrl url(const QByteArray& path = QByteArray()) const;
    bool isEnding() const { return isEnding_; }
    /// The request lines so far: "GET /path HTTP/1.1".
    std::vector<std::string> requests() const;

    /// Sends everything, unless the peer goes. False then.
    static bool send(int connection, QByteArrayView bytes);

private:
    void serve();

    Answer answer_;
    int listener_ = -1;
    quint16 port_ = 0;
    std::atomic<bool> isEnding_ = false;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_; ///< guarded by mutex_
    std::thread thread_;
};

} // namespace navrel
