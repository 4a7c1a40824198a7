#include "editors/neovim/NeovimFollower.h"

#include "editors/neovim/NeovimConnection.h"
#include "editors/neovim/NeovimProbe.h"
#include "editors/neovim/NeovimScripts.h"
#include "editors/neovim/NeovimServers.h"
#include "support/core/MainThread.h"

#include <QSocketNotifier>

#include <atomic>
#include <chrono>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

/// How soon an editor that was started is listened to.
constexpr std::chrono::milliseconds kSearchInterval{1000};
/// The folders of sockets are looked through for no longer.
constexpr std::chrono::milliseconds kSearchAtMost{50};

constexpr qint64 kNotification = 2;

/// By which the editor finds the way back to us: another one for each connection.
QByteArray clientName() {
    static std::atomic<int> count = 0;
    return "navrel-" + QByteArray::number(::getpid()) + '-' + QByteArray::number(++count);
}

} // namespace

std::optional<EditorPlace> neovimPlaceFrom(const QVariantList& values) {
    constexpr qsizetype kValues = 4;
    if (values.size() != kValues || values[0].typeId() != QMetaType::QByteArray) {
        return std::nullopt;
    }
    return EditorPlace{values[0].toByteArray(), values[1].toInt(), values[2].toInt(),
                       values[3].toBool()};
}

struct NeovimFollower::Followed {
    std::unique_ptr<NeovimConnection> connection;
    std::unique_ptr<QSocketNotifier> notifier; // after the connection: it watches its descriptor
    RunningEditor::PlaceNews next = RunningEditor::PlaceNews::cameThere;
};

NeovimFollower::NeovimFollower(RunningEditor::PlaceObserver observer)
    : observer_(std::move(observer)) {
    // An editor that is found later was just started, and its user is in it.
    QObject::connect(&search_, &QTimer::timeout, &search_,
                     [this] { lookForServers(RunningEditor::PlaceNews::cameThere); });
    search_.start(kSearchInterval);
    lookForServers(RunningEditor::PlaceNews::isThere);
}

NeovimFollower::~NeovimFollower() = default;

void NeovimFollower::lookForServers(RunningEditor::PlaceNews firstNews) {
    NAVREL_ASSERT_MAIN_THREAD();
    for (const QByteArray& socket : neovimServerSockets(QDeadlineTimer(kSearchAtMost))) {
        if (servers_.size() >= kMaximumNeovims) {
            return;
        }
        if (servers_.contains(socket)) {
            continue;
        }
        if (auto server = begun(socket)) {
            server->next = firstNews;
            servers_.emplace(socket, std::move(server));
        }
    }
}

/// Connects to a server and asks it to tell; null where nobody listens. Its replies do not matter:
/// one that cannot, or is no Neovim, tells nothing.
std::unique_ptr<NeovimFollower::Followed> NeovimFollower::begun(const QByteArray& socket) {
    bool isOverdue = false;
    auto connection = NeovimConnection::open(socket, isOverdue);
    if (connection == nullptr) {
        return nullptr;
    }
    const QByteArray name = clientName();
    const QByteArray script = QByteArray(kNeovimPlaceFunction) + kNeovimFollowScript;
    connection->begin("nvim_set_client_info", {name, QVariantMap(), QByteArrayLiteral("remote"),
                                               QVariantMap(), QVariantMap()});
    connection->begin("nvim_exec_lua", {script, QVariant(QVariantList{name})});
    auto notifier =
        std::make_unique<QSocketNotifier>(connection->descriptor(), QSocketNotifier::Read);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, &search_,
                     [this, socket] { hear(socket); });
    // Clang 14 makes no aggregate of arguments in parentheses.
    return std::make_unique<Followed>(Followed{std::move(connection), std::move(notifier)});
}

int NeovimFollower::descriptorOf(const QByteArray& socket) const {
    const auto found = servers_.find(socket);
    return found == servers_.end() ? -1 : found->second->connection->descriptor();
}

/// Takes what a server has sent. One that is gone, or sends what is no message, is let go; where it
/// still listens it is tried again later.
void NeovimFollower::hear(const QByteArray& socket) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto found = servers_.find(socket);
    if (found == servers_.end()) {
        return;
    }
    bool isBroken = false;
    std::optional<EditorPlace> latest;
    auto news = found->second->next;
    while (const auto message = found->second->connection->nextMessage(isBroken)) {
        constexpr qsizetype kFields = 3;
        const bool isMove = message->size() == kFields && message->at(0) == kNotification &&
                            message->at(1) == QByteArray("navrel_moved");
        if (isMove) {
            news = latest ? RunningEditor::PlaceNews::cameThere : news;
            latest = neovimPlaceFrom(message->at(2).toList());
            found->second->next = RunningEditor::PlaceNews::cameThere;
        }
    }
    if (isBroken) {
        // Not at once: this is called by the notifier itself.
        auto gone = std::move(found->second);
        servers_.erase(found);
        gone->notifier->setEnabled(false);
        gone->notifier.release()->deleteLater();
    }
    // Where several run from the beginning, one of them is shown until the user moves.
    const bool isSecondary = news == RunningEditor::PlaceNews::isThere && hasReported_;
    if (latest && !isSecondary) {
        hasReported_ = true;
        lastServer_ = socket;
        observer_(*latest, news);
    }
}

} // namespace navrel
