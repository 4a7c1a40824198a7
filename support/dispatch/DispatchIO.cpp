#include "support/dispatch/DispatchIO.h"

#include "support/core/Assertion.h"
#include "support/dispatch/DispatchQueue.h"

#include <QEvent>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace navrel {

namespace {

// What one event may do before the event loop gets its turn again, so that a busy peer starves
// nobody.
constexpr int kReceivesAnEvent = 64;
constexpr int kDeliveriesAnEvent = 64;
constexpr int kSendsAnEvent = 16;

// Read behind a large piece: enough for the header that follows it, little enough that the payload
// behind that one goes straight into its own buffer.
constexpr size_t kAheadOfLargePiece = 4096;

/// Calls back from its event: a signal would take as long again as all of the event loop's part.
class CallingNotifier final : public QSocketNotifier {
public:
    using Callback = MoveOnlyFunction<void(), sizeof(void*) * 3>;

    CallingNotifier(int descriptor, Type type, Callback callback)
        : QSocketNotifier(descriptor, type), callback_(std::move(callback)) {}

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::SockAct) {
            return QSocketNotifier::event(event);
        }
        callback_();
        return true;
    }

private:
    Callback callback_;
};

} // namespace

std::shared_ptr<DispatchIO> DispatchIO::create(int descriptor,
                                               const std::shared_ptr<DispatchQueue>& queue,
                                               CleanupHandler cleanupHandler) {
    if (!queue) {
        errno = EINVAL;
        return nullptr;
    }
    const auto adopted = StreamDescriptor::adopt(descriptor);
    if (!adopted) {
        return nullptr;
    }
    return std::shared_ptr<DispatchIO>(
        new DispatchIO(*adopted, queue->shared_from_this(), std::move(cleanupHandler)));
}

DispatchIO::DispatchIO(StreamDescriptor descriptor, std::shared_ptr<DispatchQueue> queue,
                       CleanupHandler cleanupHandler)
    : descriptor_(descriptor), queue_(std::move(queue)),
      cleanupHandler_(std::move(cleanupHandler)) {}

DispatchIO::~DispatchIO() {
    if (cleanupHandler_) { // dropped without having been closed
        queue_->async([handler = std::move(cleanupHandler_), errnoValue = cleanupErrno_]() mutable {
            handler(errnoValue);
        });
    }
}

// Operations: beginning, ending, closing.

void DispatchIO::read(quint64 length, const std::shared_ptr<DispatchQueue>& handlerQueue,
                      ReadHandler&& handler, size_t largestPiece) {
    NAVREL_ASSERT(handlerQueue != nullptr);
    if (handlerQueue != queue_) {
        handler = forwarded(std::move(handler), handlerQueue);
    }
    if (queue_->isCurrentThread()) {
        addRead(ReadOperation(length, largestPiece), std::move(handler));
        return;
    }
    queue_->async(
        [self = shared_from_this(), length, largestPiece, handler = std::move(handler)]() mutable {
            self->addRead(ReadOperation(length, largestPiece), std::move(handler));
        });
}

std::optional<DispatchData> DispatchIO::takeReadAhead(size_t length) {
    if (!queue_->isCurrentThread() || isClosed_ || !reads_.empty() ||
        ahead_.waiting().size() < length) {
        return std::nullopt;
    }
    auto taken = ahead_.takeShared(length);
    const char* bytes = taken.get();
    return DispatchData::sharing({std::move(taken), bytes}, length);
}

void DispatchIO::write(DispatchData data, const std::shared_ptr<DispatchQueue>& handlerQueue,
                       WriteHandler&& handler) {
    write(WritePrefix(), std::move(data), handlerQueue, std::move(handler));
}

void DispatchIO::write(const WritePrefix& prefix, DispatchData&& data,
                       const std::shared_ptr<DispatchQueue>& handlerQueue, WriteHandler&& handler) {
    NAVREL_ASSERT(handlerQueue != nullptr);
    if (handler && handlerQueue != queue_) {
        handler = forwarded(std::move(handler), handlerQueue);
    }
    Write write = {WriteOperation(prefix, std::move(data)), std::move(handler)};
    if (queue_->isCurrentThread()) {
        addWrite(std::move(write));
        return;
    }
    queue_->async([self = shared_from_this(), write = std::move(write)]() mutable {
        self->addWrite(std::move(write));
    });
}

