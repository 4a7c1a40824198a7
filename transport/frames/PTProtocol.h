#pragma once

#include "support/core/Error.h"
#include "support/dispatch/DispatchData.h"
#include "support/dispatch/MoveOnlyFunction.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace navrel {

class DispatchIO;
class DispatchQueue;

/// Turns a byte stream into frames (PTFrame.h) and back. It schedules nothing by itself: every
/// operation is given the stream channel that it works on, and every callback runs on the
/// protocol's queue, later than the call. Failures of the stream are POSIX errors. No failure
/// closes the channel; that is up to the caller.
///
/// An operation holds the protocol until its callback has run. Used on the protocol's queue only.
class PTProtocol : public std::enable_shared_from_this<PTProtocol> {
    struct FrameLoop;

public:
    /// The most that is gathered of one payload. A request is a small dictionary and a reply has a
    /// few MiB, so a peer that really delivers more means no good, and is not to fill the memory.
    static constexpr size_t kLargestPayload = size_t{64} * 1024 * 1024;

    using SendCallback = std::function<void(const std::optional<Error>& error)>;

    /// Type 0 without an error is the end of the stream. With an error type, tag and size are 0.
    using FrameCallback = std::function<void(const std::optional<Error>& error, quint32 type,
                                             quint32 tag, quint32 payloadSize)>;

    /// The payload in one piece, with a pointer to its bytes and their count, which are valid as
    /// long as the data or a copy of it. No data and size 0, without
    /// an error, at the end of the stream.
    using PayloadCallback = MoveOnlyFunction<void(const std::optional<Error>& error,
                                                  std::optional<DispatchData> contiguousData,
                                                  const char* buffer, size_t bufferSize)>;

    using DiscardCallback =
        MoveOnlyFunction<void(const std::optional<Error>& error, bool endOfStream)>;

    /// Goes on with the loop that told of a frame, which it keeps alive until then. To be called
    /// once.
    class Resume {
    public:
        void operator()();

    private:
        friend class PTProtocol;
        Resume(std::shared_ptr<const FrameLoop> loop, quint32 type)
            : loop_(std::move(loop)), type_(type) {}

        std::shared_ptr<const FrameLoop> loop_;
        quint32 type_;
    };

    /// A frame as in FrameCallback. The callee must call `resume` once the payload has been read:
    /// only then is the next header read. After type 0, `resume` does nothing.
    using OnFrame = std::function<void(const std::optional<Error>& error, quint32 type, quint32 tag,
                                       quint32 payloadSize, Resume resume)>;

    /// A protocol on the given queue, which may be null: it is then no use before `setQueue`.
    static std::shared_ptr<PTProtocol> initWithDispatchQueue(std::shared_ptr<DispatchQueue> queue);

    /// A protocol on the main queue.
    static std::shared_ptr<PTProtocol> init();

    /// The one protocol that belongs to the queue, made on first use. The queue holds it, it does
    /// not hold the queue.
    static std::shared_ptr<PTProtocol>
    sharedProtocolForQueue(const std::shared_ptr<DispatchQueue>& queue);

    virtual ~PTProtocol() = default;
    PTProtocol(const PTProtocol&) = delete;
    PTProtocol& operator=(const PTProtocol&) = delete;

    const std::shared_ptr<DispatchQueue>& queue() const { return queue_; }
    virtual void setQueue(std::shared_ptr<DispatchQueue> queue) { queue_ = std::move(queue); }

    /// 1, 2, 3, …; after 4294967295 comes 0.
    quint32 newTag() { return ++nextFrameTag_; }

    /// A whole frame: header and payload, whose bytes are referred to. A payload of more than
    /// 4294967295 bytes stops the program.
    DispatchData
    createDispatchDataWithFrameOfType(quint32 type, quint32 frameTag,
                                      const std::optional<DispatchData>& payload) const;

    /// Writes one frame. The callback may be null.
    void sendFrameOfType(quint32 type, quint32 tag, std::optional<DispatchData> payload,
                         const std::shared_ptr<DispatchIO>& overChannel, SendCallback callback);

    /// Reads one header. A payload, if it announces one, comes next on the channel.
    void readFrameOverChannel(const std::shared_ptr<DispatchIO>& channel, FrameCallback callback);

    /// Reads exactly `size` bytes, into one buffer that grows as they arrive. More than
    /// `kLargestPayload` end at once with the POSIX error ENOMEM, none of them read.
    void readPayloadOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                           PayloadCallback callback);

    /// Reads exactly `size` bytes and keeps none. The callback may be null.
    void readAndDiscardDataOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                                  DiscardCallback callback);

    /// Reads headers, one after the other, until the stream ends, an operation fails, or `resume`
    /// is dropped uncalled.
    void readFramesOverChannel(const std::shared_ptr<DispatchIO>& channel, OnFrame onFrame);

protected:
    explicit PTProtocol(std::shared_ptr<DispatchQueue> queue) : queue_(std::move(queue)) {}

    std::shared_ptr<DispatchQueue> queue_;
    quint32 nextFrameTag_ = 0;

private:
    void refusePayload(PayloadCallback callback);
    static void readNextFrame(std::shared_ptr<const FrameLoop> loop);
};

/// The protocol that belongs to one queue: the queue owns it, so it refers to the queue without
/// keeping it alive, and it can never be moved to another one.
class RQueueLocalIOFrameProtocol final : public PTProtocol {
public:
    explicit RQueueLocalIOFrameProtocol(DispatchQueue& queue);

    /// Does nothing.
    void setQueue(std::shared_ptr<DispatchQueue>) override {}

    /// The queue goes away; there is none from now on.
    void forgetQueue() { queue_ = nullptr; }
};

} // namespace navrel
