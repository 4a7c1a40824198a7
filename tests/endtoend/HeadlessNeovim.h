#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>

namespace navrel {

/// The real Neovim, without a terminal, listening on a socket.
class HeadlessNeovim {
public:
    /// Whether there is one to test with.
    static bool isAvailable();

    ~HeadlessNeovim();

    /// Starts it on a file and waits until it can be asked. False when it did not come up.
    [[nodiscard]] bool start(const QString& socket, const QString& file);

    qint64 processID() const { return process_.processId(); }
    /// Ends it as a crash would; waits until it is gone.
    void kill();

    /// What an expression of Vim's script language evaluates to.
    QByteArray valueOf(const QString& expression) const;

private:
    QString socket_;
    QProcess process_;
};

} // namespace navrel
