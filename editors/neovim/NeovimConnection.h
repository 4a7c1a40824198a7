#pragma once

#include "editors/neovim/MessagePack.h"
#include "support/files/OwnedDescriptor.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QVariant>

#include <memory>
#include <optional>
#include <utility>

namespace navrel {

/// A conversation with one Neovim over its Unix socket (MessagePack-RPC). Every call blocks, at the
/// most until the deadline that it is given. One thread at a time.
class NeovimConnection {
public:
    /// What came of a call.
    struct Reply {
        enum class Kind {
            Result,
            Error, ///< the editor refused; `value` tells why
            None,  ///< no answer in time, or nothing that is one: the connection is of no more use
        };
        Kind kind = Kind::None;
        QVariant value;
    };

    /// Connects to a socket whose listener belongs to this user: others must not learn what is
    /// opened, nor say which project is active. Null when there is no such listener;
    /// `isOverdue` tells whether one was there and did not accept.
    static std::unique_ptr<NeovimConnection> open(const QByteArray& socketPath, bool& isOverdue);

    NeovimConnection(const NeovimConnection&) = delete;
    NeovimConnection& operator=(const NeovimConnection&) = delete;

    Reply call(const QByteArray& method, const QVariantList& arguments,
               const QDeadlineTimer& deadline);

    /// Sends a request without waiting. Its identifier, for `replyTo`; 0 where the server does not
    /// take it at once: the connection is of no more use then.
    qint64 begin(const QByteArray& method, const QVariantList& arguments);
    /// What came of a request that was begun, as far as it has arrived; nothing while it has not.
    /// Never waits.
    std::optional<Reply> replyTo(qint64 identifier);
    /// The next message that has arrived, whatever it is; nothing while none has. Never waits.
    /// `isBroken` says whether the other end has closed the connection, or writes no messages.
    std::optional<QVariantList> nextMessage(bool& isBroken);
    /// To wait on, for something to read. Owned by the connection.
    int descriptor() const { return socket_.value(); }

private:
    explicit NeovimConnection(OwnedDescriptor socket) : socket_(std::move(socket)) {}
    bool send(const QByteArray& bytes, const QDeadlineTimer& deadline) const;
    bool receive(const QDeadlineTimer& deadline);
    bool waitFor(short event, const QDeadlineTimer& deadline) const;
    std::optional<Reply> takeReply(qint64 identifier);
    MessagePackReading takeMessage();

    const OwnedDescriptor socket_;
    qint64 lastIdentifier_ = 0;
    QByteArray received_;
};

/// The answers that are asked for hold one path, or a few texts; a server that writes without end
/// must not fill the memory.
inline constexpr qsizetype kMaximumNeovimReply = 64 * 1024;

} // namespace navrel
