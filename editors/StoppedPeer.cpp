#include "editors/StoppedPeer.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/socket.h>

namespace navrel {

#ifdef __linux__

bool isPeerStopped(int socket) {
    constexpr qint64 kLongestState = 512; // a number, a name of 15 bytes, the state, more numbers
    ucred peer = {};
    socklen_t length = sizeof peer;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) != 0 || peer.pid <= 0) {
        return false;
    }
    QFile file(QStringLiteral("/proc/%1/stat").arg(peer.pid));
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    // "PID (NAME) STATE …", where the name may hold parentheses itself.
    const QByteArray line = file.read(kLongestState);
    const qsizetype name = line.lastIndexOf(") ");
    return name >= 0 && line.mid(name + 2, 1) == "T";
}

#else

bool isPeerStopped(int) {
    return false;
}

#endif

} // namespace navrel
