#include "companion/terminal/Pager.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace navrel {

namespace {

/// Signals that a key may send to all programs of the terminal, or a pager that ends early.
class IgnoredSignals {
public:
    IgnoredSignals()
        : pipe_(std::signal(SIGPIPE, SIG_IGN)), interrupt_(std::signal(SIGINT, SIG_IGN)) {}
    ~IgnoredSignals() {
        std::signal(SIGPIPE, pipe_);
        std::signal(SIGINT, interrupt_);
    }
    IgnoredSignals(const IgnoredSignals&) = delete;
    IgnoredSignals& operator=(const IgnoredSignals&) = delete;

private:
    using Handler = void (*)(int);
    Handler pipe_;
    Handler interrupt_;
};

constexpr int kCommandNotFound = 127;

} // namespace

bool needsPager(const QString& text, const TerminalTraits& traits) {
    return traits.isTerminal && traits.height > 1 && text.count(u'\n') >= traits.height;
}

bool showInPager(const QByteArray& text) {
    const char* const chosen = std::getenv("PAGER");
    const char* const command = chosen != nullptr && *chosen != '\0' ? chosen : "less";
    ::setenv("LESS", "FRX", 0); // colours as they are, and no screen of its own
    ::setenv("LESSCHARSET", "utf-8", 0);
    const IgnoredSignals ignored;
    std::FILE* const pager = ::popen(command, "w");
    if (pager == nullptr) {
        return false;
    }
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), pager);
    const int status = ::pclose(pager);
    return !(WIFEXITED(status) && WEXITSTATUS(status) == kCommandNotFound);
}

} // namespace navrel
