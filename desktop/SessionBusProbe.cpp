#include "desktop/SessionBusProbe.h"

#include "support/sockets/NonBlockingSocket.h"

#include <QByteArrayList>
#include <QDeadlineTimer>

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace navrel {

namespace {

/// A bus says less while it greets.
constexpr qsizetype kLongestGreeting = 4096;
constexpr char kLittleEndian = 'l';

/// The value of a key in the first address of a list; addresses escape bytes as URLs do.
QByteArray valueIn(const QByteArray& addresses, const QByteArray& key) {
    const QByteArray first = addresses.split(';').constFirst();
    if (!first.startsWith("unix:")) {
        return {};
    }
    for (const QByteArray& pair : first.sliced(5).split(',')) {
        if (pair.startsWith(key + '=')) {
            return QByteArray::fromPercentEncoding(pair.sliced(key.size() + 1));
        }
    }
    return {};
}

/// The name of a socket as the kernel wants it; a NUL stands before abstract ones.
QByteArray socketName(const QByteArray& addresses) {
    const QByteArray path = valueIn(addresses, "path");
    const QByteArray abstract = valueIn(addresses, "abstract");
    return path.isEmpty() && !abstract.isEmpty() ? '\0' + abstract : path;
}

class Stream {
public:
    Stream(const QByteArray& name, std::chrono::milliseconds atMost) : deadline_(atMost) {
        socket_ = connectToUnixSocket(name);
        isFull_ = !socket_.isValid() && errno == EAGAIN;
    }

    /// Whether more wait for the bus already than it has room for: it accepts nobody.
    bool isFull() const { return isFull_; }

    bool send(const QByteArray& bytes) const {
        return socket_.isValid() && sendWithoutWaiting(socket_.value(), bytes) == bytes.size();
    }

    /// Whether the bus has let the time pass: one that ends the connection tells Qt as much.
    bool isSilent() const { return isSilent_; }

    /// The next bytes; none where the bus is silent, or gone.
    QByteArray receive() {
        pollfd waiting = {socket_.value(), POLLIN, 0};
        if (::poll(&waiting, 1, static_cast<int>(deadline_.remainingTime())) <= 0) {
            isSilent_ = true;
            return {};
        }
        QByteArray bytes(kLongestGreeting - received_, '\0');
        const ssize_t count =
            ::recv(socket_.value(), bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
        received_ += std::max<ssize_t>(count, 0);
        return bytes.first(std::max<ssize_t>(count, 0));
    }

private:
    const QDeadlineTimer deadline_;
    qsizetype received_ = 0;
    OwnedDescriptor socket_;
    bool isFull_ = false;
    bool isSilent_ = false;
};

/// The bytes, and padding to the next multiple of 8.
QByteArray padded(const QByteArray& bytes) {
    return bytes.leftJustified((bytes.size() + 7) / 8 * 8, '\0');
}

/// A field of a message's header: its code, and a string with its length and a NUL.
QByteArray field(char code, char type, const QByteArray& text) {
    QByteArray bytes;
    bytes += code;
    bytes += '\1'; // a signature of one character
    bytes += type;
    bytes += '\0';
    const auto size = static_cast<quint32>(text.size());
    bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
    return bytes + text + '\0';
}

/// The first call on every bus: "org.freedesktop.DBus.Hello".
QByteArray hello() {
    const QByteArray interface = "org.freedesktop.DBus";
    const QByteArray fields = padded(field(1, 'o', "/org/freedesktop/DBus")) +
                              padded(field(6, 's', interface)) + padded(field(2, 's', interface)) +
                              field(3, 's', "Hello");
    const quint32 words[] = {0, 1, static_cast<quint32>(fields.size())}; // no body, serial 1
    QByteArray message;
    message += Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? kLittleEndian : 'B';
    message += QByteArray("\1\0\1", 3); // a call, no flags, version 1
    message.append(reinterpret_cast<const char*>(words), sizeof words);
    return message + padded(fields);
}

} // namespace

bool greetsOnBus(const QByteArray& address, std::chrono::milliseconds atMost) {
    const QByteArray name = socketName(address);
    if (name.isEmpty()) {
        return true;
    }
    Stream bus(name, atMost);
    const QByteArray user = QByteArray::number(::geteuid()).toHex();
    if (!bus.send('\0' + QByteArrayLiteral("AUTH EXTERNAL ") + user + "\r\n")) {
        return !bus.isFull(); // where nobody listens, Qt is refused at once, too
    }
    QByteArray answer;
    while (!answer.endsWith("\r\n")) {
        const QByteArray more = bus.receive();
        if (more.isEmpty()) {
            return !bus.isSilent();
        }
        answer += more;
    }
    // Refused: another way of signing in is for Qt to find.
    return !answer.startsWith("OK") || !bus.send("BEGIN\r\n" + hello()) ||
           !bus.receive().isEmpty() || !bus.isSilent();
}

QByteArray sessionBusAddress() {
    const QByteArray address = qgetenv(kSessionBusVariable);
    if (!address.isEmpty()) {
        return address;
    }
    const QByteArray folder = qgetenv("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QByteArray() : "unix:path=" + folder + "/bus";
}

} // namespace navrel
