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
    /// The absolute paths of the tools, and how long each may take.
    struct Tools {
        QString osascript = QStringLiteral("/usr/bin/osascript");
        QString xed = QStringLiteral("/usr/bin/xed");
        /// How long a question blocks its caller. A script gives up by itself after 0.6 s, unless
        /// the system asks the user for permission first: then it runs on, and a later question
        /// returns its answer.
        std::chrono::milliseconds queryAtMost{5000};
        /// How long opening or jumping may run before its tool is ended. Neither blocks a caller.
        std::chrono::milliseconds requestAtMost{60'000};
        /// A question that has run for this long hangs: its tool is ended.
        std::chrono::milliseconds questionEndedAfter{std::chrono::hours(1)};
    };

    /// A user taps a few times a second, and a request takes less than a second. A device that
    /// sends requests without end must not fill the machine with threads and processes.
    static constexpr int kMaximumRunningTools = 64;

    XcodeEditor();
    explicit XcodeEditor(Tools tools);

    /// Xcode answers with a document one level inside the bundle, so this returns the folder of the
    /// answer, whatever the answer is. Blocks while the script runs, for at most `queryAtMost`;
    /// after that, and until the script has ended, returns the last answer.
    std::optional<QString> activeProjectPath() override;
    /// Blocks as `activeProjectPath` does.
    std::optional<QString> activeFileName() override;
    /// Starts two threads: one selects the line, if one is given, and one opens the file. Two
    /// requests in quick succession run at the same time, in no certain order. If
    /// kMaximumRunningTools run already, does nothing and logs that.
    void openFile(const QString& path, std::optional<int> line) override;
    /// Starts the first of these two threads only.
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
