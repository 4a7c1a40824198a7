#include "editors/FollowedEditor.h"

#include "editors/Deadlines.h"
#include "editors/RequestedPath.h"
#include "project/EditorRefusal.h"
#include "support/core/Log.h"
#include "support/core/MainThread.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/text/FilePath.h"
#include "support/text/UTF8.h"

#include <algorithm>
#include <utility>

namespace navrel {

FollowedEditor::FollowedEditor(std::vector<std::shared_ptr<RunningEditor>> editors,
                               std::shared_ptr<Editor> lastResort,
                               ActiveProject::ListingProject listing)
    : editors_(std::move(editors)), lastResort_(std::move(lastResort)),
      requests_(DispatchQueue::serialQueue(QStringLiteral("Editor requests"))),
      projects_(std::move(listing)) {}

FollowedEditor::~FollowedEditor() {
    onMove(nullptr);
}

/// The editors, the one that the user moved in last before all others. It may have been closed
/// since: then the next one answers.
FollowedEditor::Editors FollowedEditor::inOrder() const {
    Editors ordered = editors_;
    if (focused_) {
        const auto focused = ordered.begin() + static_cast<std::ptrdiff_t>(*focused_);
        std::rotate(ordered.begin(), focused, focused + 1);
    }
    return ordered;
}

/// The bytes of the active file's path: empty where there is none, nil where no editor answers and
/// none that did is still there.
std::optional<QByteArray> FollowedEditor::activeFile() {
    NAVREL_ASSERT_MAIN_THREAD();
    const QDeadlineTimer deadline(kAnswerAtMost);
    std::optional<ActiveFile> followed;
    std::size_t left = editors_.size();
    for (const auto& editor : inOrder()) {
        const auto file = editor->activeFile(shareOf(deadline, left--));
        if (file && (!followed || file->isCurrent)) {
            followed = file;
            name_ = editor->name();
            named_ = editor;
        }
        if (followed && followed->isCurrent) {
            break;
        }
    }
    isSilent_ = followed && !followed->isFresh;
    if (!followed) {
        name_.clear();
        named_ = nullptr;
        return std::nullopt;
    }
    // A buffer may bear any name; one that is no path is no file.
    return followed->path.startsWith('/') ? followed->path : QByteArrayLiteral("");
}

std::optional<QString> FollowedEditor::activeProjectPath() {
    NAVREL_ASSERT_MAIN_THREAD();
    const QDeadlineTimer deadline(kQueryAtMost);
    const auto file = activeFile();
    if (!file) {
        return lastResort_ != nullptr ? lastResort_->activeProjectPath() : std::nullopt;
    }
    if (const auto bundle = projects_.of(*file, deadline)) {
        // A folder whose name is not UTF-8 cannot be told of: it holds no project to be shown.
        activeProject_ = decodeUTF8(*bundle).value_or(QStringLiteral(""));
    }
    return activeProject_;
}

std::optional<QString> FollowedEditor::activeFileName() {
    const auto file = activeFile();
    if (!file) {
        return lastResort_ != nullptr ? lastResort_->activeFileName() : std::nullopt;
    }
    return decodeUTF8(lastPathComponent(*file)).value_or(QStringLiteral(""));
}

struct FollowedEditor::Request {
    std::vector<std::shared_ptr<RunningEditor>> editors;
    std::shared_ptr<Editor> lastResort;
    QString path;
    std::optional<int> line;

    void carryOut() const {
        const QDeadlineTimer deadline(kOpenAtMost);
        const QByteArray bytes = path.toUtf8();
        const bool isOpen = std::any_of(editors.begin(), editors.end(), [&](const auto& editor) {
            return editor->open(bytes, line, deadline);
        });
        if (isOpen) {
            return;
        }
        if (lastResort != nullptr) {
            lastResort->openFile(path, line);
        } else {
            log(QStringLiteral("No editor answers: %1 was not opened").arg(path));
        }
    }
};

/// Puts a job at the end of those that wait; false, with nothing done, where too many do.
bool FollowedEditor::enqueue(std::function<void()> job) {
    if (waiting_->load() >= kMaximumWaitingRequests) {
        return false;
    }
    ++*waiting_;
    requests_->async([job = std::move(job), waiting = waiting_] {
        job();
        --*waiting;
    });
    return true;
}

void FollowedEditor::openFile(const QString& path, std::optional<int> line) {
    const auto absolutePath = requestedPath(path);
    if (!absolutePath) {
        return;
    }
    const Request request{inOrder(), lastResort_, *absolutePath, line};
    if (!enqueue([request] { request.carryOut(); })) {
        log(QStringLiteral("Too many files wait to be opened: %1 was not").arg(path));
    }
}

/// Leads the first editor that answers to a place.
struct FollowedEditor::Jump {
    std::vector<std::shared_ptr<RunningEditor>> editors;
    std::shared_ptr<Editor> lastResort;
    std::shared_ptr<EditorTrail> trail;

