#include "editors/StoppedPeer.h"

#include <QByteArray>
#include <QFile>
#include <QString>

#include <sys/socket.h>

namespace navrel {

#ifdef __linux__

bool isPeerStopped(int socket) {
    ucred peer = {};
    socklen_t length = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.pid > 0 &&
           isProcessStopped(peer.pid);
}

bool isProcessStopped(qint64 process) {
    constexpr qint64 kLongestState = 512; // a number, a name of 15 bytes, the state, more numbers
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
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

bool isProcessStopped(qint64) {
    return false;
}

#endif

} // namespace navrel
