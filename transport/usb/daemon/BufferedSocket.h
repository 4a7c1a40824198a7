#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace navrel {

/// A stream socket with a buffer in each direction: for bytes that the owner has not taken yet, and
/// for bytes that the peer has not read yet. The owner must bound both: by `setReading` and by what
/// it sends. Main thread.
class BufferedSocket {
public:
    /// Makes the socket non-blocking. `didChange` is called by the event loop, never inside a call,
    /// when bytes have arrived, bytes that waited have left, or the stream has ended; it may
    /// destroy this object.
    BufferedSocket(OwnedDescriptor socket, std::function<void()> didChange);
    ~BufferedSocket();
    BufferedSocket(const BufferedSocket&) = delete;
    BufferedSocket& operator=(const BufferedSocket&) = delete;

    /// The bytes that have arrived. The caller must remove those that it takes.
    QByteArray& received() { return received_; }

    /// Whether nothing more will arrive: the peer is gone, or the stream failed.
    bool hasEnded() const { return hasEnded_; }
    /// The errno value of a stream that failed; 0 if the peer closed it.
    int errnoValue() const { return errnoValue_; }

    /// Sends bytes, after those that wait. If the peer takes no more they are lost, but what it
    /// sent before still arrives.
    void write(QByteArrayView bytes);
    /// As above, without a copy unless others wait.
    void write(QByteArray&& bytes);
    /// Whether a write has failed.
    bool isPeerDeaf() const { return isPeerDeaf_; }
    /// How many bytes wait to be sent.
    qsizetype unwritten() const { return unwritten_.size(); }

    /// Sets whether to read what arrives; at first true.
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
