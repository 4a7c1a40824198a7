#include "tests/RealUSBDaemon.h"

#include "tests/WaitUntil.h"

#include <QStandardPaths>

#include <unistd.h>

namespace navrel {

namespace {

constexpr char kInOwnRun[] =
    "mount --make-rprivate / && mount --bind \"$1\" /run && "
    "exec \"$2\" --foreground --verbose --verbose --no-preflight --user root";

} // namespace

RealUSBDaemon::~RealUSBDaemon() {
    stop();
}

QString RealUSBDaemon::address() const {
    return QStringLiteral("UNIX:") + folder_.filePath(QStringLiteral("usbmuxd"));
}

bool RealUSBDaemon::start() {
    const QString name = QStringLiteral("usbmuxd");
    QString daemon = QStandardPaths::findExecutable(name);
    if (daemon.isEmpty()) {
        daemon = QStandardPaths::findExecutable(name, {QStringLiteral("/usr/sbin")});
    }
    if (daemon.isEmpty()) {
        log_ = "usbmuxd is not installed";
        return false;
    }
    QStringList arguments = {QStringLiteral("--mount")};
    if (::geteuid() != 0) {
        arguments.append(QStringLiteral("--map-root-user"));
    }
    arguments += {QStringLiteral("sh"), QStringLiteral("-c"), QString::fromLatin1(kInOwnRun),
                  QStringLiteral("sh"), folder_.path(),       daemon};
    process_.setProcessChannelMode(QProcess::MergedChannels);
    log_.clear();
    process_.start(QStringLiteral("unshare"), arguments, QIODevice::ReadOnly);
    return process_.waitForStarted() && waitUntil([&] {
               return log().contains("Initialization complete") ||
                      process_.state() == QProcess::NotRunning;
           }) &&
           process_.state() == QProcess::Running;
}

void RealUSBDaemon::stop() {
    if (process_.state() != QProcess::NotRunning) {
        process_.terminate();
        process_.waitForFinished();
    }
}

QByteArray RealUSBDaemon::log() {
    log_ += process_.readAll();
    return log_;
}

} // namespace navrel
