#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>
#include <optional>

namespace navrel {

/// A question that is put to an editor by running a tool, again and again. A tool that takes longer
/// than its caller can wait runs on, and its answer is taken when the question is put next. One
/// thread at a time.
class ToolQuestion {
public:
    /// What came of a question.
    struct Answer {
        enum class Kind {
            Output, ///< `output` is what the tool printed
            None,   ///< the tool could not be run, did not end in its time, or printed too much
            Late,   ///< it is still running
        };
        Kind kind = Kind::None;
        QByteArray output;
    };

    /// A tool that runs for longer than `endedAfter` is ended.
    explicit ToolQuestion(std::chrono::milliseconds endedAfter) : endedAfter_(endedAfter) {}

    /// Runs the tool, unless one from an earlier call still runs or has ended since: then that one
    /// answers, and is not waited for. Waits for a new one until the deadline.
    Answer ask(const QString& tool, const QStringList& arguments, const QDeadlineTimer& deadline);

private:
    struct Run;

    const std::chrono::milliseconds endedAfter_;
    std::shared_ptr<Run> run_; // null while no tool runs
};

} // namespace navrel
