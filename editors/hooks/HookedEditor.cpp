#include "editors/hooks/HookedEditor.h"

#include "project/EditorRefusal.h"
#include "support/core/Log.h"
#include "support/dispatch/DispatchQueue.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <mutex>
#include <utility>

namespace navrel {

struct HookedEditor::State {
    std::unique_ptr<HookSocket> socket; ///< main thread; null once the editor is gone

    std::mutex mutex; ///< guards what follows; any thread
    QString name;
};

/// A request and how it ended. The main thread may answer it after nobody waits any more.
struct HookedEditor::Exchange {
    struct Ending {
        std::optional<EditorOutcome> outcome; ///< nothing where no window took the request
        std::optional<EditorPlace> before;    ///< where the user was
    };
    std::promise<Ending> ending;
    qint64 request = 0; ///< main thread

    static void begin(const std::shared_ptr<Exchange>& exchange, HookSocket* socket,
                      const Send& send) {
        const auto before = socket != nullptr ? socket->latest() : std::nullopt;
        const auto reply = [exchange, before](const EditorOutcome& outcome) {
            exchange->ending.set_value({outcome, before});
        };
        exchange->request = socket != nullptr ? send(*socket, reply) : 0;
        if (exchange->request == 0) {
            exchange->ending.set_value({});
        }
    }
};

HookedEditor::HookedEditor(const QString& socketPath, std::chrono::milliseconds answerAtMost)
    : state_(std::make_shared<State>()), answerAtMost_(answerAtMost) {
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
    learnName(state_->socket->latestEditor());
    return place ? std::optional(ActiveFile{place->path}) : std::nullopt;
}

void HookedEditor::learnName(const QString& name) {
    const std::lock_guard lock(state_->mutex);
    state_->name = name;
}

QString HookedEditor::name() const {
    const std::lock_guard lock(state_->mutex);
    return state_->name;
}

bool HookedEditor::isSuspended() const {
    return state_->socket->isLatestEditorStopped();
}

JumpResult HookedEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    return resultOf(
        [place](HookSocket& socket, HookSocket::Reply reply) {
            return socket.open(place, std::move(reply));
        },
        deadline);
}

JumpResult HookedEditor::goBack(const QDeadlineTimer& deadline) {
    return resultOf(
        [](HookSocket& socket, HookSocket::Reply reply) { return socket.goBack(std::move(reply)); },
        deadline);
}

JumpResult HookedEditor::resultOf(Send send, const QDeadlineTimer& deadline) {
    const auto exchange = std::make_shared<Exchange>();
    auto ending = exchange->ending.get_future();
    const auto& main = DispatchQueue::mainQueue();
    main->async([state = state_, exchange, send = std::move(send)] {
        Exchange::begin(exchange, state->socket.get(), send);
    });
    const auto left = std::min<std::chrono::milliseconds>(
        answerAtMost_, std::chrono::milliseconds(deadline.remainingTime()));
    if (ending.wait_for(left) != std::future_status::ready) {
        main->async([state = state_, exchange] {
            if (state->socket != nullptr) {
                state->socket->giveUpOn(exchange->request);
            }
        });
        return {outcomeOf(EditorRefusal::answersLate, name()), {}};
    }
    const Exchange::Ending result = ending.get();
    if (!result.outcome) {
        return {};
    }
    learnName(result.outcome->editor);
    return {*result.outcome, result.before};
}

bool HookedEditor::open(const QByteArray& path, std::optional<int> line,
                        const QDeadlineTimer& deadline) {
    const JumpResult result = jump({path, line.value_or(0), 0, false}, deadline);
    if (result.isAnswer() && !result.outcome.isOpen()) {
        log(QStringLiteral("%1 did not open %2: %3")
                .arg(name(), QString::fromUtf8(path), result.outcome.reason));
    }
    return result.isAnswer();
}

void HookedEditor::follow(PlaceObserver observer) {
    if (observer == nullptr) {
        return state_->socket->setObserver(nullptr);
    }
    learnName(state_->socket->latestEditor());
    if (const auto& latest = state_->socket->latest()) {
        observer(*latest, PlaceNews::isThere);
    }
    state_->socket->setObserver([this, observer = std::move(observer)](const EditorPlace& place) {
        learnName(state_->socket->latestEditor());
        observer(place, PlaceNews::cameThere);
    });
}

} // namespace navrel
