#include "tests/transport/FullListener.h"
#include "transport/frames/PTChannel.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <cerrno>

namespace navrel {
namespace {

constexpr quint16 kPort = 2345;

TEST(PTChannelTimeout, aPeerThatDoesNotAnswerHoldsTheCallerForSecondsNotMinutes) {
    const FullListener listener(kPort);
    ASSERT_TRUE(listener.isFull());
    const auto channel = PTChannel::init();
    std::optional<Error> outcome;
    QElapsedTimer sinceStart;
    sinceStart.start();
    channel->connectToPort(kPort, INADDR_LOOPBACK,
                           [&](const auto& error, const auto&) { outcome = error; });
    EXPECT_EQ(outcome, Error::posix(ETIMEDOUT));
    EXPECT_GE(sinceStart.elapsed(), 1900);
    EXPECT_EQ(channel->connState(), kConnStateConnecting); // as after any failure
}

} // namespace
} // namespace navrel
