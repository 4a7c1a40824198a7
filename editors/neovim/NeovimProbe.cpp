#include "editors/neovim/NeovimProbe.h"

#include "editors/Deadlines.h"
#include "editors/neovim/NeovimConnection.h"

#include <QVariantMap>

#include <algorithm>
#include <poll.h>
#include <utility>

namespace navrel {

namespace {

using Reply = NeovimConnection::Reply;

NeovimState stateFrom(const Reply& mode) {
    if (mode.kind != Reply::Kind::Result || mode.value.typeId() != QMetaType::QVariantMap) {
        return NeovimState::NoNeovim;
    }
    const QVariant blocking = mode.value.toMap().value(QStringLiteral("blocking"));
    return blocking == false ? NeovimState::Ready : NeovimState::WaitsForAKey;
}

/// Connects to a server and asks what it answers even in the middle of a command.
ProbedNeovim asked(const QByteArray& socket) {
    bool isOverdue = false;
    ProbedNeovim server{socket, NeovimState::Unknown, NeovimConnection::open(socket, isOverdue), 0};
    if (server.connection == nullptr) {
        server.state = isOverdue ? NeovimState::Silent : NeovimState::Gone;
        return server;
    }
    server.question = server.connection->begin("nvim_get_mode", {});
    if (server.question == 0) {
        server.state = NeovimState::NoNeovim;
    }
    return server;
}

bool isUnknown(const ProbedNeovim& server) {
    return server.state == NeovimState::Unknown;
}

bool isReady(const ProbedNeovim& server) {
    return server.state == NeovimState::Ready;
}

/// Waits until one of the servers that have not answered says something.
void waitForAny(const std::vector<ProbedNeovim>& servers, const QDeadlineTimer& deadline) {
    std::vector<pollfd> waited;
    for (const ProbedNeovim& server : servers) {
        if (isUnknown(server)) {
            waited.push_back({server.connection->descriptor(), POLLIN, 0});
        }
    }
    ::poll(waited.data(), waited.size(), static_cast<int>(deadline.remainingTime()));
}

} // namespace

void ProbedNeovim::look() {
    if (const auto reply = connection->replyTo(question)) {
        state = stateFrom(*reply);
    }
}

std::vector<ProbedNeovim> probeNeovims(const QByteArrayList& sockets,
                                       const QDeadlineTimer& deadline,
                                       std::chrono::milliseconds grace) {
    std::vector<ProbedNeovim> servers;
    for (const QByteArray& socket : sockets) {
        if (servers.size() == kMaximumNeovims || (deadline.hasExpired() && !servers.empty())) {
            break;
        }
        ProbedNeovim server = asked(socket);
        if (server.state != NeovimState::Gone) {
            servers.push_back(std::move(server));
        }
    }
    QDeadlineTimer end = deadline;
    bool isGraceCounted = false;
    while (true) {
        for (ProbedNeovim& server : servers) {
            if (isUnknown(server)) {
                server.look();
            }
        }
        const auto ready = std::find_if(servers.begin(), servers.end(), isReady);
        if (ready != servers.end() && !isGraceCounted) {
            end = earlierOf(deadline, grace);
            isGraceCounted = true;
        }
        const bool isDecided = std::none_of(servers.begin(), ready, isUnknown);
        if (isDecided || end.hasExpired()) {
            for (auto before = servers.begin(); before != ready; ++before) {
                before->state = isUnknown(*before) ? NeovimState::Silent : before->state;
            }
            return servers;
        }
        waitForAny(servers, end);
    }
}

} // namespace navrel
