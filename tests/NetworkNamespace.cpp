#include "tests/NetworkNamespace.h"

#include <cerrno>
#include <cstring>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace navrel {

namespace {

std::string lastError(const char* what) {
    return std::string(what) + ": " + std::strerror(errno);
}

} // namespace

std::optional<std::string> enterOwnNetworkNamespace() {
    // Root may make one as it is; everyone else needs a user namespace around it.
    if (::unshare(CLONE_NEWNET) != 0 && ::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) {
        return lastError("unshare");
    }
    const int control = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (control < 0) {
        return lastError("socket");
    }
    ifreq request = {};
    std::strncpy(request.ifr_name, "lo", IFNAMSIZ - 1);
    request.ifr_flags = IFF_UP | IFF_RUNNING;
    const bool isUp = ::ioctl(control, SIOCSIFFLAGS, &request) == 0;
    const auto failure = isUp ? std::optional<std::string>() : lastError("raising the loopback");
    ::close(control);
    return failure;
}

} // namespace navrel
