#pragma once

#include "support/dispatch/DispatchIO.h"
#include "tests/WaitUntil.h"
#include "tests/transport/RawPeer.h"
#include "tests/transport/RecordingDelegate.h"
#include "transport/frames/PTChannel.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace navrel {

inline constexpr quint16 kPort = 2345;
inline constexpr quint32 kLoopback = 2130706433; // 127.0.0.1

/// A channel that connects to a raw peer. At the end of each test it must have ended exactly once.
class ChannelTest : public testing::Test {
protected:
    void connect() {
        const RawListener listener(kPort);
        channel_ = PTChannel::channelWithDelegate(delegate_);
        channel_->connectToPort(kPort, kLoopback,
                                [this](const std::optional<Error>& error,
                                       const std::shared_ptr<const PTAddress>& address) {
                                    EXPECT_EQ(error, std::nullopt);
                                    address_ = address;
                                });
        ASSERT_NE(address_, nullptr);
        peer_ = listener.accept();
    }

    void TearDown() override {
        if (channel_) {
            channel_->close();
            EXPECT_TRUE(waitForEnd());
            settle();
            EXPECT_EQ(delegate_->ends.size(), 1U);
        }
    }

    bool waitForFrames(size_t count) {
        return waitUntil([&] { return delegate_->frames.size() >= count; });
    }

    bool waitForEnd() {
        return waitUntil([&] { return !delegate_->ends.empty(); });
    }

    /// What is under way has had every chance to happen.
    static void settle() {
        for (int turn = 0; turn < 5; ++turn) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
    }

    /// Everything that the peer receives, until it has that many bytes.
    QByteArray peerReceives(qsizetype size) {
        QByteArray received;
        EXPECT_TRUE(waitUntil([&] {
            received += peer_.receive();
            return received.size() >= size;
        }));
        return received;
    }

    std::shared_ptr<RecordingDelegate> delegate_ = std::make_shared<RecordingDelegate>();
    std::shared_ptr<PTChannel> channel_;
    std::shared_ptr<const PTAddress> address_;
    RawPeer peer_;
};

} // namespace navrel
