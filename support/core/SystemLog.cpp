#include "support/core/SystemLog.h"

#include "support/sockets/NonBlockingSocket.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <syslog.h>
#include <unistd.h>
#include <utility>

namespace navrel {

namespace {

/// The time as the system's log wants it, whatever the user's language.
QByteArray timestamp() {
    static constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                           "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%s %2d %02d:%02d:%02d",
                  kMonths.at(static_cast<std::size_t>(local.tm_mon)), local.tm_mday, local.tm_hour,
                  local.tm_min, local.tm_sec);
    return text.data();
}

} // namespace

SystemLog::SystemLog(QByteArray socketPath) : socketPath_(std::move(socketPath)) {}

bool SystemLog::take(const QByteArray& line) {
    if (!socket_.isValid() && !connectAgain()) {
        return true;
    }
    const QByteArray packet = '<' + QByteArray::number(LOG_USER | LOG_NOTICE) + '>' + timestamp() +
                              " Navrel[" + QByteArray::number(::getpid()) + "]: " + line;
    if (sendWithoutWaiting(socket_.value(), packet) == packet.size()) {
        return true;
    }
    if (errno == EAGAIN || errno == EMSGSIZE || errno == ENOBUFS) {
        return false;
    }
    // The daemon has been started again meanwhile, or has gone.
    return !connectAgain() || sendWithoutWaiting(socket_.value(), packet) == packet.size();
}

bool SystemLog::connectAgain() {
    socket_ = connectToUnixSocket(socketPath_, SOCK_DGRAM);
    return socket_.isValid();
}

} // namespace navrel
