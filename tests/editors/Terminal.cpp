#include "tests/editors/Terminal.h"

#include "support/process/ToolRunner.h"
#include "tests/WaitUntil.h"

#include <utility>

namespace navrel {

namespace {

constexpr std::chrono::seconds kToolAtMost{20};

} // namespace

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    const auto path = findTool(program);
    const auto output = path ? outputOfTool(*path, arguments, kToolAtMost) : std::nullopt;
    return output.value_or(QByteArray()).trimmed();
}

bool Terminal::isAvailable() {
    return findTool(QStringLiteral("tmux")).has_value();
}

Terminal::Terminal(QString socketPath) : socketPath_(std::move(socketPath)) {}

Terminal::~Terminal() {
    tmux({QStringLiteral("kill-server")});
}

bool Terminal::start(const QStringList& command) {
    tmux(QStringList{QStringLiteral("new-session"), QStringLiteral("-d"), QStringLiteral("-x"),
                     QStringLiteral("80"), QStringLiteral("-y"), QString::number(kRows)} +
         command);
    return waitUntil([this] { return processID() != 0; });
}

void Terminal::type(const QStringList& keys) const {
    tmux(QStringList{QStringLiteral("send-keys")} + keys);
}

QByteArray Terminal::screen() const {
    return tmux({QStringLiteral("capture-pane"), QStringLiteral("-p")});
}

bool Terminal::waitForScreen(const QByteArray& text) const {
    return waitUntil([&] { return screen().contains(text); });
}

qint64 Terminal::processID() const {
    return tmux({QStringLiteral("list-panes"), QStringLiteral("-F"), QStringLiteral("#{pane_pid}")})
        .toLongLong();
}

QByteArray Terminal::tmux(const QStringList& arguments) const {
    return outputOf(QStringLiteral("tmux"),
                    QStringList{QStringLiteral("-f"), QStringLiteral("/dev/null"),
                                QStringLiteral("-S"), socketPath_} +
                        arguments);
}

} // namespace navrel
