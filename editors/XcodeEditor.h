#pragma once

#include "editors/SilentEditors.h"
#include "project/Editor.h"
#include "support/Errands.h"

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
        /// The scripts of questions give up by themselves after 0.6 s; a tool that outlives this
        /// many milliseconds hangs and is killed.
        std::chrono::milliseconds queryAtMost{5000};
        /// For opening and jumping, which nobody waits for.
        std::chrono::milliseconds requestAtMost{60'000};
        std::chrono::milliseconds leftAloneFor = kSilentEditorLeftAlone;
    };

    /// A person taps a few times a second and a request lasts less than one; a device that asks
    /// without end must not fill the machine with threads and processes.
    static constexpr int kMaximumRunningTools = 64;

    XcodeEditor();
    explicit XcodeEditor(Tools tools);

    /// Blocks while the script runs. The answer is a document one level inside the bundle; what is
    /// given is the folder of whatever was answered.
    std::optional<QString> activeProjectPath() override;
    /// Blocks while the script runs.
    std::optional<QString> activeFileName() override;
    /// Starts two threads: one that selects the line, where there is one, and one that opens the
    /// file. Two requests in quick succession run at the same time, in no certain order. Where too
    /// many tools run already nothing is done, which is logged.
    void openFile(const QString& path, std::optional<int> line) override;
    /// Starts the first of these threads alone.
    void selectLine(int line) override;

private:
    std::optional<QString> answerOf(const QString& script);

    const Tools tools_;
    const Errands requests_{QStringLiteral("requests to Xcode"), kMaximumRunningTools};
    SilentEditors silent_;
};

} // namespace navrel
