#pragma once

#include <QByteArray>
#include <QtGlobal>

namespace navrel {

/// The other end of a connection as plain bytes: a peer that keeps to no protocol by itself. Closes
/// its descriptor when it is destroyed.
class RawPeer {
public:
    RawPeer() = default;
    explicit RawPeer(int descriptor) : descriptor_(descriptor) {}
    RawPeer(RawPeer&& other) noexcept;
    RawPeer& operator=(RawPeer&& other) noexcept;
    ~RawPeer();

    /// Connects to a port of 127.0.0.1.
    static RawPeer connectedTo(quint16 port);

    int descriptor() const { return descriptor_; }

    /// Fails the test when the bytes do not all fit into the connection at once.
    void send(const QByteArray& bytes) const;

    /// As much of the bytes as fits into the connection.
    qsizetype sendSome(const QByteArray& bytes) const;

    /// Everything that has arrived since the last call, without waiting.
    QByteArray receive() const;

    /// Whether the connection has ended and everything that arrived before was received.
    bool hasEnded() const;

    void close();

    /// Closes so that the other end gets an error in place of the end of the stream.
    void reset();

private:
    int descriptor_ = -1;
};

/// A socket that listens on a port of 127.0.0.1 and is not served by anything under test.
class RawListener {
public:
    explicit RawListener(quint16 port);
    ~RawListener();
    RawListener(const RawListener&) = delete;
    RawListener& operator=(const RawListener&) = delete;

    /// Waits for a connection; fails the test where none is made.
    RawPeer accept() const;

private:
    int descriptor_ = -1;
};

/// The bytes of one frame.
QByteArray frameBytes(quint32 type, quint32 tag, const QByteArray& payload = {});

} // namespace navrel
