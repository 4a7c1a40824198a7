#pragma once

#include "support/core/Clock.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace navrel {

class DispatchQueue;

/// Finds the project that the active file belongs to: the one that lists the file or, if none does,
/// the nearest (`nearestProjectBundle`). To learn what projects list takes time, so that happens on
/// a thread of its own, and until it is known the answer is the one for the file before if both
/// have the same nearest project, otherwise the nearest. Main thread.
class ActiveProject {
public:
    /// The .xcodeproj bundle that lists a file (both absolute paths); nil if none does. May block.
    /// Called for one file at a time, always on the same thread, which is not the main thread.
    using ListingProject = std::function<std::optional<QByteArray>(const QByteArray& file)>;

    /// Projects and folders change, so for the same file the question is asked again after this.
    static constexpr std::chrono::seconds kAskedAgainAfter{10};

    /// Without `listing` (null), the nearest project is the answer. The clock must outlive this.
    /// Needs a QCoreApplication.
    explicit ActiveProject(ListingProject listing, Clock& clock = systemClock());

    /// The bundle's path; empty if the file (an absolute path, or empty for none) belongs to no
    /// project. Nil if the deadline passed before that was known.
    std::optional<QByteArray> of(const QByteArray& file, const QDeadlineTimer& deadline);

private:
    struct Question;

    void ask(const QByteArray& file);

    const ListingProject listing_;
    Clock& clock_;
    const std::shared_ptr<DispatchQueue> questions_; ///< null without `listing_`
    std::shared_ptr<const Question> answered_;       ///< the last that has been; null at first
    std::shared_ptr<const Question> asked_;          ///< the last one; null at first
    Clock::TimePoint askedAt_;
    QByteArray nearest_; ///< the nearest project of the file before
    QByteArray project_; ///< and the project that it belongs to
};

} // namespace navrel
