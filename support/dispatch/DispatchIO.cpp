#include "support/dispatch/DispatchIO.h"

#include "support/Assertion.h"
#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/ReadOperation.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace navrel {

namespace {

/// What one event may do before the event loop gets its turn again, so that a busy peer starves
/// nobody.
constexpr int kReceivesAnEvent = 4;
constexpr int kDeliveriesAnEvent = 64;
constexpr int kSendsAnEvent = 4;

/// Regions that one system call writes; further ones go with the next.
constexpr size_t kRegionsASend = 64;

/// The regions of one system call.
class Vectors {
public:
    bool isFull() const { return count_ == vectors_.size(); }
    void add(const char* bytes, size_t size) {
        vectors_[count_++] = {const_cast<char*>(bytes), size}; // writing only reads them
        size_ += size;
    }
    std::span<const iovec> all() const { return {vectors_.data(), count_}; }
    size_t size() const { return size_; }

private:
    std::array<iovec, kRegionsASend> vectors_;
    size_t count_ = 0;
    size_t size_ = 0;
};

} // namespace

struct DispatchIO::Read {
    Read(quint64 length, size_t largestPiece, std::shared_ptr<DispatchQueue> handlerQueue,
         ReadHandler readHandler)
        : bytes(length, largestPiece), queue(std::move(handlerQueue)),
          handler(std::move(readHandler)) {}

    ReadOperation bytes;
    std::shared_ptr<DispatchQueue> queue;
    ReadHandler handler;
};

struct DispatchIO::Write {
    Write(const DispatchData& bytes, std::shared_ptr<DispatchQueue> handlerQueue,
          WriteHandler writeHandler)
        : data(bytes), queue(std::move(handlerQueue)), handler(std::move(writeHandler)),
          unwritten(data.size()) {}

    /// Adds what is not written yet.
    void gather(Vectors& vectors) const;

    /// Up to `count` more bytes are written; returns how many of them are this write's.
    size_t advance(size_t count);

    DispatchData data;
    std::shared_ptr<DispatchQueue> queue;
    WriteHandler handler;
    size_t unwritten;
    size_t region = 0; ///< the first one with unwritten bytes
    size_t offset = 0; ///< bytes of it that are written
};

void DispatchIO::Write::gather(Vectors& vectors) const {
    size_t skipped = offset;
    for (const DispatchData::Region& next : data.regions().subspan(region)) {
        if (vectors.isFull()) {
            return;
        }
        vectors.add(next.bytes.get() + skipped, next.size - skipped);
        skipped = 0;
    }
}

size_t DispatchIO::Write::advance(size_t count) {
    const size_t mine = std::min(count, unwritten);
    unwritten -= mine;
    offset += mine;
    const auto regions = data.regions();
    while (region < regions.size() && offset >= regions[region].size) {
        offset -= regions[region++].size;
    }
    return mine;
}

std::shared_ptr<DispatchIO> DispatchIO::create(int descriptor, std::shared_ptr<DispatchQueue> queue,
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
        new DispatchIO(*adopted, std::move(queue), std::move(cleanupHandler)));
}

DispatchIO::DispatchIO(StreamDescriptor descriptor, std::shared_ptr<DispatchQueue> queue,
                       CleanupHandler cleanupHandler)
    : descriptor_(descriptor), queue_(std::move(queue)),
      cleanupHandler_(std::move(cleanupHandler)) {}

DispatchIO::~DispatchIO() {
    if (cleanupHandler_) { // dropped without having been closed
        queue_->async([handler = std::move(cleanupHandler_), errnoValue = cleanupErrno_] {
            handler(errnoValue);
        });
    }
}

// Operations: beginning, ending, closing.

void DispatchIO::read(quint64 length, std::shared_ptr<DispatchQueue> handlerQueue,
                      ReadHandler handler, size_t largestPiece) {
    NAVREL_ASSERT(handlerQueue != nullptr);
    const auto read =
        std::make_shared<Read>(length, largestPiece, std::move(handlerQueue), std::move(handler));
    if (queue_->isCurrentThread()) {
        addRead(read);
    } else {
        queue_->async([self = shared_from_this(), read] { self->addRead(read); });
    }
}

void DispatchIO::write(const DispatchData& data, std::shared_ptr<DispatchQueue> handlerQueue,
                       WriteHandler handler) {
    NAVREL_ASSERT(handlerQueue != nullptr);
    const auto write = std::make_shared<Write>(data, std::move(handlerQueue), std::move(handler));
    if (queue_->isCurrentThread()) {
        addWrite(write);
    } else {
        queue_->async([self = shared_from_this(), write] { self->addWrite(write); });
    }
}

