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

/// Reads and writes frames (PTFrame.h) on stream channels. It keeps no channel: every operation
/// gets the one to work on. Callbacks run on the protocol's queue, after the call has returned.
/// Failures of the stream are POSIX errors. No failure closes the channel; that is up to the
/// caller.
///
/// An operation keeps the protocol alive until its callback has run. Must be used on the protocol's
/// queue only.
class PTProtocol : public std::enable_shared_from_this<PTProtocol> {
    struct FrameLoop;

public:
    /// The largest payload in bytes that is read. A request is a small dictionary, and a reply has
    /// a few MiB: a peer that sends more is hostile, and must not fill the memory.
    static constexpr size_t kLargestPayload = size_t{64} * 1024 * 1024;

    using SendCallback = std::function<void(const std::optional<Error>& error)>;

    /// Type 0 without an error means the end of the stream. With an error, type, tag and size are
    /// 0.
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

    /// Continues the loop that reported a frame, and keeps it alive until then. Must be called at
    /// most once.
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

    /// A protocol on the given queue. If that is null, it must not be used before `setQueue`.
    static std::shared_ptr<PTProtocol> initWithDispatchQueue(std::shared_ptr<DispatchQueue> queue);

    /// A protocol on the main queue.
    static std::shared_ptr<PTProtocol> init();

    /// The one protocol that belongs to the queue, made on first use. The queue owns it; it does
    /// not keep the queue alive.
    static std::shared_ptr<PTProtocol>
    sharedProtocolForQueue(const std::shared_ptr<DispatchQueue>& queue);

    virtual ~PTProtocol() = default;
    PTProtocol(const PTProtocol&) = delete;
    PTProtocol& operator=(const PTProtocol&) = delete;

    const std::shared_ptr<DispatchQueue>& queue() const { return queue_; }
    virtual void setQueue(std::shared_ptr<DispatchQueue> queue) { queue_ = std::move(queue); }

    /// 1, 2, 3, …; after 4294967295 comes 0.
    quint32 newTag() { return ++nextFrameTag_; }

    /// A whole frame: header and payload, whose bytes are not copied. A payload of more than
    /// 4294967295 bytes aborts the program.
    DispatchData
    createDispatchDataWithFrameOfType(quint32 type, quint32 frameTag,
                                      const std::optional<DispatchData>& payload) const;

    /// Writes one frame. The callback may be null.
    void sendFrameOfType(quint32 type, quint32 tag, std::optional<DispatchData> payload,
                         const std::shared_ptr<DispatchIO>& overChannel, SendCallback callback);

    /// Reads one header. If it announces a payload, the caller must read or skip that next.
    void readFrameOverChannel(const std::shared_ptr<DispatchIO>& channel, FrameCallback callback);

    /// Reads exactly `size` bytes, into one buffer that grows as they arrive. If `size` is more
    /// than `kLargestPayload`, reads nothing and fails at once with the POSIX error ENOMEM.
    void readPayloadOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                           PayloadCallback callback);

    /// Reads exactly `size` bytes and discards them. The callback may be null.
    void readAndDiscardDataOfSize(size_t size, const std::shared_ptr<DispatchIO>& overChannel,
                                  DiscardCallback callback);

    /// Reads headers, one after another, until the stream ends, an operation fails, or a `resume`
    /// is destroyed without having been called.
    void readFramesOverChannel(const std::shared_ptr<DispatchIO>& channel, OnFrame onFrame);

protected:
    explicit PTProtocol(std::shared_ptr<DispatchQueue> queue) : queue_(std::move(queue)) {}

    std::shared_ptr<DispatchQueue> queue_;
    quint32 nextFrameTag_ = 0;

private:
    void refusePayload(PayloadCallback callback);
    static void readNextFrame(std::shared_ptr<const FrameLoop> loop);
};

/// The protocol that belongs to one queue. The queue owns it, so it does not keep the queue alive,
/// and cannot be given another queue.
class RQueueLocalIOFrameProtocol final : public PTProtocol {
public:
    explicit RQueueLocalIOFrameProtocol(DispatchQueue& queue);

    /// Does nothing.
    void setQueue(std::shared_ptr<DispatchQueue>) override {}

    /// Called when the queue is destroyed: there is none from now on.
    void forgetQueue() { queue_ = nullptr; }
};

} // namespace navrel
