#pragma once

#include "editors/RunningEditor.h"
#include "editors/hooks/HookSocket.h"

#include <chrono>
#include <functional>
#include <memory>

namespace navrel {

/// All editors that have a plug-in connected, as one. Of several windows the one that spoke last is
/// the one that the user is in.
class HookedEditor final : public RunningEditor {
public:
    /// A plug-in answers in a few milliseconds. One that does not has its user told while they
    /// still look at the screen.
    static constexpr std::chrono::milliseconds kAnswerAtMost{450};

    /// Takes plug-ins in at a path. Main thread; needs a QCoreApplication.
    explicit HookedEditor(const QString& socketPath,
                          std::chrono::milliseconds answerAtMost = kAnswerAtMost);
    /// Any thread; the socket is closed on the main one.
    ~HookedEditor() override;

    /// Never waits: plug-ins tell by themselves.
    std::optional<ActiveFile> activeFile(const QDeadlineTimer& deadline) override;
    bool open(const QByteArray& path, std::optional<int> line,
              const QDeadlineTimer& deadline) override;
    /// The name of the plug-in that answered or moved last.
    QString name() const override;
    bool isSuspended() const override;
    JumpResult jump(const EditorPlace& place, const QDeadlineTimer& deadline) override;
    JumpResult goBack(const QDeadlineTimer& deadline) override;
    void follow(PlaceObserver observer) override;

private:
    struct State;
    struct Exchange;
    /// Sends one request, as `HookSocket::open` does.
    using Send = std::function<qint64(HookSocket& socket, HookSocket::Reply reply)>;

    void learnName(const QString& name);
    JumpResult resultOf(Send send, const QDeadlineTimer& deadline);

    /// Shared with jobs on the main thread, which may outlive the object.
    const std::shared_ptr<State> state_;
    const std::chrono::milliseconds answerAtMost_;
};

} // namespace navrel
