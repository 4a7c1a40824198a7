#pragma once

#include "support/dispatch/DispatchData.h"
#include "support/dispatch/MoveOnlyFunction.h"
#include "support/dispatch/ReadAhead.h"
#include "support/dispatch/ReadOperation.h"
#include "support/dispatch/StreamDescriptor.h"
#include "support/dispatch/WaitingLine.h"
#include "support/dispatch/WriteOperation.h"

#include <QSocketNotifier>

#include <limits>
#include <memory>
#include <optional>

namespace navrel {

class DispatchQueue;

/// Asynchronous reads and writes on a stream descriptor (socket, pipe, terminal).
///
/// Reads end in the order of their calls, and so do writes. Every operation ends exactly once: a
/// read with a delivery marked as done. Handlers run as jobs of the queue that the operation names,
/// never inside the call that starts it.
///
/// The channel reads ahead: bytes beyond those that an operation asked for are kept for the next
/// one, so no other code may read the descriptor. It reads only while an operation waits, a few
/// times for each event, and not while more than `kMostUnwrittenBytes` or `kMostUnwrittenWrites`
/// wait for a peer that does not read. So the memory that a peer can take is bounded by the piece
/// size of the first read: a caller that gets a length from a peer must limit it.
///
/// Any thread may call the operations. Off the queue's thread they take effect later, in the order
/// of the calls. The channel stays alive while operations are pending.
class DispatchIO final : public std::enable_shared_from_this<DispatchIO> {
public:
    /// Room for a shared pointer and another function: for handlers that wrap one.
    static constexpr size_t kReadHandlerInlineSize =
        sizeof(std::shared_ptr<void>) + sizeof(MoveOnlyFunction<void()>);

    /// One delivery of a read: the next piece of its bytes, whether it is the last delivery, and,
    /// if it is, an errno value. At the end of the stream, an unfinished read delivers what it has,
    /// if anything, and then an empty last piece with errno 0. A piece may keep a read-ahead buffer
    /// of 64 KiB alive: a caller that keeps small pieces for long should copy them.
    using ReadHandler = MoveOnlyFunction<void(bool done, DispatchData data, int errnoValue),
                                         kReadHandlerInlineSize>;

    /// The end of a write: 0 when all its bytes are written.
    using WriteHandler = MoveOnlyFunction<void(int errnoValue)>;

    /// The end of the channel: EBADF if the descriptor turned out not to be open, otherwise 0. The
    /// owner of the descriptor must not close it before this.
    using CleanupHandler = MoveOnlyFunction<void(int errnoValue)>;

    enum class Close {
        afterPending, ///< pending operations finish first
        stop,         ///< pending operations end with ECANCELED
    };

    /// A read with this piece size delivers all its bytes at once, in one region.
    static constexpr size_t kWholeLength = std::numeric_limits<size_t>::max();

    /// No device waits for more than this. Beyond it, reading further requests is pointless until
    /// the peer reads its replies.
    static constexpr size_t kMostUnwrittenBytes = size_t{8} * 1024 * 1024;
    static constexpr size_t kMostUnwrittenWrites = 4096;

    /// Makes a channel on a descriptor, which is made non-blocking and still belongs to the caller.
    /// Null, with errno set and no handler called, if that fails or the queue is null. The clean-up
    /// handler (may be null) runs once, on the queue, after the channel is closed or destroyed and
    /// the last handler of its operations has returned.
    static std::shared_ptr<DispatchIO> create(int descriptor,
                                              const std::shared_ptr<DispatchQueue>& queue,
                                              CleanupHandler cleanupHandler);
    ~DispatchIO();
    DispatchIO(const DispatchIO&) = delete;
    DispatchIO& operator=(const DispatchIO&) = delete;

    /// The descriptor, for information only; -1 once the clean-up handler has been called.
    int descriptor() const { return descriptor_.value(); }

    /// Reads exactly `length` bytes and delivers them in pieces of `largestPiece` bytes. Memory
    /// grows with what arrives, not with `length`. ECANCELED after `close`.
    void read(quint64 length, const std::shared_ptr<DispatchQueue>& handlerQueue,
              ReadHandler&& handler, size_t largestPiece = kWholeLength);