// A handler for the channel's queue that calls the given one on another queue. The operation has
// not ended before that one has returned.
DispatchIO::ReadHandler DispatchIO::forwarded(ReadHandler&& handler,
                                              const std::shared_ptr<DispatchQueue>& toQueue) {
    return [self = shared_from_this(), queue = toQueue->shared_from_this(),
            original = std::make_shared<ReadHandler>(std::move(handler))](
               bool done, const DispatchData& data, int errnoValue) {
        self->beginOperation();
        queue->async([self, original, done, data, errnoValue] {
            (*original)(done, data, errnoValue);
            self->queue_->async([self] { self->finishOperation(); });
        });
    };
}

DispatchIO::WriteHandler DispatchIO::forwarded(WriteHandler&& handler,
                                               const std::shared_ptr<DispatchQueue>& toQueue) {
    return [self = shared_from_this(), queue = toQueue->shared_from_this(),
            original = std::move(handler)](int errnoValue) mutable {
        self->beginOperation();
        queue->async([self, original = std::move(original), errnoValue]() mutable {
            original(errnoValue);
            self->queue_->async([self] { self->finishOperation(); });
        });
    };
}

void DispatchIO::close(Close how) {
    if (queue_->isCurrentThread()) {
        closeNow(how);
    } else {
        queue_->async([self = shared_from_this(), how] { self->closeNow(how); });
    }
}

void DispatchIO::addRead(ReadOperation&& bytes, ReadHandler&& handler) {
    beginOperation();
    if (isClosed_) {
        endReadLater({std::move(bytes), std::move(handler)}, ECANCELED);
        return;
    }
    reads_.emplaceBack(std::move(bytes), std::move(handler));
    if (!isServing_) {
        arrangeReading();
    }
}

void DispatchIO::addWrite(Write&& write) {
    beginOperation();
    if (isClosed_) {
        endWrite(std::move(write.handler), ECANCELED);
        return;
    }
    const bool isOnly = writes_.empty();
    if (isOnly) { // mostly there is room for all of it, so that it need not get in line
        const int errnoValue = sendAtOnce(write.bytes);
        if (errnoValue != 0 || write.bytes.unwritten() == 0) {
            endWrite(std::move(write.handler), errnoValue);
            return;
        }
    }
    unwrittenBytes_ += write.bytes.unwritten();
    writes_.emplaceBack(std::move(write));
    if (isOnly) {
        flushWrites();
    }
}

void DispatchIO::closeNow(Close how) {
    isClosed_ = true;
    if (how == Close::stop) {
        abandonOperations();
    }
    cleanUpIfEnded();
}

void DispatchIO::abandonOperations() {
    isStopped_ = true;
    while (!reads_.empty()) {
        endReadLater(reads_.takeFront(), ECANCELED);
    }
    while (!writes_.empty()) {
        Write write = writes_.takeFront();
        endWrite(std::move(write.handler), ECANCELED);
    }
    unwrittenBytes_ = 0;
    arrangeReading();
    listenFor(writeNotifier_, QSocketNotifier::Write, false);
}

void DispatchIO::beginOperation() {
    if (operationCount_++ == 0) {
        keptWhileBusy_ = shared_from_this();
    }
}

void DispatchIO::finishOperation() {
    if (--operationCount_ == 0) {
        const auto self = std::move(keptWhileBusy_);
        cleanUpIfEnded();
    }
}

// As a job of the queue.
void DispatchIO::endRead(ReadHandler& handler, DispatchData&& data, int errnoValue) {
    noteDescriptorError(errnoValue);
    handler(true, std::move(data), errnoValue);
    finishOperation();
}

// Inside a call, so the handler gets a job of its own.
void DispatchIO::endReadLater(Read&& read, int errnoValue) {
    queue_->async([self = shared_from_this(), read = std::move(read), errnoValue]() mutable {
        self->endRead(read.handler, read.bytes.takePiece(), errnoValue);
    });
}

// Possibly inside a call, so the handler gets a job of its own.
void DispatchIO::endWrite(WriteHandler&& handler, int errnoValue) {
    noteDescriptorError(errnoValue);
    if (!handler) {
        finishOperation();
        return;
    }
    queue_->async([self = shared_from_this(), handler = std::move(handler), errnoValue]() mutable {
        handler(errnoValue);
        self->finishOperation();
    });
}

