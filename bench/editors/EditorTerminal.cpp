#include "bench/editors/EditorTerminal.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace navrel::bench {

namespace {

constexpr winsize kSize{24, 80, 0, 0};

[[noreturn]] void run(const QStringList& command) {
    std::vector<std::string> words;
    for (const QString& word : command) {
        words.push_back(word.toStdString());
    }
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    ::setenv("TERM", "xterm-256color", 1);
    ::execvp(arguments.front(), arguments.data());
    ::_exit(127);
}

} // namespace

EditorTerminal::EditorTerminal(const QStringList& command) {
    process_ = ::forkpty(&terminal_, nullptr, nullptr, &kSize);
    if (process_ == 0) {
        run(command);
    }
    notifier_ = std::make_unique<QSocketNotifier>(terminal_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { read(); });
}

EditorTerminal::~EditorTerminal() {
    notifier_ = nullptr;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    ::close(terminal_);
}

void EditorTerminal::type(const QByteArray& keys) const {
    if (::write(terminal_, keys.constData(), static_cast<size_t>(keys.size())) != keys.size()) {
        std::abort();
    }
}

void EditorTerminal::read() {
    std::array<char, 65536> piece;
    const ssize_t count = ::read(terminal_, piece.data(), piece.size());
    if (count <= 0) {
        notifier_->setEnabled(false);
        return;
    }
    output_.append(piece.data(), count);
}

} // namespace navrel::bench
