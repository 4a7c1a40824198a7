#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace navrel {

/// A stream socket with a buffer each way: what has arrived waits until its owner takes it, what
/// the peer does not read yet waits until it does. How much may wait is up to the owner, who says
/// when to read on. Main thread.
class BufferedSocket {
public:
    /// Makes the socket non-blocking. `didChange` is called by the event loop, never inside a call,
    /// when bytes have arrived, bytes that waited have left, or the stream has ended; it may
    /// destroy this object.
    BufferedSocket(OwnedDescriptor socket, std::function<void()> didChange);
    ~BufferedSocket();
    BufferedSocket(const BufferedSocket&) = delete;
    BufferedSocket& operator=(const BufferedSocket&) = delete;

    /// What has arrived; the caller removes what it takes.
    QByteArray& received() { return received_; }

    /// Whether nothing more arrives: the peer is gone, or the stream failed.
    bool hasEnded() const { return hasEnded_; }
    /// Why it failed; 0 when the peer closed it.
    int errnoValue() const { return errnoValue_; }

    /// Sends bytes, behind those that wait. A peer that takes none any more loses them: what it
    /// sent before still arrives.
    void write(QByteArrayView bytes);
    /// The same without a copy, unless others wait.
    void write(QByteArray&& bytes);
    /// Whether a write has failed.
    bool isPeerDeaf() const { return isPeerDeaf_; }
    /// How many bytes wait.
    qsizetype unwritten() const { return unwritten_.size(); }

    /// Whether to read what arrives; at first it is read.
    void setReading(bool wanted);

private:
    using Notifier = std::unique_ptr<QSocketNotifier, QScopedPointerDeleteLater>;

    Notifier notifier(QSocketNotifier::Type type, void (BufferedSocket::*activated)());
    void readable();
    void flush();
    void end(int errnoValue);

    const OwnedDescriptor socket_;
    const std::function<void()> didChange_;
    QByteArray received_;
    QByteArray unwritten_;
    bool hasEnded_ = false;
    bool isPeerDeaf_ = false;
    int errnoValue_ = 0;
    Notifier readNotifier_;
    Notifier writeNotifier_;
};

} // namespace navrel
