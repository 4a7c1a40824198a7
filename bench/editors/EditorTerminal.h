#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <QStringList>

#include <chrono>
#include <memory>
#include <sys/types.h>

namespace navrel::bench {

/// A pseudo-terminal with an editor in it: keys go in, and what comes out is kept with its time.
/// Main thread.
class EditorTerminal {
public:
    explicit EditorTerminal(const QStringList& command);
    /// Ends the program.
    ~EditorTerminal();
    EditorTerminal(const EditorTerminal&) = delete;
    EditorTerminal& operator=(const EditorTerminal&) = delete;

    void type(const QByteArray& keys) const;
    /// Forgets what was drawn.
    void forgetOutput() { output_.clear(); }
    /// Whether a text was drawn since.
    bool hasDrawn(const QByteArray& text) const { return output_.contains(text); }

private:
    void read();

    int terminal_ = -1;
    pid_t process_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
    QByteArray output_;
};

} // namespace navrel::bench