void DispatchIO::cleanUpIfEnded() {
    if (!isClosed_ || operationCount_ > 0 || isCleanupScheduled_) {
        return;
    }
    isCleanupScheduled_ = true;
    queue_->async([self = shared_from_this()] {
        self->readNotifier_.reset();
        self->writeNotifier_.reset();
        self->descriptor_.forget();
        if (auto handler = std::exchange(self->cleanupHandler_, nullptr)) {
            handler(self->cleanupErrno_);
        }
    });
}

void DispatchIO::noteDescriptorError(int errnoValue) {
    if (errnoValue == EBADF) {
        cleanupErrno_ = errnoValue;
    }
}

// Reading.

void DispatchIO::readable() {
    const auto self = shared_from_this();
    if (!queue_->tryPerform([this] { serveReads(); })) {
        scheduleReading();
    }
}

// Until the job has run the descriptor is not watched: it stays readable, and would be told of at
// every turn of the event loop.
void DispatchIO::scheduleReading() {
    isReadingScheduled_ = true;
    arrangeReading();
    queue_->async([self = shared_from_this()] {
        self->isReadingScheduled_ = false;
        self->serveReads();
    });
}

// As a job of the queue, so handlers are called from here. They may begin operations and close the
// channel; nothing but the members holds over such a call.
void DispatchIO::serveReads() {
    isServing_ = true;
    isDrained_ = false;
    int receivesLeft = kReceivesAnEvent;
    int deliveriesLeft = kDeliveriesAnEvent;
    while (!reads_.empty() && isPeerKeepingUp()) {
        ReadOperation& bytes = reads_.front().bytes;
        if (!bytes.take(ahead_)) {
            failRead(ENOMEM);
        } else if (bytes.isPieceComplete()) {
            if (deliveriesLeft-- == 0) {
                break;
            }
            deliverPiece();
        } else if (receivesLeft-- > 0 && mayReceive()) {
            receive(bytes);
        } else {
            break;
        }
    }
    isServing_ = false;
    arrangeReading();
}

// Whether another read may find something. A peer that has just been answered may have gone on
// while the answer was written; looking for that here costs far less than the way through the event
// loop.
bool DispatchIO::mayReceive() {
    return !isDrained_ || std::exchange(hasWritten_, false);
}

// One system call.
void DispatchIO::receive(ReadOperation& bytes) {
    if (bytes.isLarge()) {
        receiveLarge(bytes);
    } else {
        receiveAhead();
    }
}

void DispatchIO::receiveAhead() {
    const std::span<char> room = ahead_.room();
    const auto transfer = descriptor_.read(room);
    if (isReceived(transfer, room.size())) {
        ahead_.filled(transfer.count);
    }
}

void DispatchIO::receiveLarge(ReadOperation& bytes) {
    const std::span<char> own = bytes.room();
    if (own.empty()) {
        failRead(ENOMEM);
        return;
    }
    const size_t aheadSize = own.size() == bytes.missing() ? kAheadOfLargePiece : 0;
    const std::array<iovec, 2> buffers = {iovec{own.data(), own.size()},
                                          iovec{ahead_.room().data(), aheadSize}};
    const auto transfer = descriptor_.read(buffers);
    if (isReceived(transfer, own.size() + aheadSize)) {
        const size_t ownCount = std::min(transfer.count, own.size());
        bytes.filled(ownCount);
        ahead_.filled(transfer.count - ownCount);
    }
}

// Whether there are bytes to keep. If not, the first read may have ended.
bool DispatchIO::isReceived(const StreamDescriptor::Transfer& transfer, size_t asked) {
    isDrained_ = transfer.wouldBlock() || (transfer.count > 0 && transfer.count < asked);
    if (transfer.count == 0 && !transfer.wouldBlock()) {
        if (transfer.errnoValue != 0) {
            failRead(transfer.errnoValue);
        } else {
            deliverRest();
        }
    }
    return transfer.count > 0;
}

void DispatchIO::deliverPiece() {
    const bool isLast = reads_.front().bytes.isLastPiece();
    DispatchData piece = reads_.front().bytes.takePiece();
    if (isLast) {
        endFirstRead(std::move(piece), 0);
        return;
    }
    Read read = reads_.takeFront(); // out of reach of whatever the handler does
    read.handler(false, std::move(piece), 0);
    if (isStopped_) {
        endReadLater(std::move(read), ECANCELED);
    } else {
        reads_.pushFront(std::move(read));
    }
}

