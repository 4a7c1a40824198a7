#include "support/core/StandardError.h"
#include "support/core/SystemLog.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace navrel {
namespace {

/// Larger than any pipe, so that writing it would wait for a reader.
const QByteArray kLongLine(1 << 20, 'x');

class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe2(ends_.data(), O_CLOEXEC), 0); }
    ~Pipe() {
        closeReader();
        ::close(ends_[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int writer() const { return ends_[1]; }
    void closeReader() {
        if (ends_[0] >= 0) {
            ::close(ends_[0]);
            ends_[0] = -1;
        }
    }
    /// What was written so far.
    QByteArray take() const {
        EXPECT_EQ(::fcntl(ends_[0], F_SETFL, O_NONBLOCK), 0);
        QByteArray bytes;
        std::array<char, 4096> buffer{};
        ssize_t count = 0;
        while ((count = ::read(ends_[0], buffer.data(), buffer.size())) > 0) {
            bytes.append(buffer.data(), count);
        }
        return bytes;
    }

private:
    std::array<int, 2> ends_ = {-1, -1};
};

TEST(StandardError, aLineIsPrecededByTheName) {
    const Pipe pipe;
    StandardError output(pipe.writer());
    output.put("one");
    output.put("two");
    EXPECT_EQ(pipe.take(), "Navrel: one\nNavrel: two\n");
}

TEST(StandardError, aPipeThatNobodyReadsIsNotWaitedForAndTheLostLinesAreCounted) {
    const Pipe pipe;
    StandardError output(pipe.writer());
    for (int line = 0; line < 100'000; ++line) {
        output.put("a line of the log");
    }
    const QByteArray before = pipe.take();
    EXPECT_TRUE(before.endsWith("\n"));
    const qsizetype lost = 100'000 - before.count('\n');
    EXPECT_GT(lost, 0);
    output.put("again");
    EXPECT_EQ(pipe.take(), "Navrel: Lines of the log that were lost here, as nobody read them: " +
                               QByteArray::number(lost) + "\nNavrel: again\n");
}

TEST(StandardError, otherUsersOfThePipeStillWaitForIt) {
    const Pipe pipe;
    StandardError(pipe.writer()).put("one");
    EXPECT_EQ(::fcntl(pipe.writer(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(StandardError, aLineThatIsCutShortIsEndedBeforeTheNext) {
    const Pipe pipe;
    StandardError output(pipe.writer());
    output.put(kLongLine);
    EXPECT_TRUE(pipe.take().endsWith("xxx"));
    output.put("again");
    EXPECT_EQ(pipe.take(),
              "\nNavrel: Lines of the log that were lost here, as nobody read them: 1\n"
              "Navrel: again\n");
}

TEST(StandardError, aPipeWithoutAReaderEndsNothing) {
    const auto former = std::signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    StandardError output(pipe.writer());
    output.put("one");
    pipe.closeReader();
    output.put("two");
    std::signal(SIGPIPE, former);
}

TEST(StandardError, aFileThatIsWrittenByOthersTooIsAppendedTo) {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("log")));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    StandardError output(file.handle());
    output.put("one");
    ASSERT_EQ(::write(file.handle(), "other\n", 6), 6);
    output.put("two");
    ASSERT_TRUE(file.seek(0));
    EXPECT_EQ(file.readAll(), "Navrel: one\nother\nNavrel: two\n");
}

TEST(StandardError, whatIsPutInItsPlaceLaterIsWrittenTo) {
    const Pipe first;
    const Pipe second;
    const int descriptor = ::dup(first.writer());
    StandardError output(descriptor);
    output.put("one");
    ASSERT_EQ(::dup2(second.writer(), descriptor), descriptor);
    output.put("two");
    ::close(descriptor);
    output.put("three");
    EXPECT_EQ(first.take(), "Navrel: one\n");
    EXPECT_EQ(second.take(), "Navrel: two\n");
}

/// A log daemon's socket.
class LogSocket {
public:
    explicit LogSocket(const QByteArray& path) : socket_(::socket(AF_UNIX, SOCK_DGRAM, 0)) {
        ::unlink(path.constData());
        struct sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
        EXPECT_EQ(
            ::bind(socket_, reinterpret_cast<const struct sockaddr*>(&address), sizeof(address)),
            0);
    }
    ~LogSocket() { ::close(socket_); }
    LogSocket(const LogSocket&) = delete;
    LogSocket& operator=(const LogSocket&) = delete;

    /// The next packet; empty where there is none.
    QByteArray take() const {
        QByteArray packet(65536, '\0');
        const ssize_t size = ::recv(socket_, packet.data(), 65536, MSG_DONTWAIT);
        packet.truncate(std::max<ssize_t>(size, 0));
        return packet;
    }

private:
    int socket_;
};

class SystemLogTest : public ::testing::Test {
protected:
    QByteArray path() const { return QFile::encodeName(folder_.filePath(QStringLiteral("log"))); }

    static QByteArray textOf(const QByteArray& packet) {
        return packet.mid(packet.indexOf("]: ") + 3);
    }

    QTemporaryDir folder_;
};

TEST_F(SystemLogTest, aLineCarriesPriorityTimeNameAndProcess) {
    const LogSocket daemon(path());
    SystemLog(path()).put("one");
    EXPECT_THAT(daemon.take().toStdString(),
                ::testing::MatchesRegex("<13>[A-Z][a-z][a-z] [ 1-3][0-9] [0-9][0-9]:[0-9][0-9]:"
                                        "[0-9][0-9] Navrel\\[[0-9]+\\]: one"));
}

TEST_F(SystemLogTest, aDaemonThatReadsNothingIsNotWaitedForAndTheLostLinesAreCounted) {
    const LogSocket daemon(path());
    SystemLog output(path());
    for (int line = 0; line < 10'000; ++line) {
        output.put("line");
    }
    int taken = 0;
    while (!daemon.take().isEmpty()) {
        ++taken;
    }
    ASSERT_LT(taken, 10'000);
    output.put("again");
    EXPECT_EQ(textOf(daemon.take()), "Lines of the log that were lost here, as nobody read them: " +
                                         QByteArray::number(10'000 - taken));
    EXPECT_EQ(textOf(daemon.take()), "again");
}

TEST_F(SystemLogTest, withoutADaemonNothingIsLostAndALaterOneIsFound) {
    SystemLog output(path());
    output.put("one");
    for (int round = 0; round < 2; ++round) {
        const LogSocket daemon(path());
        output.put("two");
        EXPECT_EQ(textOf(daemon.take()), "two");
        EXPECT_EQ(daemon.take(), "");
    }
}

} // namespace
} // namespace navrel
