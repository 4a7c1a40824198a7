#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>

namespace navrel {

/// A terminal of 80 by 24 characters without a person: tmux, with one program in it.
class Terminal {
public:
    static constexpr int kRows = 24;

    /// Whether there is a tmux to make one with.
    static bool isAvailable();

    /// `socketPath` is tmux's own; it must not exist.
    explicit Terminal(QString socketPath);
    /// Ends the program.
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    [[nodiscard]] bool start(const QStringList& command);
    /// Types: names of keys ("Escape", "C-x"), or characters that name none.
    void type(const QStringList& keys) const;
    /// What stands on the screen.
    QByteArray screen() const;
    [[nodiscard]] bool waitForScreen(const QByteArray& text) const;
    /// The process that runs in it; 0 when there is none.
    qint64 processID() const;

private:
    QByteArray tmux(const QStringList& arguments) const;

    const QString socketPath_;
};

/// Runs a program and gives what it wrote, without the blanks around it.
QByteArray outputOf(const QString& program, const QStringList& arguments);

} // namespace navrel
