#include "editors/ActiveProject.h"

#include "editors/ProjectBundle.h"
#include "support/core/MainThread.h"
#include "support/dispatch/DispatchQueue.h"

#include <atomic>
#include <utility>

namespace navrel {

/// Which project lists a file.
struct ActiveProject::Question {
    explicit Question(QByteArray about) : file(std::move(about)) {}

    const QByteArray file;
    std::optional<QByteArray> bundle; ///< written before `isAnswered` is set, and never after
    std::atomic<bool> isAnswered = false;
};

ActiveProject::ActiveProject(ListingProject listing, Clock& clock)
    : listing_(std::move(listing)), clock_(clock),
      questions_(listing_ ? DispatchQueue::serialQueue(QStringLiteral("Active project"))
                          : nullptr) {}

std::optional<QByteArray> ActiveProject::of(const QByteArray& file,
                                            const QDeadlineTimer& deadline) {
    NAVREL_ASSERT_MAIN_THREAD();
    const auto nearest = nearestProjectBundle(file, deadline);
    if (listing_ == nullptr || file.isEmpty()) {
        return nearest;
    }
    ask(file);
    if (answered_ == nullptr || answered_->file != file) {
        return nearest && *nearest == nearest_ ? project_ : nearest;
    }
    const auto project = answered_->bundle ? answered_->bundle : nearest;
    if (nearest && project) {
        nearest_ = *nearest;
        project_ = *project;
    }
    return project;
}

/// Takes the answer to the question before, and asks again if it is due.
void ActiveProject::ask(const QByteArray& file) {
    if (asked_ != nullptr && asked_->isAnswered) {
        answered_ = asked_;
    }
    const bool isUnderWay = asked_ != answered_;
    const bool isAnother = asked_ == nullptr || asked_->file != file;
    if (isUnderWay || (!isAnother && clock_.now() < askedAt_ + kAskedAgainAfter)) {
        return;
    }
    const auto question = std::make_shared<Question>(file);
    // The job holds its queue, so nobody waits for it when the program ends.
    questions_->async([question, listing = listing_, queue = questions_] {
        question->bundle = listing(question->file);
        question->isAnswered = true;
    });
    asked_ = question;
    askedAt_ = clock_.now();
}

} // namespace navrel