    void to(const EditorPlace& place, const OutcomeObserver& done) const {
        const auto result = firstAnswerTo(place);
        if (!result) {
            openWithLastResort(place, done);
            return;
        }
        if (result->outcome.isOpen() && result->before) {
            trail->add(*result->before);
        }
        done(result->outcome);
    }
    /// Nothing where no editor answers.
    std::optional<JumpResult> firstAnswerTo(const EditorPlace& place) const {
        const QDeadlineTimer deadline(kJumpAtMost);
        for (const auto& editor : editors) {
            const JumpResult result = editor->jump(place, deadline);
            if (result.isAnswer()) {
                return result;
            }
        }
        return std::nullopt;
    }
    void openWithLastResort(const EditorPlace& place, const OutcomeObserver& done) const {
        if (lastResort != nullptr) {
            lastResort->open(QString::fromUtf8(place.path), place.line, place.column, done);
        } else {
            done(outcomeOf(EditorRefusal::noEditorAnswers));
        }
    }
    void back(const OutcomeObserver& done) const {
        const auto place = trail->takeLast();
        if (!place) {
            backByItself(done);
            return;
        }
        const auto result = firstAnswerTo(*place);
        if (!result) {
            if (lastResort == nullptr) {
                trail->putBack(*place, false);
            }
            openWithLastResort(*place, done);
            return;
        }
        // A step back is no jump to go back from. One that was not taken is there to be taken
        // again, when the user has done what the editor waits for.
        if (!result->outcome.isOpen()) {
            trail->putBack(*place, result->outcome.kind == EditorOutcome::Kind::refused);
        }
        done(result->outcome);
    }
    /// Navrel led nowhere yet, but an editor has a list of its own.
    void backByItself(const OutcomeObserver& done) const {
        const QDeadlineTimer deadline(kJumpAtMost);
        for (const auto& editor : editors) {
            const JumpResult result = editor->goBack(deadline);
            if (result.isAnswer()) {
                done(result.outcome);
                return;
            }
        }
        done(outcomeOf(EditorRefusal::noWayBack));
    }
};

void FollowedEditor::open(const QString& path, int line, int column, OutcomeObserver done) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto absolutePath = requestedPath(path);
    if (!absolutePath) {
        done(outcomeOf(EditorRefusal::noSuchPath));
        return;
    }
    const Jump jump{inOrder(), lastResort_, trail_};
    const EditorPlace place{absolutePath->toUtf8(), line, column, false};
    if (!enqueue([jump, place, done] { jump.to(place, done); })) {
        done(outcomeOf(EditorRefusal::tooManyWait));
    }
}

void FollowedEditor::back(OutcomeObserver done) {
    NAVREL_ASSERT_MAIN_THREAD();
    const Jump jump{inOrder(), lastResort_, trail_};
    if (!enqueue([jump, done] { jump.back(done); })) {
        done(outcomeOf(EditorRefusal::tooManyWait));
    }
}

Editor::Presence FollowedEditor::presence() {
    NAVREL_ASSERT_MAIN_THREAD();
    if (named_ != nullptr && named_->isSuspended()) {
        return Presence::stopped;
    }
    return isSilent_ ? Presence::silent : Presence::answers;
}

void FollowedEditor::onMove(MoveObserver observer) {
    NAVREL_ASSERT_MAIN_THREAD();
    const bool wasFollowing = observer_ != nullptr;
    observer_ = std::move(observer);
    const bool isFollowing = observer_ != nullptr;
    if (isFollowing == wasFollowing) {
        return;
    }
    position_.reset();
    focused_.reset();
    for (std::size_t editor = 0; editor < editors_.size(); ++editor) {
        if (isFollowing) {
            editors_[editor]->follow(
                [this, editor](const EditorPlace& place, RunningEditor::PlaceNews news) {
                    hear(editor, place, news);
                });
        } else {
            editors_[editor]->follow(nullptr);
        }
    }
}

/// The editor that reports a move is the one that the user is in. Until there is one, the first in
/// the order counts, however late its answer comes.
void FollowedEditor::hear(std::size_t editor, const EditorPlace& place,
                          RunningEditor::PlaceNews news) {
    if (news == RunningEditor::PlaceNews::cameThere) {
        focused_ = editor;
    } else if (position_ && (focused_ || editor > shown_)) {
        return;
    }
    shown_ = editor;
    name_ = editors_[editor]->name();
    named_ = editors_[editor];
    isSilent_ = false;
    const auto path = place.path.startsWith('/') ? decodeUTF8(place.path) : std::nullopt;
    const EditorPosition position =
        path ? EditorPosition{*path, place.line, place.column, place.isModified} : EditorPosition();
    if (position_ == position) {
        return;
    }
    position_ = position;
    observer_(position);
}

} // namespace navrel
