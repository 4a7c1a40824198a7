#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace navrel {

/// Debian's own USB multiplexing daemon, in the foreground, without devices. Its socket is in a
/// folder of the test: the daemon runs in a mount namespace of its own, where that folder is /run.
class RealUSBDaemon {
public:
    ~RealUSBDaemon();

    /// As USBMUXD_SOCKET_ADDRESS wants it.
    QString address() const;

    /// False when the daemon is not installed or cannot run here; `log` says why.
    [[nodiscard]] bool start();
    /// Ends it; its socket's file stays behind.
    void stop();

    /// Everything that it has written so far.
    QByteArray log();

private:
    QTemporaryDir folder_;
    QProcess process_;
    QByteArray log_;
};

} // namespace navrel