    /// Returns the next `length` bytes in one region if they have been read ahead and no read waits
    /// for them, so that a handler can go on at once. Otherwise takes nothing and returns nil: the
    /// caller should use `read`. Always nil after `close`, and off the queue's thread.
    std::optional<DispatchData> takeReadAhead(size_t length);

    /// Writes all bytes. The system is called at once when no earlier write waits. The handler may
    /// be null. A peer that is gone is an errno value (EPIPE), never a signal. ECANCELED after
    /// `close`.
    void write(DispatchData data, const std::shared_ptr<DispatchQueue>& handlerQueue,
               WriteHandler&& handler);

    /// As `write` above, of the prefix and then the data.
    void write(const WritePrefix& prefix, DispatchData&& data,
               const std::shared_ptr<DispatchQueue>& handlerQueue, WriteHandler&& handler);

    /// Ends the channel: later operations end with ECANCELED. May be called again, with `stop`, to
    /// end what a first call lets finish.
    void close(Close how);

private:
    struct Read {
        ReadOperation bytes;
        ReadHandler handler;
    };
    struct Write {
        WriteOperation bytes;
        WriteHandler handler;
    };
    using Notifier = std::unique_ptr<QSocketNotifier, QScopedPointerDeleteLater>;

    DispatchIO(StreamDescriptor descriptor, std::shared_ptr<DispatchQueue> queue,
               CleanupHandler cleanupHandler);

    ReadHandler forwarded(ReadHandler&& handler, const std::shared_ptr<DispatchQueue>& toQueue);
    WriteHandler forwarded(WriteHandler&& handler, const std::shared_ptr<DispatchQueue>& toQueue);
    void addRead(ReadOperation&& bytes, ReadHandler&& handler);
    void addWrite(Write&& write);
    void closeNow(Close how);

    void readable();
    void scheduleReading();
    void serveReads();
    bool mayReceive();
    void receive(ReadOperation& bytes);
    void receiveAhead();
    void receiveLarge(ReadOperation& bytes);
    bool isReceived(const StreamDescriptor::Transfer& transfer, size_t asked);
    void deliverPiece();
    void deliverRest();
    void endFirstRead(DispatchData&& data, int errnoValue);
    void failRead(int errnoValue);
    void arrangeReading();
    bool isPeerKeepingUp() const;

    int sendAtOnce(WriteOperation& bytes);
    void writable();
    void flushWrites();
    bool send();
    void retireWrites(size_t writtenBytes);
    void failWrite(int errnoValue);

    void endRead(ReadHandler& handler, DispatchData&& data, int errnoValue);
    void endReadLater(Read&& read, int errnoValue);
    void endWrite(WriteHandler&& handler, int errnoValue);
    void beginOperation();
    void finishOperation();
    void abandonOperations();
    void cleanUpIfEnded();
    void noteDescriptorError(int errnoValue);
    void listenFor(Notifier& notifier, QSocketNotifier::Type type, bool enabled);

    StreamDescriptor descriptor_;
    const std::shared_ptr<DispatchQueue> queue_;
    CleanupHandler cleanupHandler_;

    // Everything below: the queue's thread only.
    WaitingLine<Read> reads_;
    WaitingLine<Write> writes_;
    ReadAhead ahead_;
    size_t unwrittenBytes_ = 0;
    int operationCount_ = 0; ///< begun, and the last handler not yet returned
    int cleanupErrno_ = 0;
    bool isClosed_ = false;
    bool isStopped_ = false;
    bool isCleanupScheduled_ = false;
    bool isServing_ = false;          ///< reads are being served further up the stack
    bool isReadingScheduled_ = false; ///< a job will serve reads
    bool isDrained_ = false;          ///< the last read took all that the descriptor had
    bool hasWritten_ = false;         ///< something has left since a drained one was looked at
    Notifier readNotifier_;
    Notifier writeNotifier_;
    std::shared_ptr<DispatchIO> keptWhileBusy_;
};

} // namespace navrel
