#pragma once

#include <QByteArray>
#include <QVariantMap>

#include <chrono>
#include <optional>

namespace navrel {

/// A device with the companion app, made of plain sockets: it listens on 127.0.0.1:2345 and speaks
/// frames as bytes, independent of the transport that it tests. Waiting runs the event loop, so
/// that both ends may live in one process.
class TestDevice {
public:
    struct Frame {
        quint32 type = 0;
        quint32 tag = 0;
        QByteArray payload;
    };

    TestDevice() = default;
    ~TestDevice();
    TestDevice(const TestDevice&) = delete;
    TestDevice& operator=(const TestDevice&) = delete;

    /// Starts, and stops, listening. A connection stays as it is.
    [[nodiscard]] bool listen();
    void stopListening();

    /// Waits for a connection, which takes the place of the one before.
    [[nodiscard]] bool
    waitForConnection(std::chrono::milliseconds atMost = std::chrono::seconds(20));
    /// Takes over a connection that was made elsewhere, in place of the one before.
    void adopt(int connection);
    /// Whether somebody has connected who was not waited for yet.
    bool isConnectionWaiting() const;
    void disconnect();

    /// The bytes of a frame.
    static QByteArray frame(quint32 type, quint32 tag, const QByteArray& payload = {});
    /// The bytes of a frame whose payload is a dictionary.
    static QByteArray request(quint32 type, quint32 tag, const QVariantMap& dictionary);

    [[nodiscard]] bool sendBytes(const QByteArray& bytes);

    /// The next frame that arrives; nothing when none does in time, or the stream ends.
    std::optional<Frame> nextFrame(std::chrono::milliseconds atMost = std::chrono::seconds(20));
    /// Waits for the end of the stream.
    [[nodiscard]] bool waitForEnd(std::chrono::milliseconds atMost = std::chrono::seconds(20));

    /// Waits until requests are answered.
    [[nodiscard]] bool waitUntilServed(std::chrono::milliseconds atMost = std::chrono::seconds(20));
    /// Sends a request and a version request behind it; the answer to the first, or nothing when
    /// only the second is answered. The test fails when that is not answered either.
    std::optional<QVariantMap> ask(quint32 type, const QVariantMap& dictionary = {});

private:
    void receive();
    std::optional<Frame> takeFrame();

    int listener_ = -1;
    int connection_ = -1;
    bool hasEnded_ = false;
    QByteArray received_;
    quint32 lastTag_ = 0;
};

/// The dictionary that a payload holds; empty when it holds none.
QVariantMap dictionaryOf(const QByteArray& payload);

} // namespace navrel
