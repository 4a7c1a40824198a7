#include "support/dispatch/DispatchQueue.h"
#include "support/dispatch/DispatchSource.h"
#include "tests/transport/ChannelTest.h"

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace navrel {
namespace {

using Outcome = std::optional<std::optional<Error>>; // nothing before the callback was called

Outcome connectOutcome(PTChannel& channel) {
    Outcome outcome;
    channel.connectToPort(
        kPort, kLoopback,
        [&](const std::optional<Error>& error, const std::shared_ptr<const PTAddress>& address) {
            outcome.emplace(error);
            EXPECT_EQ(address, nullptr);
        });
    return outcome;
}

Outcome listenOutcome(PTChannel& channel, quint32 address = kLoopback) {
    Outcome outcome;
    channel.listenOnPort(kPort, address,
                         [&](const std::optional<Error>& error) { outcome.emplace(error); });
    return outcome;
}

Outcome sendOutcome(PTChannel& channel) {
    Outcome outcome;
    channel.sendFrameOfType(200, 1, std::nullopt,
                            [&](const std::optional<Error>& error) { outcome.emplace(error); });
    return outcome;
}

Outcome notPermitted() {
    return std::optional(Error::posix(EPERM));
}

std::shared_ptr<PTChannel> channelInState(PTConnState state) {
    auto channel = PTChannel::init();
    channel->setConnState(state);
    return channel;
}

TEST(PTChannelStates, areNoneAtFirst) {
    const auto channel = PTChannel::init();
    EXPECT_EQ(channel->connState(), kConnStateNone);
    EXPECT_EQ(channel->dispatchChannel(), nullptr);
    EXPECT_EQ(channel->dispatchSource(), nullptr);
    EXPECT_EQ(channel->delegate(), nullptr);
    EXPECT_EQ(channel->userInfo(), nullptr);
    EXPECT_EQ(channel->protocol(), PTProtocol::sharedProtocolForQueue(DispatchQueue::mainQueue()));
}

TEST(PTChannelStates, connectingAndConnectedBothCountAsConnected) {
    EXPECT_FALSE(channelInState(kConnStateNone)->isConnected());
    EXPECT_TRUE(channelInState(kConnStateConnecting)->isConnected());
    EXPECT_TRUE(channelInState(kConnStateConnected)->isConnected());
    EXPECT_FALSE(channelInState(kConnStateListening)->isConnected());
    EXPECT_TRUE(channelInState(kConnStateListening)->isListening());
}

TEST(PTChannelStates, otherThanNonePermitNeitherConnectNorListen) {
    for (const auto state : {kConnStateConnecting, kConnStateConnected, kConnStateListening}) {
        const auto channel = channelInState(state);
        EXPECT_EQ(connectOutcome(*channel), notPermitted()) << int{state};
        EXPECT_EQ(listenOutcome(*channel), notPermitted()) << int{state};
        EXPECT_EQ(channel->connState(), state);
    }
}

TEST(PTChannelStates, withoutAConnectionPermitNoSending) {
    for (const auto state : {kConnStateNone, kConnStateConnecting, kConnStateListening}) {
        EXPECT_EQ(sendOutcome(*channelInState(state)), notPermitted()) << int{state};
    }
}

TEST(PTChannelStates, ofListeningPermitNoReading) {
    const auto channel = channelInState(kConnStateListening);
    EXPECT_EQ(channel->startReadingFromConnectedChannel(nullptr), Error::posix(EPERM));
    EXPECT_TRUE(channel->isListening());
}

TEST(PTChannelStates, withoutAStreamOrSourceMakeClosingDoNothing) {
    for (const auto state :
         {kConnStateNone, kConnStateConnecting, kConnStateConnected, kConnStateListening}) {
        const auto channel = channelInState(state);
        channel->close();
        channel->cancel();
        EXPECT_EQ(channel->connState(), state);
    }
}

TEST(PTChannelStates, takeCallsWithoutACallback) {
    const auto channel = channelInState(kConnStateListening);
    channel->connectToPort(kPort, kLoopback, nullptr);
    channel->listenOnPort(kPort, kLoopback, nullptr);
    channel->sendFrameOfType(200, 1, std::nullopt, nullptr);
    EXPECT_TRUE(channel->isListening());
}

TEST(PTChannelFailure, ofAConnectLeavesTheChannelConnectingForGood) {
    const auto channel = PTChannel::init();
    EXPECT_EQ(connectOutcome(*channel), Outcome(Error::posix(ECONNREFUSED)));
    EXPECT_EQ(channel->connState(), kConnStateConnecting);
    EXPECT_TRUE(channel->isConnected());
    EXPECT_EQ(connectOutcome(*channel), notPermitted());
    EXPECT_EQ(listenOutcome(*channel), notPermitted());
}

TEST(PTChannelFailure, ofAnAddressThatIsNotOursLeavesTheChannelAsItWas) {
    const auto channel = PTChannel::init();
    EXPECT_EQ(listenOutcome(*channel, 0x08080808), Outcome(Error::posix(EADDRNOTAVAIL)));
    EXPECT_EQ(channel->connState(), kConnStateNone);
}

TEST(PTChannelFailure, ofAPortInUseLeavesTheChannelAsItWas) {
    const RawListener other(kPort);
    const auto channel = PTChannel::init();
    EXPECT_EQ(listenOutcome(*channel), Outcome(Error::posix(EADDRINUSE)));
    EXPECT_EQ(channel->connState(), kConnStateNone);
}

TEST(PTChannelFailure, withoutAQueueToReadOnIsAnErrorOfTheChannelAndClosesTheSocket) {
    const RawListener listener(kPort);
    const auto channel = PTChannel::initWithProtocol(PTProtocol::initWithDispatchQueue(nullptr));
    EXPECT_EQ(connectOutcome(*channel), Outcome(Error(kPTErrorDomain, 0)));
    EXPECT_EQ(channel->connState(), kConnStateConnecting);
    EXPECT_TRUE(listener.accept().hasEnded());
}

/// No descriptor can be made while it lives.
class NoDescriptorsLeft {
public:
    NoDescriptorsLeft() {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &previous_), 0);
        const rlimit none = {0, previous_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
    }
    ~NoDescriptorsLeft() { ::setrlimit(RLIMIT_NOFILE, &previous_); }
    NoDescriptorsLeft(const NoDescriptorsLeft&) = delete;
    NoDescriptorsLeft& operator=(const NoDescriptorsLeft&) = delete;

private:
    rlimit previous_ = {};
};

TEST(PTChannelFailure, ofASocketIsPrintedWhenConnectingAndSilentWhenListening) {
    const auto connecting = PTChannel::init();
    const auto listening = PTChannel::init();
    Outcome connected;
    Outcome listened;
    testing::internal::CaptureStderr();
    {
        const NoDescriptorsLeft limit;
        connected = connectOutcome(*connecting);
        listened = listenOutcome(*listening);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "socket(AF_INET, SOCK_STREAM, 0) failed: Too many open files\n");
    EXPECT_EQ(connected, Outcome(Error::posix(EMFILE)));
    EXPECT_EQ(connecting->connState(), kConnStateConnecting);
    EXPECT_EQ(listened, Outcome(Error::posix(EMFILE)));
    EXPECT_EQ(listening->connState(), kConnStateNone);
}

TEST(PTChannelFailure, ofAnAcceptIsPrintedAndStopsAccepting) {
    const auto channel = PTChannel::init();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(channel->acceptIncomingConnection(-1));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "accept(): Bad file descriptor\n");
}

