#pragma once

#include <QByteArray>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace navrel {

/// A server on a Unix socket that is no editor, whatever its socket is called.
class FakeServer {
public:
    /// What happens to a connection; it is closed afterwards. On a thread of the server's, which
    /// `isEnding` asks to come to an end.
    using Conversation = std::function<void(int connection, const std::atomic<bool>& isEnding)>;

    FakeServer(const QByteArray& path, Conversation conversation);
    ~FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;

    /// How many connections there were.
    int connections() const { return connections_; }

private:
    void serve();

    const Conversation conversation_;
    int listener_ = -1;
    std::atomic<int> connections_ = 0;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

/// Leaves a socket behind on which nobody listens.
void leaveStaleSocket(const QByteArray& path);

} // namespace navrel
