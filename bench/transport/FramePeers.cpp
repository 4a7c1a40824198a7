#include "bench/transport/FramePeers.h"

#include "support/dispatch/DispatchIO.h"
#include "support/dispatch/DispatchQueue.h"
#include "transport/frames/PTChannel.h"
#include "transport/frames/PTData.h"
#include "transport/frames/PTFrame.h"

#include <QByteArray>
#include <QEventLoop>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace navrel::bench {

namespace {

constexpr quint32 kRequestType = 200;
constexpr quint32 kReplyType = 500;

void require(bool condition, const char* what) {
    if (!condition) {
        std::perror(what);
        std::exit(1);
    }
}

struct Connection {
    int client = -1;
    int server = -1;
};

Connection connectOverTCP() {
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* name = reinterpret_cast<sockaddr*>(&address);
    require(::bind(listener, name, length) == 0 && ::listen(listener, 1) == 0 &&
                ::getsockname(listener, name, &length) == 0,
            "listen");
    Connection connection;
    connection.client = ::socket(AF_INET, SOCK_STREAM, 0);
    require(::connect(connection.client, name, length) == 0, "connect");
    connection.server = ::accept(listener, nullptr, nullptr);
    require(connection.server >= 0, "accept");
    ::close(listener);
    const int on = 1;
    for (const int end : {connection.client, connection.server}) {
        ::setsockopt(end, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    }
    return connection;
}

Connection connectOverUnixSocket() {
    std::array<int, 2> ends = {};
    require(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0, "socketpair");
    return {ends[0], ends[1]};
}

Connection connectOver(Transport transport) {
    return transport == Transport::tcp ? connectOverTCP() : connectOverUnixSocket();
}

void readAll(int descriptor, char* bytes, size_t size) {
    while (size > 0) {
        const ssize_t count = ::read(descriptor, bytes, size);
        require(count > 0, "read");
        bytes += count;
        size -= static_cast<size_t>(count);
    }
}

void writeFrame(int descriptor, quint32 type, quint32 tag, const std::vector<char>& payload) {
    auto header = encodedFrameHeader({type, tag, static_cast<quint32>(payload.size())});
    std::array<iovec, 2> vectors = {iovec{header.data(), header.size()},
                                    iovec{const_cast<char*>(payload.data()), payload.size()}};
    size_t left = header.size() + payload.size();
    while (left > 0) {
        const ssize_t count = ::writev(descriptor, vectors.data(), 2);
        require(count > 0, "writev");
        left -= static_cast<size_t>(count);
        auto written = static_cast<size_t>(count);
        for (iovec& vector : vectors) {
            const size_t part = std::min(written, vector.iov_len);
            vector.iov_base = static_cast<char*>(vector.iov_base) + part;
            vector.iov_len -= part;
            written -= part;
        }
    }
}

PTFrameHeader readFrame(int descriptor, std::vector<char>& payload) {
    std::array<char, kPTFrameHeaderSize> bytes = {};
    readAll(descriptor, bytes.data(), bytes.size());
    const auto header = decodedFrameHeader({bytes.data(), static_cast<qsizetype>(bytes.size())});
    require(header.has_value(), "header");
    payload.resize(header->payloadSize);
    readAll(descriptor, payload.data(), payload.size());
    return *header;
}

/// The client's part, the same whatever serves it.
void request(int descriptor, const Traffic& traffic) {
    const std::vector<char> payload(traffic.payloadSize, 'x');
    std::vector<char> reply;
    for (int frame = 1; frame <= traffic.frames; ++frame) {
        const auto tag = static_cast<quint32>(frame);
        writeFrame(descriptor, kRequestType, tag, payload);
        if (!traffic.isStream || frame == traffic.frames) {
            require(readFrame(descriptor, reply).tag == tag, "tag");
        }
    }
}

/// Runs the client on a thread of its own while `serve` serves it on this one.
template <typename Serve>
void exchange(const Traffic& traffic, Serve serve) {
    const Connection connection = connectOver(traffic.transport);
    std::thread client([&] {
        request(connection.client, traffic);
        ::close(connection.client);
    });
    serve(connection.server);
    client.join();
}

/// Answers frames as a Traffic says.
class AnsweringDelegate final : public PTChannelDelegate {
public:
    explicit AnsweringDelegate(const Traffic& traffic)
        : traffic_(traffic),
          reply_(DispatchData::referencing(QByteArray(
              traffic.isStream ? 0 : static_cast<qsizetype>(traffic.payloadSize), 'y'))) {}

    void
    ioFrameChannelDidReceiveFrameOfType(const std::shared_ptr<PTChannel>& channel, quint32,
                                        quint32 tag,
                                        const std::shared_ptr<const PTData>& payload) override {
        require(payload && payload->length() == traffic_.payloadSize, "payload");
        if (!traffic_.isStream || tag == static_cast<quint32>(traffic_.frames)) {
            channel->sendFrameOfType(kReplyType, tag, reply_, nullptr);
        }
    }

private:
    const Traffic traffic_;
    const DispatchData reply_;
};

} // namespace

void serveWithSystemCalls(const Traffic& traffic) {
    exchange(traffic, [&](int descriptor) {
        std::vector<char> payload;
        const std::vector<char> reply(traffic.isStream ? 0 : traffic.payloadSize, 'y');
        for (int frame = 1; frame <= traffic.frames; ++frame) {
            const PTFrameHeader header = readFrame(descriptor, payload);
            if (!traffic.isStream || frame == traffic.frames) {
                writeFrame(descriptor, kReplyType, header.tag, reply);
            }
        }
        ::close(descriptor);
    });
}

void serveWithChannel(const Traffic& traffic) {
    exchange(traffic, [&](int descriptor) {
        QEventLoop loop;
        const auto stream = DispatchIO::create(descriptor, DispatchQueue::mainQueue(), [&](int) {
            ::close(descriptor);
            loop.quit();
        });
        require(stream != nullptr, "stream channel");
        const auto channel =
            PTChannel::channelWithDelegate(std::make_shared<AnsweringDelegate>(traffic));
        channel->startReadingFromConnectedChannel(stream);
        loop.exec();
    });
}

void pinToOneCore() {
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    require(::sched_getaffinity(0, sizeof allowed, &allowed) == 0, "sched_getaffinity");
    int core = CPU_SETSIZE - 1;
    while (core > 0 && !CPU_ISSET(static_cast<size_t>(core), &allowed)) {
        --core;
    }
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(static_cast<size_t>(core), &one);
    require(::pthread_setaffinity_np(::pthread_self(), sizeof one, &one) == 0, "affinity");
}

} // namespace navrel::bench