void DispatchIO::close(Close how) {
    if (queue_->isCurrentThread()) {
        closeNow(how);
    } else {
        queue_->async([self = shared_from_this(), how] { self->closeNow(how); });
    }
}

void DispatchIO::addRead(const std::shared_ptr<Read>& read) {
    beginOperation();
    if (isClosed_) {
        queue_->async([self = shared_from_this(), read] { self->endRead(read, {}, ECANCELED); });
        return;
    }
    reads_.push_back(read);
    if (!isServing_) {
        arrangeReading();
    }
}

void DispatchIO::addWrite(const std::shared_ptr<Write>& write) {
    beginOperation();
    if (isClosed_) {
        endWrite(write, ECANCELED);
        return;
    }
    const bool isFirst = writes_.empty();
    writes_.push_back(write);
    unwrittenBytes_ += write->data.size();
    if (isFirst) {
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
    const auto self = shared_from_this();
    for (const auto& read : std::exchange(reads_, {})) {
        queue_->async([self, read] { self->endRead(read, read->bytes.takePiece(), ECANCELED); });
    }
    for (const auto& write : std::exchange(writes_, {})) {
        endWrite(write, ECANCELED);
    }
    unwrittenBytes_ = 0;
    arrangeReading();
    listenFor(writeNotifier_, QSocketNotifier::Write, false);
}

void DispatchIO::beginOperation() {
    ++operationCount_;
    keptWhileBusy_ = shared_from_this();
}

void DispatchIO::finishOperation() {
    const auto self = std::move(keptWhileBusy_);
    if (--operationCount_ > 0) {
        keptWhileBusy_ = self;
    }
    cleanUpIfEnded();
}

// As a job of the channel's queue. Calls the handler there or on the queue that it asked for.
void DispatchIO::endRead(const std::shared_ptr<Read>& read, const DispatchData& data,
                         int errnoValue) {
    noteDescriptorError(errnoValue);
    if (read->queue == queue_) {
        read->handler(true, data, errnoValue);
        finishOperation();
        return;
    }
    read->queue->async([self = shared_from_this(), read, data, errnoValue] {
        read->handler(true, data, errnoValue);
        self->queue_->async([self] { self->finishOperation(); });
    });
}

// Possibly inside the call that writes, so the handler always gets a job of its own.
void DispatchIO::endWrite(const std::shared_ptr<Write>& write, int errnoValue) {
    noteDescriptorError(errnoValue);
    if (!write->handler) {
        finishOperation();
        return;
    }
    write->queue->async([self = shared_from_this(), write, errnoValue] {
        write->handler(errnoValue);
        if (self->queue_->isCurrentThread()) {
            self->finishOperation();
        } else {
            self->queue_->async([self] { self->finishOperation(); });
        }
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
        if (const auto handler = std::exchange(self->cleanupHandler_, nullptr)) {
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
    int receivesLeft = kReceivesAnEvent;
    int deliveriesLeft = kDeliveriesAnEvent;
    bool mayHaveMore = true; // whether the system may have bytes that it has not given yet
    while (!reads_.empty() && isPeerKeepingUp()) {
        ReadOperation& bytes = reads_.front()->bytes;
        const auto taken = bytes.take(ahead_.waiting());
        if (!taken) {
            failRead(ENOMEM);
            continue;
        }
        ahead_.taken(*taken);
        if (bytes.isPieceComplete()) {
            if (deliveriesLeft-- == 0) {
                break;
            }
            deliverPiece();
            continue;
        }
        if (!mayHaveMore || receivesLeft-- == 0) {
            break;
        }
        mayHaveMore = receive(bytes);
    }
    isServing_ = false;
    arrangeReading();
}

// One system call for the first read and whatever comes behind it. Returns whether another one may
// find more: a short read has emptied the descriptor.
bool DispatchIO::receive(ReadOperation& bytes) {
    const std::span<char> own = bytes.room();
    if (own.empty()) {
        failRead(ENOMEM);
        return true;
    }
    const std::span<char> ahead = own.size() == bytes.missing() ? ahead_.room() : std::span<char>();
    const std::array<iovec, 2> buffers = {iovec{own.data(), own.size()},
                                          iovec{ahead.data(), ahead.size()}};
    const auto transfer = descriptor_.read(buffers);
    if (transfer.wouldBlock()) {
        return false;
    }
    if (transfer.errnoValue != 0) {
        failRead(transfer.errnoValue);
        return true;
    }
    if (transfer.count == 0) {
        deliverEndOfStream();
        return true;
    }
    const size_t ownCount = std::min(transfer.count, own.size());
    bytes.filled(ownCount);
    ahead_.filled(transfer.count - ownCount);
    return transfer.count == own.size() + ahead.size();
}

void DispatchIO::deliverPiece() {
    const std::shared_ptr<Read> read = reads_.front();
    const bool isLast = read->bytes.isLastPiece();
    const DispatchData piece = read->bytes.takePiece();
    if (isLast) {
        reads_.pop_front();
        endRead(read, piece, 0);
    } else {
        deliver(read, piece);
    }
}

void DispatchIO::deliver(const std::shared_ptr<Read>& read, const DispatchData& piece) const {
    if (read->queue == queue_) {
        read->handler(false, piece, 0);
    } else {
        read->queue->async([read, piece] { read->handler(false, piece, 0); });
    }
}

void DispatchIO::deliverEndOfStream() {
    const std::shared_ptr<Read> read = reads_.front();
    reads_.pop_front();
    const DispatchData rest = read->bytes.takePiece();
    if (!rest.isEmpty()) {
        deliver(read, rest);
    }
    endRead(read, {}, 0);
}

void DispatchIO::failRead(int errnoValue) {
    const std::shared_ptr<Read> read = reads_.front();
    reads_.pop_front();
    endRead(read, read->bytes.takePiece(), errnoValue);
}

// Sees to it that pending reads go on: by a job if they need nothing from the descriptor, else when
// it becomes readable.
void DispatchIO::arrangeReading() {
    const bool wanted = !reads_.empty() && !isReadingScheduled_ && isPeerKeepingUp();
    const bool needsDescriptor =
        wanted && ahead_.isEmpty() && !reads_.front()->bytes.isPieceComplete();
    listenFor(readNotifier_, QSocketNotifier::Read, needsDescriptor);
    if (wanted && !needsDescriptor) {
        scheduleReading();
    }
}

// Writing.

void DispatchIO::flushWrites() {
    const auto self = shared_from_this();
    for (int sends = 0; sends < kSendsAnEvent && !writes_.empty(); ++sends) {
        if (!send()) {
            break;
        }
    }
    listenFor(writeNotifier_, QSocketNotifier::Write, !writes_.empty());
    if (!isServing_) {
        arrangeReading(); // the peer may have read enough to be read from again
    }
}

// One system call for as many writes as it can take. Returns whether another one may write more.
bool DispatchIO::send() {
    Vectors vectors;
    for (auto write = writes_.cbegin(); write != writes_.cend() && !vectors.isFull(); ++write) {
        (*write)->gather(vectors);
    }
    const auto transfer =
        vectors.size() > 0 ? descriptor_.write(vectors.all()) : StreamDescriptor::Transfer{};
    if (transfer.wouldBlock()) {
        return false;
    }
    if (transfer.errnoValue != 0) {
        failWrite(transfer.errnoValue);
        return true;
    }
    retireWrites(transfer.count);
    return transfer.count == vectors.size();
}

void DispatchIO::retireWrites(size_t writtenBytes) {
    unwrittenBytes_ -= writtenBytes;
    while (!writes_.empty()) {
        const std::shared_ptr<Write> write = writes_.front();
        writtenBytes -= write->advance(writtenBytes);
        if (write->unwritten > 0) {
            return;
        }
        writes_.pop_front();
        endWrite(write, 0);
    }
}

void DispatchIO::failWrite(int errnoValue) {
    const std::shared_ptr<Write> write = writes_.front();
    writes_.pop_front();
    unwrittenBytes_ -= write->unwritten;
    endWrite(write, errnoValue);
}

bool DispatchIO::isPeerKeepingUp() const {
    return unwrittenBytes_ <= kMostUnwrittenBytes && writes_.size() <= kMostUnwrittenWrites;
}

void DispatchIO::listenFor(Notifier& notifier, QSocketNotifier::Type type, bool enabled) {
    if (!notifier) {
        if (!enabled) {
            return;
        }
        notifier.reset(new QSocketNotifier(descriptor_.value(), type));
        const auto activated =
            type == QSocketNotifier::Read ? &DispatchIO::readable : &DispatchIO::flushWrites;
        QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                         [this, activated] { (this->*activated)(); });
    }
    if (notifier->isEnabled() != enabled) {
        notifier->setEnabled(enabled);
    }
}

} // namespace navrel
