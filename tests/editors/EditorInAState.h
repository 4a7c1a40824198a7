#pragma once

#include "editors/FollowedEditor.h"
#include "tests/editors/EditorStates.h"
#include "tests/editors/ScratchEnvironment.h"
#include "tests/editors/Terminal.h"

#include <functional>
#include <memory>
#include <optional>

namespace navrel {

/// A real editor in a terminal, brought into a state and led from there.
class EditorInAState {
public:
    static constexpr int kLine = 42;

    enum class Kind { neovim, vim, emacs };
    using MakeEditor = std::function<std::shared_ptr<RunningEditor>()>;

    /// Whether the editor and a terminal for it are there.
    static bool isAvailable(Kind kind);

    EditorInAState(Kind kind, const EditorState& state);
    ~EditorInAState();
    EditorInAState(const EditorInAState&) = delete;
    EditorInAState& operator=(const EditorInAState&) = delete;

    /// Starts it on its first file; `make` gives what leads it, once the environment is set.
    [[nodiscard]] bool start(const MakeEditor& make);
    /// Types what leads to the state, and waits until it shows.
    [[nodiscard]] bool enter() const;
    /// Leads it to the target, and waits for the outcome.
    EditorOutcome jump();
    [[nodiscard]] bool waitUntilAtTheLine() const;
    /// Types what shows that nothing was lost, and waits until it shows.
    [[nodiscard]] bool showsWhatWasKept() const;
    QByteArray screen() const { return terminal_.screen(); }

private:
    [[nodiscard]] bool prepareTarget();
    QStringList command() const;
    QStringList inFolder(const QStringList& command, const QString& file) const;
    bool shows(const char* pattern) const;
    bool isAt(const QString& file, int line) const;
    QString fileA() const { return environment_.pathOf(QStringLiteral("work/a.m")); }
    QString fileB() const { return environment_.pathOf(QStringLiteral("work/b.m")); }

    const Kind kind_;
    const EditorState& state_;
    ScratchEnvironment environment_;
    Terminal terminal_{environment_.pathOf(QStringLiteral("tmux"))};
    Terminal other_{environment_.pathOf(QStringLiteral("tmux-2"))};
    std::unique_ptr<FollowedEditor> editor_;
    std::optional<EditorPosition> last_;
};

} // namespace navrel
