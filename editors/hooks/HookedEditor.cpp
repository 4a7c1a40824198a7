#include "editors/hooks/HookedEditor.h"

#include "editors/hooks/HookSocket.h"
#include "support/Log.h"
#include "support/dispatch/DispatchQueue.h"

#include <chrono>
#include <future>
#include <mutex>
#include <utility>

namespace navrel {

namespace {

/// A plug-in answers in a few milliseconds; another kind of editor is worth trying after this.
constexpr std::chrono::milliseconds kAnswerAtMost{2000};

/// What a request to the socket came to.
struct Sent {
    bool isSent = false;
    HookSocket::Outcome outcome;
    std::optional<EditorPlace> before;
};

} // namespace

struct HookedEditor::State {
    std::unique_ptr<HookSocket> socket; ///< main thread; null once the editor is gone

    std::mutex mutex; ///< guards what follows; any thread
    QString name;
};

HookedEditor::HookedEditor(const QString& socketPath) : state_(std::make_shared<State>()) {
    state_->socket = std::make_unique<HookSocket>(socketPath);
}

HookedEditor::~HookedEditor() {
    // A request that is under way may be the last to let go.
    const auto close = [state = state_] { state->socket = nullptr; };
    const auto& main = DispatchQueue::mainQueue();
    if (main->isCurrentThread()) {
        close();
    } else {
        main->async(close);
    }
}

std::optional<ActiveFile> HookedEditor::activeFile(const QDeadlineTimer&) {
    const auto& place = state_->socket->latest();
    return place ? std::optional(ActiveFile{place->path}) : std::nullopt;
}

QString HookedEditor::name() const {
    const std::lock_guard lock(state_->mutex);
    return state_->name;
}

JumpResult HookedEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    const auto promise = std::make_shared<std::promise<Sent>>();
    auto sent = promise->get_future();
    DispatchQueue::mainQueue()->async([state = state_, promise, place] {
        const auto before = state->socket ? state->socket->latest() : std::nullopt;
        const bool isSent = state->socket != nullptr &&
                            state->socket->open(place, [promise, before](const auto& outcome) {
                                promise->set_value({true, outcome, before});
                            });
        if (!isSent) {
            promise->set_value({});
        }
    });
    const auto left = std::min<std::chrono::milliseconds>(
        kAnswerAtMost, std::chrono::milliseconds(deadline.remainingTime()));
    if (sent.wait_for(left) != std::future_status::ready) {
        return {EditorOutcome::Kind::asksUser, QStringLiteral("The editor did not answer."), {}};
    }
    const Sent result = sent.get();
    if (!result.isSent) {
        return {};
    }
    {
        const std::lock_guard lock(state_->mutex);
        state_->name = result.outcome.editor;
    }
    const auto kind =
        result.outcome.opened ? EditorOutcome::Kind::opened : EditorOutcome::Kind::refused;
    return {kind, result.outcome.reason, result.before};
}

bool HookedEditor::open(const QByteArray& path, std::optional<int> line,
                        const QDeadlineTimer& deadline) {
    const JumpResult result = jump({path, line.value_or(0), 0, false}, deadline);
    const bool isOpen = result.kind == EditorOutcome::Kind::opened;
    if (!isOpen && result.kind != EditorOutcome::Kind::notRunning) {
        log(QStringLiteral("%1 did not open %2: %3")
                .arg(name(), QString::fromUtf8(path), result.reason));
    }
    return result.kind != EditorOutcome::Kind::notRunning;
}

void HookedEditor::follow(PlaceObserver observer) {
    if (observer != nullptr && state_->socket->latest()) {
        observer(*state_->socket->latest());
    }
    state_->socket->setObserver(std::move(observer));
}

} // namespace navrel
