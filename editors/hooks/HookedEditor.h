#pragma once

#include "editors/RunningEditor.h"

#include <memory>

namespace navrel {

class HookSocket;

/// Whatever editors have a plug-in connected. Of several windows the one that spoke last is the one
/// that the user is in.
class HookedEditor final : public RunningEditor {
public:
    /// Takes plug-ins in at a path. Main thread; needs a QCoreApplication.
    explicit HookedEditor(const QString& socketPath);
    /// Any thread; the socket is closed on the main one.
    ~HookedEditor() override;

    /// Never waits: plug-ins tell by themselves.
    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;
    /// The name of the plug-in that answered last.
    QString name() const override;
    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override;
    void follow(PlaceObserver observer) override;

private:
    struct State;

    /// Shared with jobs on the main thread, which may outlive the object.
    const std::shared_ptr<State> state_;
};

} // namespace navrel
