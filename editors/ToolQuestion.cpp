#include "editors/ToolQuestion.h"

#include "support/core/Log.h"
#include "support/process/ToolRunner.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace navrel {

/// One run of a tool, on a thread of its own, which may outlive the question.
struct ToolQuestion::Run {
    std::mutex mutex;
    std::condition_variable ended;
    bool hasEnded = false;
    std::optional<QByteArray> output;

    void end(std::optional<QByteArray> printed) {
        const std::lock_guard lock(mutex);
        output = std::move(printed);
        hasEnded = true;
        ended.notify_all();
    }
    bool waitUntil(const QDeadlineTimer& deadline) {
        std::unique_lock lock(mutex);
        const std::chrono::milliseconds left(deadline.remainingTime());
        return ended.wait_for(lock, left, [this] { return hasEnded; });
    }
};

ToolQuestion::Answer ToolQuestion::ask(const QString& tool, const QStringList& arguments,
                                       const QDeadlineTimer& deadline) {
    const bool isLate = run_ != nullptr;
    if (!isLate) {
        run_ = std::make_shared<Run>();
        try {
            std::thread([run = run_, tool, arguments, atMost = endedAfter_] {
                run->end(outputOfTool(tool, arguments, atMost));
            }).detach();
        } catch (const std::system_error& error) {
            log(QStringLiteral("No thread for a question to the editor: %1")
                    .arg(QString::fromUtf8(error.what())));
            run_ = nullptr;
            return {};
        }
    }
    // What was late may be late for long: it is looked at, not waited for.
    if (!run_->waitUntil(isLate ? QDeadlineTimer(0) : deadline)) {
        return {Answer::Kind::Late, {}};
    }
    const auto run = std::exchange(run_, nullptr);
    return run->output ? Answer{Answer::Kind::Output, *run->output} : Answer{};
}

} // namespace navrel
