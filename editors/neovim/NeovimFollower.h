#pragma once

#include "editors/RunningEditor.h"

#include <QByteArray>
#include <QTimer>
#include <QVariantList>

#include <map>
#include <memory>
#include <optional>

namespace navrel {

/// Path, line, column and whether there are unsaved changes, as Neovim sends them; nothing for
/// anything else.
std::optional<EditorPlace> neovimPlaceFrom(const QVariantList& values);

/// Listens to every Neovim of this user, from its making to its end: each tells by itself where its
/// user goes. One connection is kept to each; nothing is asked twice. What Neovim was given for
/// that it takes away itself when the connection ends, however that happens. Main thread; never
/// blocks.
class NeovimFollower {
public:
    explicit NeovimFollower(RunningEditor::PlaceObserver observer);
    ~NeovimFollower();
    NeovimFollower(const NeovimFollower&) = delete;
    NeovimFollower& operator=(const NeovimFollower&) = delete;

    /// The socket of the one that was reported last; empty before.
    const QByteArray& lastServer() const { return lastServer_; }
    /// The connection to a server; -1 for none.
    int descriptorOf(const QByteArray& socket) const;

private:
    struct Followed;

    void lookForServers(RunningEditor::PlaceNews firstNews);
    std::unique_ptr<Followed> begun(const QByteArray& socket);
    void hear(const QByteArray& socket);

    const RunningEditor::PlaceObserver observer_;
    bool hasReported_ = false;
    QByteArray lastServer_;
    QTimer search_;
    std::map<QByteArray, std::unique_ptr<Followed>> servers_; // by socket
};

} // namespace navrel
