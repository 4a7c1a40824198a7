#include "companion/terminal/Theme.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <langinfo.h>
#include <poll.h>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace navrel {

namespace {

using Background = TerminalText::Background;
using std::chrono::milliseconds;

/// For the background's colour, then for what the terminal is, which all of them know.
constexpr std::string_view kQuestion = "\x1B]11;?\x1B\\\x1B[c";
/// A reply is far shorter.
constexpr std::size_t kLongestReply = 256;

/// Keys and replies as they come, unseen, until its end.
class RawTerminal {
public:
    explicit RawTerminal(int terminal) : terminal_(terminal) {
        isChanged_ = ::tcgetattr(terminal, &former_) == 0;
        termios raw = former_;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        isChanged_ = isChanged_ && ::tcsetattr(terminal, TCSANOW, &raw) == 0;
    }
    ~RawTerminal() {
        if (isChanged_) {
            ::tcsetattr(terminal_, TCSANOW, &former_);
        }
    }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

private:
    const int terminal_;
    termios former_ = {};
    bool isChanged_ = false;
};

/// Of 0 to 1; a colour has one to four hexadecimal digits.
double partOf(std::string_view digits) {
    constexpr std::size_t kMostDigits = 4;
    unsigned value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value, 16);
    if (error != std::errc() || stop != end || digits.empty() || digits.size() > kMostDigits) {
        return -1;
    }
    return static_cast<double>(value) / static_cast<double>((1U << (4 * digits.size())) - 1);
}

/// Whether a reply has come whole: the answer to the second question ends in "c".
bool isWhole(std::string_view reply) {
    const auto begin = reply.rfind("\x1B[");
    return begin != std::string_view::npos && reply.find('c', begin) != std::string_view::npos;
}

} // namespace

Background backgroundOfVariable(std::string_view text) {
    const auto last = text.rfind(';');
    int colour = -1;
    if (last != std::string_view::npos) {
        std::from_chars(text.data() + last + 1, text.data() + text.size(), colour);
    }
    constexpr int kWhite = 7; // and the bright colours, but for bright black
    constexpr int kBrightBlack = 8;
    constexpr int kLast = 15;
    if (colour < 0 || colour > kLast) {
        return Background::unknown;
    }
    return colour < kWhite || colour == kBrightBlack ? Background::dark : Background::light;
}

Background backgroundOfReply(std::string_view reply) {
    constexpr std::string_view kBegin = "]11;rgb:";
    const auto at = reply.find(kBegin);
    if (at == std::string_view::npos) {
        return Background::unknown;
    }
    reply.remove_prefix(at + kBegin.size());
    reply = reply.substr(0, reply.find_first_of("\x1B\a"));
    std::array<double, 3> parts = {};
    for (double& part : parts) {
        const auto slash = reply.find('/');
        part = partOf(reply.substr(0, slash));
        if (part < 0) {
            return Background::unknown;
        }
        reply.remove_prefix(slash == std::string_view::npos ? reply.size() : slash + 1);
    }
    const double brightness = 0.2126 * parts[0] + 0.7152 * parts[1] + 0.0722 * parts[2];
    return brightness < 0.5 ? Background::dark : Background::light;
}

Background askForBackground(int terminal, milliseconds atMost) {
    const RawTerminal raw(terminal);
    if (::write(terminal, kQuestion.data(), kQuestion.size()) < 0) {
        return Background::unknown;
    }
    using Steady = std::chrono::steady_clock;
    const auto deadline = Steady::now() + atMost;
    std::string reply;
    while (!isWhole(reply) && reply.size() < kLongestReply) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Steady::now());
        pollfd waited = {terminal, POLLIN, 0};
        std::array<char, kLongestReply> bytes;
        if (left <= milliseconds(0) || ::poll(&waited, 1, static_cast<int>(left.count())) <= 0) {
            break;
        }
        const ssize_t count = ::read(terminal, bytes.data(), bytes.size());
        if (count <= 0) {
            break;
        }
        reply.append(bytes.data(), static_cast<std::size_t>(count));
    }
    return backgroundOfReply(reply);
}

TerminalTraits traitsOfOutput() {
    TerminalTraits traits;
    traits.isTerminal = ::isatty(STDOUT_FILENO) != 0;
    traits.isUnicode = std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    winsize size = {};
    if (traits.isTerminal && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) {
        traits.width = size.ws_col;
        traits.height = size.ws_row;
    }
    return traits;
}

} // namespace navrel
