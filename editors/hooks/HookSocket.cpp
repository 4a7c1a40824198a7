#include "editors/hooks/HookSocket.h"

#include "editors/StoppedPeer.h"
#include "project/EditorRefusal.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/sockets/UnixPeer.h"

#include <QLocalSocket>
#include <QTimer>

#include <algorithm>
#include <map>
#include <sys/stat.h>
#include <utility>

namespace navrel {

namespace {

/// So many lines of one plug-in are read before the others, and the program, have their turn.
constexpr int kLinesAtATime = 32;
/// A plug-in that does not read what it is sent is of no use.
constexpr qint64 kMaximumUnsent = 256 * 1024;

/// Whether a file lies in a folder, by its path.
bool holds(const QString& folder, const QString& file) {
    return !folder.isEmpty() && file.startsWith(folder) &&
           (folder.endsWith(QLatin1Char('/')) || file.mid(folder.size()).startsWith(u'/'));
}

bool isAtLine(const std::optional<EditorPlace>& place, const EditorPlace& wanted) {
    return place && place->path == wanted.path && place->line == wanted.line;
}

} // namespace

/// What a window was asked for and has not answered.
struct HookSocket::Request {
    Reply reply;
    std::optional<EditorPlace> place; ///< where it leads; nothing for a step back
};

/// One window of an editor.
struct HookSocket::Connection {
    std::unique_ptr<QLocalSocket> socket;
    QString editor;
    QStringList folders;
    std::map<qint64, Request> requests;
    /// The jobs for this connection end with it. The socket lives a little longer.
    std::unique_ptr<QObject> lifetime = std::make_unique<QObject>();
    bool isSilent = false; // since a request that waited for too long

    /// What has not said hello yet may be no editor.
    bool takesRequests() const { return !editor.isEmpty() && !isSilent; }
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
    NAVREL_ASSERT_MAIN_THREAD();
    while (QLocalSocket* const socket = server_.nextPendingConnection()) {
        socket->setParent(nullptr);
        auto connection = std::make_unique<Connection>();
        connection->socket.reset(socket);
        if (connections_.size() >= kMaximumEditors ||
            !isPeerThisUser(static_cast<int>(socket->socketDescriptor()))) {
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
    NAVREL_ASSERT_MAIN_THREAD();
    QLocalSocket& socket = *connection.socket;
    for (int lines = 0; socket.canReadLine(); ++lines) {
        if (lines == kLinesAtATime) {
            QTimer::singleShot(0, connection.lifetime.get(),
                               [this, &connection] { read(connection); });
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
    connection.isSilent = false;
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
        answer(connection, message.request,
               {EditorOutcome::Kind::opened, connection.editor, {}, {}});
        break;
    case HookMessage::Kind::Refused:
        answer(connection, message.request,
               outcomeOf(EditorRefusal::saysWhy, connection.editor, message.reason));
        break;
    case HookMessage::Kind::Other:
        break;
    }
}

void HookSocket::answer(Connection& connection, qint64 request, const EditorOutcome& outcome) {
    const auto found = connection.requests.find(request);
    if (found == connection.requests.end()) {
        return;
    }
    const Request answered = std::move(found->second);
    connection.requests.erase(found);
    const bool isFront = connections_.front().get() == &connection;
    if (outcome.isOpen() && isFront && answered.place && !isAtLine(latest_, *answered.place)) {
        // The plug-in will say so, at most ten times a second. A jump from there may be sooner;
        // what it said last may be of a moment before this one.
        latest_ = answered.place;
        latest_->column = std::max(1, latest_->column);
    }
    answered.reply(outcome);
}

/// Lets a window go. Its socket may be the one that is calling: it is destroyed later.
void HookSocket::disconnect(Connection& connection) {
    NAVREL_ASSERT_MAIN_THREAD();
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
    for (const auto& [number, request] : gone->requests) {
        request.reply(outcomeOf(EditorRefusal::windowCloses, gone->editor));
    }
}

QString HookSocket::latestEditor() const {
    return connections_.empty() ? QString() : connections_.front()->editor;
}

bool HookSocket::isLatestEditorStopped() const {
    return !connections_.empty() &&
           isPeerStopped(static_cast<int>(connections_.front()->socket->socketDescriptor()));
}

/// The window that spoke last, of those that take requests.
HookSocket::Connection* HookSocket::latestWindow() const {
    const auto found =
        std::find_if(connections_.begin(), connections_.end(),
                     [](const auto& connection) { return connection->takesRequests(); });
    return found == connections_.end() ? nullptr : found->get();
}

HookSocket::Connection* HookSocket::windowFor(const QByteArray& path) const {
    const QString file = QString::fromUtf8(path);
    const auto holdsFile = [&file](const auto& connection) {
        const QStringList& folders = connection->folders;
        return connection->takesRequests() &&
               std::any_of(folders.begin(), folders.end(),
                           [&file](const QString& folder) { return holds(folder, file); });
    };
    const auto found = std::find_if(connections_.begin(), connections_.end(), holdsFile);
    return found == connections_.end() ? latestWindow() : found->get();
}

qint64 HookSocket::open(const EditorPlace& place, Reply reply) {
    NAVREL_ASSERT_MAIN_THREAD();
    return send(windowFor(place.path), [&](qint64 request) { return hookOpenLine(place, request); },
                {std::move(reply), place});
}

qint64 HookSocket::goBack(Reply reply) {
    NAVREL_ASSERT_MAIN_THREAD();
    return send(latestWindow(), hookBackLine, {std::move(reply), {}});
}

qint64 HookSocket::send(Connection* window, const std::function<QByteArray(qint64)>& line,
                        Request request) {
    if (window == nullptr) {
        return 0;
    }
    if (window->socket->bytesToWrite() > kMaximumUnsent) {
        disconnect(*window);
        return 0;
    }
    const qint64 number = ++lastRequest_;
    window->requests.emplace(number, std::move(request));
    window->socket->write(line(number));
    window->socket->flush();
    return number;
}

void HookSocket::giveUpOn(qint64 request) {
    for (const auto& connection : connections_) {
        connection->isSilent = connection->isSilent || connection->requests.count(request) > 0;
    }
}

} // namespace navrel