/// From now on the system refuses to change this thread's descriptors' flags. There is no way back,
/// so this is for a process of its own.
void refuseToSetDescriptorFlags() {
    sock_filter filter[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_fcntl, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[1])),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, F_SETFL, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EACCES),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program = {sizeof filter / sizeof *filter, filter};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
        ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) {
        std::perror("seccomp");
    }
}

TEST(PTChannelFailureDeathTest, toMakeAnAcceptedSocketNonBlockingIsPrintedAndClosesIt) {
    const auto acceptRefused = [] {
        const int server = ::socket(AF_INET, SOCK_STREAM, 0);
        EXPECT_EQ(::listen(server, 1), 0);
        sockaddr_storage address = {};
        socklen_t length = sizeof address;
        auto* name = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(::getsockname(server, name, &length), 0);
        const RawPeer peer(::socket(AF_INET, SOCK_STREAM, 0));
        EXPECT_EQ(::connect(peer.descriptor(), name, length), 0);

        refuseToSetDescriptorFlags();
        const bool goesOn = PTChannel::init()->acceptIncomingConnection(server);
        ::_exit(!goesOn && peer.hasEnded() ? 0 : 1);
    };
    EXPECT_EXIT(acceptRefused(), testing::ExitedWithCode(0),
                "fcntl\\(.. O_NONBLOCK\\): Permission denied");
}

// Broken invariants.

