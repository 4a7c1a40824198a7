#pragma once

#include "editors/ToolQuestion.h"
#include "project/Editor.h"
#include "support/process/Errands.h"

#include <QString>

#include <chrono>
#include <optional>

namespace navrel {

/// Xcode, through its platform's command-line tools: AppleScript for questions and for selecting a
/// line, `xed` for opening a file.
class XcodeEditor final : public Editor {
public:
    /// The tools, by absolute path, and how long one of them may take.
    struct Tools {
        QString osascript = QStringLiteral("/usr/bin/osascript");
        QString xed = QStringLiteral("/usr/bin/xed");
        /// How long a question waits. A script gives up by itself after 0.6 s, unless the system
        /// asks the user for permission first: then it runs on, and its answer is taken when it
        /// comes.
        std::chrono::milliseconds queryAtMost{5000};
        /// For opening and jumping, which nobody waits for.
        std::chrono::milliseconds requestAtMost{60'000};
        /// A question that runs for so long hangs, and is ended.
        std::chrono::milliseconds questionEndedAfter{std::chrono::hours(1)};
    };

    /// A person taps a few times a second and a request lasts less than one; a device that asks
    /// without end must not fill the machine with threads and processes.
    static constexpr int kMaximumRunningTools = 64;

    XcodeEditor();
    explicit XcodeEditor(Tools tools);

    /// Blocks while the script runs, `queryAtMost` at most; from then until it has ended, the last
    /// answer stands. The answer is a document one level inside the bundle; what is
    /// given is the folder of whatever was answered.
    std::optional<QString> activeProjectPath() override;
    /// The same.
    std::optional<QString> activeFileName() override;
    /// Starts two threads: one that selects the line, where there is one, and one that opens the
    /// file. Two requests in quick succession run at the same time, in no certain order. Where too
    /// many tools run already nothing is done, which is logged.
    void openFile(const QString& path, std::optional<int> line) override;
    /// Starts the first of these threads alone.
    void selectLine(int line) override;

private:
    struct Question {
        ToolQuestion tool;
        std::optional<QString> lastAnswer;
    };

    std::optional<QString> answerOf(const QString& script, Question& question);

    const Tools tools_;
    const Errands requests_{QStringLiteral("requests to Xcode"), kMaximumRunningTools};
    Question project_{ToolQuestion(tools_.questionEndedAfter), {}};
    Question file_{ToolQuestion(tools_.questionEndedAfter), {}};
};

} // namespace navrel
