#pragma once

#include <QByteArray>
#include <QVariant>

#include <atomic>
#include <functional>
#include <memory>
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

/// A server that answers the questions for the active file as Neovim does, or is busy with its
/// person.
class FakeNeovim {
public:
    enum class Mood {
        Answers,
        WaitsForAKey, ///< half a command was typed, or a prompt is open
        WaitsSoon,    ///< the same, but not yet when it is asked first
        Refuses,      ///< every script fails
        Silent,       ///< stopped: connections are taken by the system, and nothing comes back
    };

    FakeNeovim(const QByteArray& path, QByteArray file, Mood mood = Mood::Answers);
    ~FakeNeovim();

    void setMood(Mood mood) { mood_ = mood; }
    int connections() const { return server_->connections(); }

private:
    void converse(int connection, const std::atomic<bool>& isEnding);
    QByteArray replyTo(const QVariantList& request);

    const QByteArray path_;
    const QByteArray file_;
    std::atomic<Mood> mood_;
    std::atomic<int> modesTold_ = 0;
    std::unique_ptr<FakeServer> server_;
};

/// Dates a socket so many seconds back: those that are made one after another may bear one date.
void makeOlder(const QByteArray& path, int seconds);

/// Leaves a socket behind on which nobody listens.
void leaveStaleSocket(const QByteArray& path);

} // namespace navrel