std::shared_ptr<DispatchSource> someSource() {
    return DispatchSource::create(0, DispatchQueue::mainQueue(), nullptr, nullptr);
}

TEST(PTChannelDeathTest, connectingWithoutAProtocolStopsTheProgram) {
    const auto channel = PTChannel::initWithProtocol(nullptr);
    EXPECT_DEATH(channel->connectToPort(kPort, kLoopback, nullptr), "protocol_ != NULL");
}

TEST(PTChannelDeathTest, listeningWithASourceLeftStopsTheProgram) {
    const auto channel = PTChannel::init();
    channel->setDispatchSource(someSource());
    EXPECT_DEATH(channel->listenOnPort(kPort, kLoopback, nullptr), "dispatchObj_source_ == nil");
}

TEST(PTChannelDeathTest, giveNoStreamToAListeningChannel) {
    EXPECT_DEATH(channelInState(kConnStateListening)->setDispatchChannel(nullptr),
                 "connState_ == kConnStateConnecting \\|\\| connState_ == kConnStateConnected "
                 "\\|\\| connState_ == kConnStateNone");
}

TEST(PTChannelDeathTest, giveNoSourceToAConnectedChannel) {
    EXPECT_DEATH(channelInState(kConnStateConnected)->setDispatchSource(nullptr),
                 "connState_ == kConnStateListening \\|\\| connState_ == kConnStateNone");
}

TEST(PTChannelSetters, returnToNoneOnceNeitherStreamNorSourceIsLeft) {
    const auto channel = PTChannel::init();
    channel->setDispatchSource(someSource());
    channel->setConnState(kConnStateListening);
    channel->setDispatchSource(someSource());
    EXPECT_EQ(channel->connState(), kConnStateListening);
    channel->setDispatchSource(nullptr);
    EXPECT_EQ(channel->connState(), kConnStateNone);

    channel->setConnState(kConnStateConnecting);
    channel->setDispatchChannel(nullptr); // no change, so no other state
    EXPECT_EQ(channel->connState(), kConnStateConnecting);
}

// Text.

TEST(PTChannelDescription, namesTheState) {
    const auto channel = PTChannel::init();
    const QString head = QString::asprintf("<PTChannel: %p ", static_cast<void*>(channel.get()));
    EXPECT_EQ(channel->description(), head + QStringLiteral("(closed)>"));
    channel->setConnState(kConnStateConnecting);
    EXPECT_EQ(channel->description(), head + QStringLiteral("(connecting)>"));
    channel->setConnState(kConnStateConnected);
    EXPECT_EQ(channel->description(), head + QStringLiteral("(connected)>"));
    channel->setConnState(kConnStateListening);
    EXPECT_EQ(channel->description(), head + QStringLiteral("(listening)>"));
}

TEST(PTChannelDescription, endsWithTheUserInformation) {
    const auto channel = PTChannel::init();
    const auto information =
        std::make_shared<const DescribedText>(QStringLiteral("127.0.0.1:2345"));
    channel->setUserInfo(information);
    EXPECT_EQ(channel->userInfo(), information);
    EXPECT_TRUE(channel->description().endsWith(QStringLiteral("(closed) 127.0.0.1:2345>")));
}

/// Has another set of operations each time that it is asked.
class ChangingDelegate final : public PTChannelDelegate {
public:
    quint8 optionalOperations() const override { return operations; }
    void ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>&, quint32, quint32,
                                             const std::shared_ptr<const PTData>&) override {}
    void ioFrameChannelDidEndWithError(const std::shared_ptr<PTChannel>&,
                                       const std::optional<Error>&) override {
        ++ends;
    }
    quint8 operations = 0;
    int ends = 0;
};

TEST(PTChannelDelegate, isAskedForItsOperationsWheneverItIsSet) {
    const auto delegate = std::make_shared<ChangingDelegate>();
    const auto listenAndEnd = [&](bool setsAgain) {
        const auto channel = PTChannel::channelWithDelegate(delegate);
        delegate->operations = PTChannelDelegate::kDidEnd;
        if (setsAgain) {
            channel->setDelegate(delegate);
        }
        delegate->operations = 0;
        channel->listenOnPort(kPort, kLoopback, nullptr);
        channel->close();
        EXPECT_TRUE(waitUntil([&] { return channel->dispatchSource() == nullptr; }));
        return delegate->ends;
    };
    EXPECT_EQ(listenAndEnd(false), 0);
    EXPECT_EQ(listenAndEnd(true), 1);
}

} // namespace
} // namespace navrel
