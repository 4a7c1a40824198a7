#pragma once

#include <QByteArray>
#include <QMap>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <optional>

namespace navrel {

/// The real program in a profile of its own: scratch folders for preferences, store and lock, kept
/// from one start to the next.
class NavrelProcess {
public:
    NavrelProcess();
    ~NavrelProcess();
    NavrelProcess(const NavrelProcess&) = delete;
    NavrelProcess& operator=(const NavrelProcess&) = delete;

    /// The project that the next start loads, with automatic selection off.
    void setLastKnownProject(const QString& path);
    /// Replaces the preferences file.
    void writeDefaults(const QByteArray& text);

    /// Where the next start looks for the USB multiplexing daemon, as USBMUXD_SOCKET_ADDRESS wants
    /// it; at first where there is none.
    void setUSBDaemonAddress(const QString& address) { usbDaemonAddress_ = address; }

    /// A variable in the environment of the next starts.
    void setEnvironment(const QString& name, const QString& value) {
        extraEnvironment_.insert(name, value);
    }

    /// A file that the next starts find in the place of another one. False where this machine does
    /// not let a test mount.
    [[nodiscard]] bool replaceFile(const QString& path, const QString& replacement);

    /// Sets a limit of the kernel on what the next starts may use, such as "max_inotify_watches".
    /// False where this machine does not let a test make a user namespace for it.
    [[nodiscard]] bool setLimit(const QByteArray& name, int value);

    [[nodiscard]] bool start();
    /// Ends it as the system does at the worst of times.
    void kill();
    bool isRunning() const;
    /// Waits for it to end by itself; its exit status.
    std::optional<int> waitForExit();

    /// Everything on its standard error since it was started.
    QByteArray log();
    [[nodiscard]] bool waitForLog(const QByteArray& text);

    /// Runs a second instance in the same session to its end.
    struct Outcome {
        int exitStatus = -1;
        QByteArray standardError;
    };
    Outcome runSecondInstance(const QStringList& arguments = {});

    /// XDG_RUNTIME_DIR of the program.
    QString runtimeFolder() const;
    QString storeFile() const;
    QString defaultsFile() const;

private:
    void prepare(QProcess& process, const QStringList& arguments) const;

    QTemporaryDir profile_;
    QString usbDaemonAddress_;
    QMap<QString, QString> extraEnvironment_;
    QProcess process_;
    QByteArray log_;
};

} // namespace navrel
