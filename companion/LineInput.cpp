#include "companion/LineInput.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace navrel {

namespace {

/// A command is a word and a path. What is longer is cut there, so that a binary file on standard
/// input does not fill the memory.
constexpr qsizetype kLongestLine = 64 * 1024;

/// How long one look for input holds up the event loop.
constexpr int kPollMilliseconds = 20;

} // namespace

std::optional<QString> LineInput::next() {
    for (;;) {
        const qsizetype lineFeed = waiting_.indexOf('\n');
        if (lineFeed >= 0 || waiting_.size() >= kLongestLine || (isAtEnd_ && !waiting_.isEmpty())) {
            const qsizetype length = lineFeed >= 0 ? lineFeed : waiting_.size();
            const QString line = QString::fromUtf8(waiting_.first(length));
            waiting_.remove(0, length + 1);
            return line;
        }
        if (isAtEnd_) {
            return std::nullopt;
        }
        isAtEnd_ = !fill();
    }
}

/// False at the end of the input.
bool LineInput::fill() {
    // Polled by hand: event loops refuse to watch plain files, and input comes from those too.
    pollfd input = {descriptor_, POLLIN, 0};
    while (::poll(&input, 1, kPollMilliseconds) == 0) {
        QCoreApplication::processEvents();
    }
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
    if (count > 0) {
        waiting_.append(buffer.data(), count);
    }
    return count > 0 || (count < 0 && errno == EINTR);
}

} // namespace navrel
