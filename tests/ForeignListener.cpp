#include "tests/ForeignListener.h"

#include <array>
#include <csignal>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace navrel {

namespace {

constexpr uid_t kAnotherUser = 65534;

[[noreturn]] void listenAndAccept(int ready) {
    const int listener = ::setuid(kAnotherUser) == 0 ? ::socket(AF_INET, SOCK_STREAM, 0) : -1;
    const int on = 1;
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(2345);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, 8) != 0 || ::write(ready, "x", 1) != 1) {
        ::_exit(1);
    }
    ::close(ready);
    while (true) {
        ::accept(listener, nullptr, nullptr);
    }
}

} // namespace

ForeignListener::ForeignListener() {
    std::array<int, 2> pipe = {-1, -1};
    isReady_ = ::pipe(pipe.data()) == 0;
    process_ = ::fork();
    if (process_ == 0) {
        listenAndAccept(pipe[1]); // nothing but system calls: this process has threads
    }
    ::close(pipe[1]);
    char byte = 0;
    isReady_ = isReady_ && process_ > 0 && ::read(pipe[0], &byte, 1) == 1;
    ::close(pipe[0]);
}

ForeignListener::~ForeignListener() {
    if (process_ > 0) { // of no process, kill would mean every one
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
}

} // namespace navrel
