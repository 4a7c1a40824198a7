#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>
#include <QTemporaryDir>
#include <QTimer>
#include <QVariantMap>

#include <chrono>
#include <deque>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace navrel {

/// A USB multiplexing daemon on a socket of its own folder, which speaks packets as bytes,
/// independent of the transport that it tests. It lives on the event loop, and misbehaves as it is
/// told to.
class FakeUSBDaemon {
public:
    struct Request {
        quint32 tag = 0;
        QVariantMap message;
        QByteArray bytes; ///< the whole packet
    };

    FakeUSBDaemon();
    ~FakeUSBDaemon();
    FakeUSBDaemon(const FakeUSBDaemon&) = delete;
    FakeUSBDaemon& operator=(const FakeUSBDaemon&) = delete;

    QString socketPath() const;
    /// As USBMUXD_SOCKET_ADDRESS wants it.
    QString address() const { return QStringLiteral("UNIX:") + socketPath(); }

    [[nodiscard]] bool start();
    /// Dies: every connection of its own ends, and the socket's file stays behind.
    void stop();

    // Devices, which new listeners hear of, too. Those attached are forgotten by `stop`.
    void attach(qlonglong deviceID);
    void detach(qlonglong deviceID);

    // How it behaves.
    std::optional<int> listenAnswer = 0;  ///< nothing: never answers
    std::optional<int> connectAnswer = 0; ///< for devices that are attached
    bool splitsWrites = false;            ///< every byte by itself
    QByteArray behindConnectReply;        ///< in one piece with it

    /// What it was asked.
    const std::vector<Request>& requests() const { return requests_; }
    int countOfRequests(const QString& messageType) const;
    /// Connections to the daemon itself.
    int connectionCount() const { return static_cast<int>(clients_.size()); }
    /// Those of them that listen now.
    int listenerCount() const;

    /// Sends bytes, whatever they are, to every listener.
    void sendToListeners(const QByteArray& bytes);
    /// The same to every client that waits for an answer to "Connect".
    void sendToConnecting(const QByteArray& bytes);
    void closeConnecting();
    /// Whether all that was to be sent is on its way.
    bool hasSentAll() const;

    /// Waits for a connection to a device; its descriptor, the caller's, or -1.
    int waitForDeviceConnection(std::chrono::milliseconds atMost = std::chrono::seconds(20));

    static QByteArray packet(quint32 tag, const QVariantMap& message);
    static QByteArray rawPacket(quint32 protocol, quint32 type, quint32 tag,
                                const QByteArray& payload);
    static QByteArray attachedPacket(qlonglong deviceID);
    static QByteArray detachedPacket(qlonglong deviceID);

private:
    struct Client;

    void accept();
    void read(Client& client);
    void answer(Client& client, const Request& request);
    int answerToConnect(const Request& request) const;
    void send(Client& client, const QByteArray& bytes);
    void flush(Client& client);
    void flushAll();
    void removeGone();

    QTemporaryDir folder_;
    int listener_ = -1;
    std::unique_ptr<QSocketNotifier> listenNotifier_;
    std::list<Client> clients_;
    QTimer pump_; ///< writes what waits
    std::set<qlonglong> devices_;
    std::vector<Request> requests_;
    std::deque<int> deviceConnections_;
};

} // namespace navrel
