#include "editors/kate/KateEditor.h"

#include "editors/Deadlines.h"
#include "editors/kate/KateBus.h"
#include "project/EditorRefusal.h"
#include "support/core/Log.h"
#include "support/dispatch/DispatchQueue.h"

#include <QFileInfo>
#include <QThread>

#include <chrono>
#include <utility>

namespace navrel {

namespace {

using KateOutcome = KateReading::Outcome;

const QByteArray kKate = "Kate";
const QString kKateName = QStringLiteral("Kate");
constexpr std::chrono::milliseconds kKateInterval{500};
/// A document is in front when Kate answers; this is for one that is still on its way.
constexpr std::chrono::milliseconds kInFrontAtMost{200};
constexpr unsigned long kPauseMilliseconds = 20;

EditorPlace placeOf(const KateWindow& window) {
    return {window.file, 0, 0, window.isModified};
}

/// Kate shows the file that symbolic links lead to.
bool isSameFile(const QByteArray& left, const QByteArray& right) {
    const QString target = QFileInfo(QString::fromUtf8(left)).canonicalFilePath();
    return left == right ||
           (!target.isEmpty() && target == QFileInfo(QString::fromUtf8(right)).canonicalFilePath());
}

/// Whether a document is in front. While Kate asks whether to save another one, it says that it has
/// opened this one, and has not. Nothing when Kate did not answer in time.
std::optional<bool> isInFront(const QDBusConnection& bus, const QByteArray& path,
                              const QDeadlineTimer& deadline) {
    const QDeadlineTimer settled = earlierOf(deadline, kInFrontAtMost);
    while (true) {
        const KateReading reading = readKateWindow(bus, deadline);
        if (reading.outcome != KateOutcome::Window) {
            return std::nullopt;
        }
        const bool isThere = isSameFile(path, reading.window.file);
        if (isThere || settled.hasExpired()) {
            return isThere;
        }
        QThread::msleep(kPauseMilliseconds);
    }
}

} // namespace

/// Asks on a thread of its own, one question at a time. The main thread lets go of it to end that.
struct KateEditor::Following {
    Following(QDBusConnection sessionBus, PlaceObserver toTell)
        : bus(std::move(sessionBus)), observer(std::move(toTell)),
          questions(DispatchQueue::serialQueue(QStringLiteral("Kate"))) {}

    static void ask(const std::shared_ptr<Following>& self) {
        if (std::exchange(self->isAsking, true)) {
            return;
        }
        // Only the main thread destroys it, with the timer in it.
        self->questions->async([bus = self->bus, weak = std::weak_ptr(self)] {
            const KateReading reading = readKateWindow(bus, QDeadlineTimer(kKateInterval));
            DispatchQueue::mainQueue()->async([weak, reading] {
                if (const auto following = weak.lock()) {
                    following->hear(reading);
                }
            });
        });
    }
    void hear(const KateReading& reading) {
        isAsking = false;
        const auto news = std::exchange(isFirst, false) ? PlaceNews::isThere : PlaceNews::cameThere;
        if (reading.outcome == KateOutcome::Window && last != placeOf(reading.window)) {
            last = placeOf(reading.window);
            observer(*last, news);
        }
    }

    // Main thread.
    const QDBusConnection bus;
    const PlaceObserver observer;
    const std::shared_ptr<DispatchQueue> questions;
    std::optional<EditorPlace> last;
    bool isAsking = false;
    bool isFirst = true;
    QTimer timer;
};

KateEditor::KateEditor(const QDBusConnection& bus, std::chrono::milliseconds answerAtMost)
    : bus_(bus), answerAtMost_(answerAtMost) {}

KateEditor::~KateEditor() = default;

std::optional<ActiveFile> KateEditor::activeFile(const QDeadlineTimer& deadline) {
    if (silent_.contains(kKate)) {
        return answers_.of(kKate);
    }
    const KateReading reading = readKateWindow(bus_, deadline);
    switch (reading.outcome) {
    case KateOutcome::Window:
        answers_.add(kKate, reading.window.file);
        break;
    case KateOutcome::None:
        answers_.forget(kKate);
        break;
    case KateOutcome::Silent:
        silent_.add(kKate);
        break;
    }
    return answers_.of(kKate);
}

bool KateEditor::open(const QByteArray& path, std::optional<int> line,
                      const QDeadlineTimer& deadline) {
    if (silent_.contains(kKate)) {
        return false;
    }
    const JumpResult result = jump({path, line.value_or(0), 0, false}, deadline);
    if (result.isAnswer() && !result.outcome.isOpen()) {
        log(QStringLiteral("Kate did not open %1: %2")
                .arg(QString::fromUtf8(path), result.outcome.reason));
    }
    return result.isAnswer();
}

JumpResult KateEditor::jump(const EditorPlace& place, const QDeadlineTimer& deadline) {
    const QDeadlineTimer end = earlierOf(deadline, answerAtMost_);
    // Asked also where it was silent just now: its user hears that it is, or it has gone on since.
    const KateReading reading = readKateWindow(bus_, end);
    // Where the bus itself is silent, another editor is asked: nobody knows of a Kate.
    if (reading.outcome == KateOutcome::None || reading.window.service.isEmpty()) {
        return {};
    }
    if (reading.outcome == KateOutcome::Silent) {
        // It is not asked to open anything: it would do that whenever it goes on.
        silent_.add(kKate);
        return {outcomeOf(EditorRefusal::doesNotAnswer, kKateName), {}};
    }
    silent_.remove(kKate);
    const auto isOpen =
        openInKate(bus_, reading.window.service, place.path, place.line, place.column, end);
    if (!isOpen) {
        return {outcomeOf(EditorRefusal::answersLate, kKateName), {}};
    }
    if (!*isOpen) {
        return {
            outcomeOf(EditorRefusal::saysWhy, kKateName, QStringLiteral("it cannot open the file")),
            {}};
    }
    // Its word counts where it is too busy to be asked again.
    if (!isInFront(bus_, place.path, end).value_or(true)) {
        return {outcomeOf(EditorRefusal::waitsForAKey, kKateName), {}};
    }
    EditorPlace before = placeOf(reading.window);
    if (ledTo_ && ledTo_->path == before.path) {
        before.line = ledTo_->line;
        before.column = ledTo_->column;
    }
    ledTo_ = place;
    return {{EditorOutcome::Kind::opened, kKateName, {}, {}}, before};
}

void KateEditor::follow(PlaceObserver observer) {
    following_ = nullptr;
    if (observer == nullptr) {
        return;
    }
    following_ = std::make_shared<Following>(bus_, std::move(observer));
    QObject::connect(&following_->timer, &QTimer::timeout, &following_->timer,
                     [weak = std::weak_ptr(following_)] {
                         if (const auto following = weak.lock()) {
                             Following::ask(following);
                         }
                     });
    following_->timer.start(kKateInterval);
    Following::ask(following_);
}

} // namespace navrel
