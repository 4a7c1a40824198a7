#pragma once

#include "editors/LastAnswers.h"
#include "editors/RunningEditor.h"
#include "editors/SilentEditors.h"

#include <QDBusConnection>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

namespace navrel {

class DispatchQueue;

/// Kate, over the session bus. It says there which file is in front, not where the cursor is: it is
/// led to a line, and followed from file to file.
class KateEditor final : public RunningEditor {
public:
    /// A Kate that runs answers in a few milliseconds; its user hears by then that it did not.
    static constexpr std::chrono::milliseconds kAnswerAtMost{450};

    explicit KateEditor(const QDBusConnection& bus,
                        std::chrono::milliseconds answerAtMost = kAnswerAtMost);
    ~KateEditor() override;

    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;
    QString name() const override { return QStringLiteral("Kate"); }
    /// The place before is the file in front, and the line if Kate was led to it.
    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override;
    /// Asks twice a second while there is an observer, on a thread of its own.
    void follow(PlaceObserver observer) override;

private:
    struct Following;

    const QDBusConnection bus_;
    const std::chrono::milliseconds answerAtMost_;
    SilentEditors silent_{kSilentEditorLeftAlone};                 ///< any thread
    LastAnswers answers_{answerStandsFor(kSilentEditorLeftAlone)}; ///< main thread
    std::optional<EditorPlace> ledTo_;     ///< the last jump; the thread that jumps
    std::shared_ptr<Following> following_; ///< main thread; null while nobody follows
};

} // namespace navrel
