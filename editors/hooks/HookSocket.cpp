#include "editors/hooks/HookSocket.h"

#include "support/Log.h"

#include <QLocalSocket>
#include <QTimer>

#include <algorithm>
#include <map>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

/// After so many lines of one plug-in the others, and the program, have their turn.
constexpr int kLinesAtATime = 32;
/// A plug-in that does not read what it is sent is of no use.
constexpr qint64 kMaximumUnsent = 256 * 1024;

bool isThisUser(const QLocalSocket& socket) {
    const auto descriptor = static_cast<int>(socket.socketDescriptor());
#ifdef SO_PEERCRED
    ucred peer = {};
    socklen_t length = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           peer.uid == ::geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(descriptor, &user, &group) == 0 && user == ::geteuid();
#endif
}

/// Whether a file lies in a folder, by its path.
bool holds(const QString& folder, const QString& file) {
    return !folder.isEmpty() && file.startsWith(folder) &&
           (folder.endsWith(QLatin1Char('/')) || file.mid(folder.size()).startsWith(u'/'));
}

} // namespace

/// One window of an editor.
struct HookSocket::Connection {
    std::unique_ptr<QLocalSocket> socket;
    QString editor;
    QStringList folders;
    std::map<qint64, Reply> requests; // that it has not answered
};

std::optional<QString> HookSocket::standardPath() {
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? std::nullopt
                            : std::optional(folder + QStringLiteral("/nl.kelvane.Navrel.editor"));
}

HookSocket::HookSocket(const QString& path) {
    server_.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { accept(); });
    QLocalSocket other;
    other.connectToServer(path);
    const bool isTaken = other.state() == QLocalSocket::ConnectedState;
    if (!isTaken) {
        QLocalServer::removeServer(path); // one that a program left behind
    }
    if (isTaken || !server_.listen(path)) {
        log(QStringLiteral("Editors' plug-ins cannot connect: %1")
                .arg(isTaken ? QStringLiteral("another program has the socket")
                             : server_.errorString()));
        return;
    }
    ::chmod(path.toUtf8().constData(), S_IRUSR | S_IWUSR);
}

HookSocket::~HookSocket() {
    observer_ = nullptr;
    while (!connections_.empty()) {
        disconnect(*connections_.back());
    }
}

void HookSocket::accept() {
    while (QLocalSocket* const socket = server_.nextPendingConnection()) {
        socket->setParent(nullptr);
        auto connection = std::make_unique<Connection>();
        connection->socket.reset(socket);
        if (connections_.size() >= kMaximumEditors || !isThisUser(*socket)) {
            continue; // which closes it
        }
        socket->setReadBufferSize(kMaximumHookLine + 1);
        Connection* const which = connection.get();
        connections_.push_back(std::move(connection));
        QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, which] { read(*which); });
        QObject::connect(socket, &QLocalSocket::disconnected, socket,
                         [this, which] { disconnect(*which); });
        read(*which);
    }
}

void HookSocket::read(Connection& connection) {
    QLocalSocket& socket = *connection.socket;
    for (int lines = 0; socket.canReadLine(); ++lines) {
        if (lines == kLinesAtATime) {
            QTimer::singleShot(0, &socket, [this, &connection] { read(connection); });
            return;
        }
        const auto message = hookMessageFrom(socket.readLine());
        if (!message) {
            disconnect(connection);
            return;
        }
        hear(connection, *message);
    }
    if (socket.bytesAvailable() > kMaximumHookLine) {
        disconnect(connection);
    }
}

void HookSocket::hear(Connection& connection, const HookMessage& message) {
    switch (message.kind) {
    case HookMessage::Kind::Hello:
        connection.editor = message.editor;
        connection.folders = message.folders;
        break;
    case HookMessage::Kind::Active: {
        const auto isThis = [&](const auto& other) { return other.get() == &connection; };
        const auto found = std::find_if(connections_.begin(), connections_.end(), isThis);
        std::rotate(connections_.begin(), found, found + 1);
        latest_ = message.place;
        if (observer_ != nullptr) {
            observer_(message.place);
        }
        break;
    }
    case HookMessage::Kind::Opened:
        answer(connection, message.request, {true, connection.editor, {}});
        break;
    case HookMessage::Kind::Refused:
        answer(connection, message.request, {false, connection.editor, message.reason});
        break;
    case HookMessage::Kind::Other:
        break;
    }
}

void HookSocket::answer(Connection& connection, qint64 request, const Outcome& outcome) {
    const auto found = connection.requests.find(request);
    if (found != connection.requests.end()) {
        const Reply reply = std::move(found->second);
        connection.requests.erase(found);
        reply(outcome);
    }
}

/// Lets a window go. Its socket may be the one that is calling: it is destroyed later.
void HookSocket::disconnect(Connection& connection) {
    const auto isThis = [&](const auto& other) { return other.get() == &connection; };
    const auto found = std::find_if(connections_.begin(), connections_.end(), isThis);
    if (found == connections_.end()) {
        return;
    }
    const auto gone = std::move(*found);
    const bool wasFirst = found == connections_.begin();
    connections_.erase(found);
    gone->socket->QObject::disconnect();
    gone->socket->abort();
    gone->socket.release()->deleteLater();
    if (wasFirst || connections_.empty()) {
        latest_.reset();
    }
    for (const auto& [request, reply] : gone->requests) {
        reply({false, gone->editor, QStringLiteral("The editor's window was closed.")});
    }
}

HookSocket::Connection* HookSocket::windowFor(const QByteArray& path) const {
    const QString file = QString::fromUtf8(path);
    const auto holdsFile = [&file](const auto& connection) {
        const QStringList& folders = connection->folders;
        return std::any_of(folders.begin(), folders.end(),
                           [&file](const QString& folder) { return holds(folder, file); });
    };
    const auto saidHello = [](const auto& connection) { return !connection->editor.isEmpty(); };
    auto found = std::find_if(connections_.begin(), connections_.end(), holdsFile);
    if (found == connections_.end()) {
        found = std::find_if(connections_.begin(), connections_.end(), saidHello);
    }
    return found == connections_.end() ? nullptr : found->get();
}

bool HookSocket::open(const EditorPlace& place, Reply reply) {
    Connection* const window = windowFor(place.path);
    if (window == nullptr) {
        return false;
    }
    if (window->socket->bytesToWrite() > kMaximumUnsent) {
        disconnect(*window);
        return false;
    }
    const qint64 request = ++lastRequest_;
    window->requests.emplace(request, std::move(reply));
    window->socket->write(hookOpenLine(place, request));
    window->socket->flush();
    return true;
}

} // namespace navrel
