#include "editors/neovim/NeovimEditor.h"

#include "editors/Deadlines.h"
#include "editors/StoppedPeer.h"
#include "editors/neovim/NeovimConnection.h"
#include "editors/neovim/NeovimFollower.h"
#include "editors/neovim/NeovimScripts.h"
#include "editors/neovim/NeovimServers.h"
#include "project/EditorRefusal.h"
#include "support/core/Log.h"

#include <QVariantMap>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <poll.h>
#include <thread>
#include <utility>

namespace navrel {

namespace {

using Reply = NeovimConnection::Reply;

/// The keys that leave a mode are read by the editor's own loop, soon after the script that gave
/// them.
constexpr std::chrono::milliseconds kReadinessPause{5};
/// An editor that runs answers in a few milliseconds; the next kind is worth trying after this.
constexpr std::chrono::milliseconds kFirstAnswerAtMost{1000};
/// While a newer one keeps silent, a file waits this long before it is opened in the next that
/// answers: the user looks at the screen meanwhile.
constexpr std::chrono::milliseconds kOpeningGrace{200};

Reply runScript(NeovimConnection& editor, const char* script, const QVariantList& arguments,
                const QDeadlineTimer& deadline) {
    return editor.call("nvim_exec_lua", {QByteArray(script), QVariant(arguments)}, deadline);
}

/// Asks what an editor answers even in the middle of a command: any other question would wait for
/// the user's next key. Nothing when it does not answer.
std::optional<bool> waitsForAKey(NeovimConnection& editor, const QDeadlineTimer& deadline) {
    const Reply mode = editor.call("nvim_get_mode", {}, deadline);
    if (mode.kind != Reply::Kind::Result || mode.value.typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    return mode.value.toMap().value(QStringLiteral("blocking")) != false;
}

/// The reply to a request that was begun; nothing where it has not come by the deadline.
std::optional<Reply> replyBefore(const QDeadlineTimer& deadline, NeovimConnection& editor,
                                 qint64 request) {
    while (true) {
        if (auto reply = editor.replyTo(request)) {
            return reply;
        }
        if (deadline.hasExpired()) {
            return std::nullopt;
        }
        pollfd waited = {editor.descriptor(), POLLIN, 0};
        ::poll(&waited, 1, static_cast<int>(deadline.remainingTime()));
    }
}

/// Whether an operator waits for its motion: to leave that mode would end what the user began.
bool isHalfACommand(NeovimConnection& editor, const QDeadlineTimer& deadline) {
    const Reply mode = editor.call("nvim_get_mode", {}, deadline);
    return mode.kind == Reply::Kind::Result &&
           mode.value.toMap().value(QStringLiteral("mode")).toByteArray().startsWith("no");
}

/// What keeps the editor from opening a file.
struct Obstacle {
    EditorRefusal refusal{};
    QString words; ///< as the log has it

    EditorOutcome outcome() const { return outcomeOf(refusal, QStringLiteral("Neovim"), words); }
};

const QString kNoAnswer = QStringLiteral("no answer");

Obstacle waitingForAKey() {
    return {EditorRefusal::waitsForAKey, QStringLiteral("it waits for a key")};
}

/// Why a call did not succeed.
Obstacle failureOf(const Reply& reply) {
    if (reply.kind == Reply::Kind::None) {
        return {EditorRefusal::answersLate, kNoAnswer};
    }
    const QVariantList error = reply.value.toList(); // [kind, text]
    return {EditorRefusal::saysWhy,
            QString::fromUtf8(error.isEmpty() ? QByteArray() : error.last().toByteArray())};
}

/// Brings the editor to where a file can be opened, from any mode. What kept it from that; nothing
/// when it is there.
std::optional<Obstacle> leaveMode(NeovimConnection& editor, const QDeadlineTimer& deadline) {
    bool keysGiven = false;
    Obstacle obstacle{EditorRefusal::doesNotAnswer, kNoAnswer};
    while (!deadline.hasExpired()) {
        const auto waits = waitsForAKey(editor, deadline);
        if (!waits) {
            break;
        }
        if (*waits) {
            obstacle = waitingForAKey();
        } else {
            const Reply ready = runScript(editor, kNeovimIsReadyScript, {}, deadline);
            if (ready.kind != Reply::Kind::Result) {
                return failureOf(ready);
            }
            if (ready.value == true) {
                return std::nullopt;
            }
            obstacle = {EditorRefusal::staysInItsMode, QStringLiteral("it stays in its mode")};
            if (!keysGiven) {
                runScript(editor, kNeovimLeaveModeScript, {}, deadline);
                keysGiven = true;
            }
        }
        std::this_thread::sleep_for(kReadinessPause);
    }
    return obstacle;
}

/// Where the user is; nil when the editor does not say.
std::optional<EditorPlace> placeIn(NeovimConnection& editor, const QDeadlineTimer& deadline) {
    static const QByteArray script = QByteArray(kNeovimPlaceFunction) + kNeovimPlaceScript;
    const Reply reply = runScript(editor, script.constData(), {}, deadline);
    return neovimPlaceFrom(reply.value.toList());
}

/// Opens a file and selects a line, or goes to a column of it (0 for none). What kept the editor
/// from that; nothing when it did.
std::optional<Obstacle> openIn(NeovimConnection& editor, const QByteArray& path,
                               std::optional<int> line, int column,
                               const QDeadlineTimer& deadline) {
    if (auto obstacle = leaveMode(editor, deadline)) {
        return obstacle;
    }
    // An argument that is left out is nil there; a nil that is sent is not, and counts as true.
    QVariantList arguments{path};
    if (line) {
        arguments.append(*line);
    }
    if (line && column > 0) {
        arguments.append(column);
    }
    const Reply opened = runScript(editor, kNeovimOpenScript, arguments, deadline);
    return opened.kind == Reply::Kind::Result ? std::nullopt : std::optional(failureOf(opened));
}

JumpResult jumpIn(NeovimConnection& editor, const EditorPlace& place,
                  std::chrono::milliseconds leaveModeAtMost, const QDeadlineTimer& deadline) {
    JumpResult result;
    if (isHalfACommand(editor, deadline)) {
        return {waitingForAKey().outcome(), {}};
    }
    if (const auto obstacle = leaveMode(editor, earlierOf(deadline, leaveModeAtMost))) {
        return {obstacle->outcome(), {}};
    }
    result.before = placeIn(editor, deadline);
    const auto line = place.line > 0 ? std::optional(place.line) : std::nullopt;
    if (const auto obstacle = openIn(editor, place.path, line, place.column, deadline)) {
        return {obstacle->outcome(), {}};
    }
    result.outcome = {EditorOutcome::Kind::opened, QStringLiteral("Neovim"), {}, {}};
    return result;
}

} // namespace

NeovimEditor::NeovimEditor(std::chrono::milliseconds leftAloneFor,
                           std::chrono::milliseconds leaveModeAtMost)
    : leaveModeAtMost_(leaveModeAtMost), silent_(leftAloneFor),
      answers_(answerStandsFor(leftAloneFor)) {}

NeovimEditor::~NeovimEditor() = default;

/// Where a Neovim may listen. A search that had too little time keeps what the one before it found:
/// an editor is not gone because the machine is busy.
QByteArrayList NeovimEditor::servers(const QDeadlineTimer& deadline) {
    bool isWhole = false;
    QByteArrayList sockets = neovimServerSockets(deadline, &isWhole);
    if (isWhole) {
        known_ = sockets;
        return sockets;
    }
    for (const QByteArray& socket : known_) {
        if (!sockets.contains(socket)) {
            sockets.append(socket);
        }
    }
    return sockets;
}

std::optional<ActiveFile> NeovimEditor::activeFile(const QDeadlineTimer& deadline) {
    const QByteArrayList sockets = servers(shareOf(deadline, 2));
    answers_.forgetAllBut(sockets);
    std::vector<ProbedNeovim> asked = takeLateAnswers(sockets);
    // Looked up once: the time of one that is left alone may end while the others are asked.
    QByteArrayList probed = silent_.without(sockets);
    for (const ProbedNeovim& awake : asked) {
        probed.removeOne(awake.socket);
    }
    auto answering =
        probeNeovims(probed, deadline, std::chrono::milliseconds(deadline.remainingTime()) / 2);
    std::move(answering.begin(), answering.end(), std::back_inserter(asked));
    std::optional<ActiveFile> lastKnown;
    for (const QByteArray& socket : sockets) {
        const auto server = std::find_if(asked.begin(), asked.end(),
                                         [&](const auto& each) { return each.socket == socket; });
        if (server != asked.end()) {
            learnFrom(*server, deadline);
        } else if (probed.contains(socket)) {
            answers_.forget(socket);
        }
        const auto file = answers_.of(socket);
        if (file && file->isCurrent) {
            shown_ = socket;
            return file;
        }
        if (file && !lastKnown) {
            lastKnown = file;
            shown_ = socket;
        }
    }
    return lastKnown;
}

/// By the connections that stand anyway: to servers that are left alone, and to those followed.
bool NeovimEditor::isSuspended() const {
    const bool isFollowing = follower_ && !follower_->lastServer().isEmpty();
    const QByteArray& server = isFollowing ? follower_->lastServer() : shown_;
    int descriptor = follower_ ? follower_->descriptorOf(server) : -1;
    const auto late = late_.find(server);
    if (descriptor < 0 && late != late_.end() && late->second.server.connection != nullptr) {
        descriptor = late->second.server.connection->descriptor();
    }
    return descriptor >= 0 && isPeerStopped(descriptor);
}

/// Servers that were left alone and have answered since, which may be asked again. One that is
/// ready is not asked for that a second time: where the machine is slow, it would be late each
/// time.
std::vector<ProbedNeovim> NeovimEditor::takeLateAnswers(const QByteArrayList& sockets) {
    std::vector<ProbedNeovim> awake;
    for (auto late = late_.begin(); late != late_.end();) {
        if (hasAnswered(late->second)) {
            silent_.remove(late->first);
            if (late->second.fileQuestion == 0 && sockets.contains(late->first)) {
                awake.push_back(std::move(late->second.server));
            }
        }
        const bool isWaitedFor = silent_.contains(late->first) && sockets.contains(late->first);
        late = isWaitedFor ? std::next(late) : late_.erase(late);
    }
    return awake;
}

/// Takes what a server has said since it was left alone.
bool NeovimEditor::hasAnswered(LateNeovim& late) {
    if (late.fileQuestion == 0) {
        late.server.look();
        return late.server.state != NeovimState::Silent;
    }
    const auto file = late.server.connection->replyTo(late.fileQuestion);
    if (file) {
        learnFile(late.server.socket, *file);
    }
    return file.has_value();
}

/// Keeps what a server that was asked shows. One that is busy or silent stands by its last answer;
/// one that is no Neovim has none.
void NeovimEditor::learnFrom(ProbedNeovim& server, const QDeadlineTimer& deadline) {
    switch (server.state) {
    case NeovimState::Ready:
        askForFile(server, deadline);
        break;
    case NeovimState::Silent:
        leaveAlone(server);
        break;
    case NeovimState::NoNeovim:
        silent_.add(server.socket);
        answers_.forget(server.socket);
        break;
    case NeovimState::WaitsForAKey:
    case NeovimState::Unknown:
    case NeovimState::Gone:
        break;
    }
}

void NeovimEditor::askForFile(ProbedNeovim& server, const QDeadlineTimer& deadline) {
    static const QByteArray script = QByteArray(kNeovimPlaceFunction) + kNeovimActiveFileScript;
    const qint64 question =
        server.connection->begin("nvim_exec_lua", {script, QVariant(QVariantList())});
    const auto file = question != 0 ? replyBefore(deadline, *server.connection, question) : Reply();
    if (file) {
        learnFile(server.socket, *file);
    } else {
        leaveAlone(server, question);
    }
}

/// A connection that broke has no answer, and neither has a Neovim that fails.
void NeovimEditor::learnFile(const QByteArray& socket, const Reply& file) {
    if (file.kind == Reply::Kind::Result && file.value.typeId() == QMetaType::QByteArray) {
        answers_.add(socket, file.value.toByteArray());
        return;
    }
    if (file.kind == Reply::Kind::None) {
        silent_.add(socket);
    }
    answers_.forget(socket);
}

void NeovimEditor::leaveAlone(ProbedNeovim& server, qint64 fileQuestion) {
    const QByteArray socket = server.socket;
    silent_.add(socket);
    if (server.connection != nullptr) {
        server.state = NeovimState::Silent;
        late_.insert_or_assign(socket, LateNeovim{std::move(server), fileQuestion});
    }
}

/// Gives the first server that can be talked to, of those that are not known to be silent, or else
/// of these, to `use`. False when there is none.
template <typename Use>
bool NeovimEditor::useFirst(const QDeadlineTimer& search, Use use) {
    const QByteArrayList sockets = neovimServerSockets(search);
    const QByteArrayList answering = silent_.without(sockets);
    return useFirstOf(answering, search, use) || useFirstOf(silent_.only(sockets), search, use);
}

/// `use` says whether it has done with the server, which is Ready or WaitsForAKey.
template <typename Use>
bool NeovimEditor::useFirstOf(const QByteArrayList& sockets, const QDeadlineTimer& search,
                              Use use) {
    const QDeadlineTimer soon = earlierOf(search, kFirstAnswerAtMost);
    for (ProbedNeovim& server : probeNeovims(sockets, soon, kOpeningGrace)) {
        if (server.state == NeovimState::Silent) {
            silent_.add(server.socket);
        }
        const bool answers =
            server.state == NeovimState::Ready || server.state == NeovimState::WaitsForAKey;
        if (answers && use(server)) {
            return true;
        }
    }
    return false;
}

bool NeovimEditor::open(const QByteArray& path, std::optional<int> line,
                        const QDeadlineTimer& deadline) {
    // The other half is for opening, or for an editor of another kind.
    return useFirst(shareOf(deadline, 2), [&](ProbedNeovim& server) {
        if (server.state != NeovimState::Ready) {
            return false;
        }
        if (const auto obstacle = openIn(*server.connection, path, line, 0, deadline)) {
            log(QStringLiteral("Neovim did not open %1: %2")
                    .arg(QString::fromUtf8(path), obstacle->words));
        }
        return true;
    });
}

JumpResult NeovimEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    JumpResult result;
    useFirst(shareOf(deadline, 2), [&](ProbedNeovim& server) {
        if (server.state == NeovimState::WaitsForAKey) {
            // Another one may be ready; if none is, this is what the user should know.
            result.outcome = waitingForAKey().outcome();
            return false;
        }
        result = jumpIn(*server.connection, place, leaveModeAtMost_, deadline);
        return true;
    });
    return result;
}

void NeovimEditor::follow(PlaceObserver observer) {
    follower_ =
        observer == nullptr ? nullptr : std::make_unique<NeovimFollower>(std::move(observer));
}

} // namespace navrel
