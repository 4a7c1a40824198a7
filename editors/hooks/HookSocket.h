#pragma once

#include "editors/RunningEditor.h"
#include "editors/hooks/HookMessage.h"

#include <QLocalServer>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QLocalSocket;

namespace navrel {

/// The Unix socket that plug-ins of editors connect to. It serves this user alone. A plug-in that
/// writes something else than it should is disconnected; no one of them, whatever it writes, keeps
/// the main thread for longer than a few lines take. Main thread.
class HookSocket {
public:
    /// More windows than anyone has open.
    static constexpr std::size_t kMaximumEditors = 32;

    /// Listens at a path; where that fails, which is logged, no editor ever connects. A socket that
    /// another program listens on is left to it.
    explicit HookSocket(const QString& path);
    ~HookSocket();
    HookSocket(const HookSocket&) = delete;
    HookSocket& operator=(const HookSocket&) = delete;

    /// `$XDG_RUNTIME_DIR/nl.kelvane.Navrel.editor`; nothing where the variable is unset.
    static std::optional<QString> standardPath();

    /// Where the user of the editor that spoke last is, or was led to since; nil while none has
    /// spoken.
    const std::optional<EditorPlace>& latest() const { return latest_; }

    /// The name of that editor; empty where it has not said hello.
    QString latestEditor() const;

    /// Whether the process of that editor is suspended. False where none has spoken.
    bool isLatestEditorStopped() const;

    /// Called when a plug-in says that its user has moved; null for nobody.
    using Observer = std::function<void(const EditorPlace& place)>;
    void setObserver(Observer observer) { observer_ = std::move(observer); }

    using Reply = std::function<void(const EditorOutcome& outcome)>;

    /// Sends a place to the window whose folders hold the file, or else to the one that spoke last.
    /// The number of the request, or 0 where there is no window; otherwise `reply` is called once,
    /// at the latest when the window is gone.
    qint64 open(const EditorPlace& place, Reply reply);
    /// The same for one step back, in the window that spoke last.
    qint64 goBack(Reply reply);
    /// Says that a request has waited for too long: its window gets no other one until it says
    /// something again. `reply` is still called.
    void giveUpOn(qint64 request);

private:
    struct Connection;
    struct Request;
    using Connections = std::vector<std::unique_ptr<Connection>>;

    void accept();
    void read(Connection& connection);
    void hear(Connection& connection, const HookMessage& message);
    void answer(Connection& connection, qint64 request, const EditorOutcome& outcome);
    void disconnect(Connection& connection);
    Connection* windowFor(const QByteArray& path) const;
    Connection* latestWindow() const;
    qint64 send(Connection* window, const std::function<QByteArray(qint64 number)>& line,
                Request request);

    QLocalServer server_;
    Connections connections_; // the one that spoke last comes first
    std::optional<EditorPlace> latest_;
    Observer observer_;
    qint64 lastRequest_ = 0;
};

} // namespace navrel