// At the end of the stream.
void DispatchIO::deliverRest() {
    DispatchData rest = reads_.front().bytes.takePiece();
    Read read = reads_.takeFront();
    if (!rest.isEmpty()) {
        read.handler(false, std::move(rest), 0);
    }
    endRead(read.handler, {}, 0);
}

void DispatchIO::failRead(int errnoValue) {
    endFirstRead(reads_.front().bytes.takePiece(), errnoValue);
}

void DispatchIO::endFirstRead(DispatchData&& data, int errnoValue) {
    ReadHandler handler = std::move(reads_.front().handler); // its data has been taken
    reads_.dropFront();
    endRead(handler, std::move(data), errnoValue);
}

// Sees to it that pending reads go on: by a job if they need nothing from the descriptor, else when
// it becomes readable.
void DispatchIO::arrangeReading() {
    const bool wanted = !reads_.empty() && !isReadingScheduled_ && isPeerKeepingUp();
    const bool needsDescriptor =
        wanted && ahead_.isEmpty() && !reads_.front().bytes.isPieceComplete();
    listenFor(readNotifier_, QSocketNotifier::Read, needsDescriptor);
    if (wanted && !needsDescriptor) {
        scheduleReading();
    }
}

bool DispatchIO::isPeerKeepingUp() const {
    return unwrittenBytes_ <= kMostUnwrittenBytes && writes_.size() <= kMostUnwrittenWrites;
}

// Writing.

void DispatchIO::writable() {
    const auto self = shared_from_this(); // the last write to end lets go of it
    flushWrites();
}

void DispatchIO::flushWrites() {
    for (int sendsLeft = kSendsAnEvent; sendsLeft > 0 && !writes_.empty() && send(); --sendsLeft) {
    }
    listenFor(writeNotifier_, QSocketNotifier::Write, !writes_.empty());
    if (!isServing_) {
        arrangeReading(); // the peer may have read enough to be read from again
    }
}

// One system call for one write. Returns why it failed; no room is no failure.
int DispatchIO::sendAtOnce(WriteOperation& bytes) {
    WriteVectors vectors;
    bytes.gather(vectors);
    if (vectors.size() == 0) {
        return 0;
    }
    const auto transfer = descriptor_.write(vectors.all());
    hasWritten_ = hasWritten_ || transfer.count > 0;
    bytes.advance(transfer.count);
    return transfer.wouldBlock() ? 0 : transfer.errnoValue;
}

// One system call for as many writes as it can take. Returns whether another one may write more.
bool DispatchIO::send() {
    WriteVectors vectors;
    for (auto write = writes_.begin(); write != writes_.end() && !vectors.isFull(); ++write) {
        write->bytes.gather(vectors);
    }
    StreamDescriptor::Transfer transfer;
    if (vectors.size() > 0) {
        transfer = descriptor_.write(vectors.all());
    }
    if (transfer.wouldBlock()) {
        return false;
    }
    if (transfer.errnoValue != 0) {
        failWrite(transfer.errnoValue);
        return true;
    }
    hasWritten_ = true;
    retireWrites(transfer.count);
    return transfer.count == vectors.size();
}

void DispatchIO::retireWrites(size_t writtenBytes) {
    unwrittenBytes_ -= writtenBytes;
    while (!writes_.empty()) {
        Write& write = writes_.front();
        writtenBytes -= write.bytes.advance(writtenBytes);
        if (write.bytes.unwritten() > 0) {
            return;
        }
        Write written = writes_.takeFront(); // its data may run a destructor of the caller's
        endWrite(std::move(written.handler), 0);
    }
}

void DispatchIO::failWrite(int errnoValue) {
    Write failed = writes_.takeFront();
    unwrittenBytes_ -= failed.bytes.unwritten();
    endWrite(std::move(failed.handler), errnoValue);
}

void DispatchIO::listenFor(Notifier& notifier, QSocketNotifier::Type type, bool enabled) {
    if (!notifier) {
        if (!enabled) {
            return;
        }
        const auto activated =
            type == QSocketNotifier::Read ? &DispatchIO::readable : &DispatchIO::writable;
        notifier.reset(new CallingNotifier(descriptor_.value(), type,
                                           [this, activated] { (this->*activated)(); }));
    }
    if (notifier->isEnabled() != enabled) {
        notifier->setEnabled(enabled);
    }
}

} // namespace navrel
