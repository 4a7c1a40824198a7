#include "support/dispatch/StreamDescriptor.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

namespace navrel {
namespace {

using Pair = std::array<int, 2>;

iovec vectorOf(std::span<char> bytes) {
    return {bytes.data(), bytes.size()};
}

Pair makePipe() {
    Pair ends = {};
    EXPECT_EQ(::pipe(ends.data()), 0);
    return ends;
}

Pair makeSocketPair() {
    Pair ends = {};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    return ends;
}

void closeBoth(const Pair& ends) {
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(StreamDescriptor, becomesNonBlocking) {
    const Pair ends = makePipe();
    const auto stream = StreamDescriptor::adopt(ends[0]);
    ASSERT_TRUE(stream);
    EXPECT_NE(::fcntl(ends[0], F_GETFL) & O_NONBLOCK, 0);

    std::array<char, 4> buffer = {};
    const iovec vector = vectorOf(buffer);
    EXPECT_TRUE(stream->read({&vector, 1}).wouldBlock());
    closeBoth(ends);
}

TEST(StreamDescriptor, isRefusedWhenThereIsNone) {
    errno = 0;
    EXPECT_FALSE(StreamDescriptor::adopt(-1));
    EXPECT_EQ(errno, EBADF);
}

TEST(StreamDescriptor, scattersAndGathers) {
    const Pair ends = makeSocketPair();
    std::array<char, 2> first = {'a', 'b'};
    std::array<char, 3> second = {'c', 'd', 'e'};
    const std::array<iovec, 2> out = {vectorOf(first), vectorOf(second)};
    EXPECT_EQ(StreamDescriptor::adopt(ends[0])->write(out).count, 5U);

    std::array<char, 1> head = {};
    std::array<char, 8> rest = {};
    const std::array<iovec, 2> in = {vectorOf(head), vectorOf(rest)};
    EXPECT_EQ(StreamDescriptor::adopt(ends[1])->read(in).count, 5U);
    EXPECT_EQ(head[0], 'a');
    EXPECT_EQ(std::string_view(rest.data(), 4), "bcde");
    closeBoth(ends);
}

TEST(StreamDescriptor, gathersFewBytesAsManyOnes) {
    const Pair ends = makeSocketPair();
    const auto writer = StreamDescriptor::adopt(ends[0]);
    const auto reader = StreamDescriptor::adopt(ends[1]);
    for (size_t size = 2; size < 1200; size += 2) {
        std::string first(size / 2, 'a');
        std::string second(size / 2, 'b');
        const std::array<iovec, 3> out = {vectorOf(first), iovec{nullptr, 0}, vectorOf(second)};
        ASSERT_EQ(writer->write(out).count, size);
        std::string received(2 * size, '\0');
        const auto transfer = reader->read(std::span<char>(received));
        ASSERT_EQ(received.substr(0, transfer.count), first + second);
    }
    closeBoth(ends);
}

int signalsSeen = 0;

/// Writes to a peer that is gone, with a handler that counts the signal.
void expectErrorAndNoSignal(const Pair& ends) {
    ::close(ends[1]);
    signalsSeen = 0;
    const auto previous = std::signal(SIGPIPE, [](int) { ++signalsSeen; });
    for (const size_t size : {size_t{1}, size_t{4096}}) {
        std::string bytes(size, 'x');
        const iovec vector = vectorOf(bytes);
        EXPECT_EQ(StreamDescriptor::adopt(ends[0])->write({&vector, 1}).errnoValue, EPIPE);
    }
    EXPECT_EQ(signalsSeen, 0);

    // The guard is gone: the program's own handling of the signal is as it was.
    std::raise(SIGPIPE);
    EXPECT_EQ(signalsSeen, 1);
    std::signal(SIGPIPE, previous);
    ::close(ends[0]);
}

TEST(StreamDescriptor, reportsASocketWhosePeerIsGoneWithoutASignal) {
    expectErrorAndNoSignal(makeSocketPair());
}

TEST(StreamDescriptor, reportsAPipeWhoseReaderIsGoneWithoutASignal) {
    const Pair ends = makePipe();
    expectErrorAndNoSignal({ends[1], ends[0]});
}

} // namespace
} // namespace navrel
