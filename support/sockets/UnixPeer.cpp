#include "support/sockets/UnixPeer.h"

#include <sys/socket.h>
#include <sys/types.h>
#include <unistd.h>

namespace navrel {

bool isPeerThisUser(int socket) {
#ifdef __linux__
    ucred peer = {};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(socket, &user, &group) == 0 && user == ::geteuid();
#endif
}

} // namespace navrel
