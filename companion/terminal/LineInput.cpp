#include "companion/terminal/LineInput.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace navrel {

namespace {

/// A command is a word and a path. What is longer is cut there, so that a binary file on standard
/// input does not fill the memory.
constexpr qsizetype kLongestLine = 64 * 1024;

constexpr int kForever = -1;

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

void LineInput::waitUntilReadable(int descriptor) {
    pollfd input = {descriptor, POLLIN, 0};
    ::poll(&input, 1, kForever);
}

/// False at the end of the input.
bool LineInput::fill() {
    wait_(descriptor_);
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(descriptor_, buffer.data(), buffer.size());
    if (count > 0) {
        waiting_.append(buffer.data(), count);
    }
    return count > 0 || (count < 0 && errno == EINTR);
}

} // namespace navrel
