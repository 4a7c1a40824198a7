#include "tests/endtoend/NavrelProcess.h"

#include "tests/WaitUntil.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace navrel {

namespace {

constexpr int kExitMilliseconds = 20'000;

QString binary() {
    return QCoreApplication::applicationDirPath() + QStringLiteral("/navrel");
}

/// Between fork and exec: calls of the system alone.
bool writeWhole(const char* path, const QByteArray& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool isWritten =
        file >= 0 &&
        ::write(file, text.constData(), static_cast<std::size_t>(text.size())) == text.size();
    ::close(file);
    return isWritten;
}

/// A user as the same user of a namespace.
QByteArray sameUser(unsigned user) {
    const QByteArray number = QByteArray::number(user);
    return number + ' ' + number + " 1";
}

} // namespace

NavrelProcess::NavrelProcess()
    : usbDaemonAddress_(QStringLiteral("UNIX:") + profile_.filePath(QStringLiteral("usbmuxd"))) {
    QDir(profile_.path()).mkpath(QStringLiteral("config/nl.kelvane"));
    // As the session manager makes it: Qt complains of one that others can look into.
    QDir(profile_.path())
        .mkdir(QStringLiteral("run"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

NavrelProcess::~NavrelProcess() {
    kill();
}

QString NavrelProcess::runtimeFolder() const {
    return profile_.filePath(QStringLiteral("run"));
}

QString NavrelProcess::storeFile() const {
    return profile_.filePath(QStringLiteral("data/nl.kelvane.Navrel/OSXCoreDataObjC.storedata"));
}

QString NavrelProcess::defaultsFile() const {
    return profile_.filePath(QStringLiteral("config/nl.kelvane/Navrel.conf"));
}

void NavrelProcess::setLastKnownProject(const QString& path) {
    writeDefaults("[General]\nautomaticProjectSelection=false\nlastKnownProject=\"" +
                  path.toUtf8() + "\"\n");
}

void NavrelProcess::writeDefaults(const QByteArray& text) {
    QFile file(defaultsFile());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(text);
    }
}

void NavrelProcess::prepare(QProcess& process, const QStringList& arguments) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"),
                       profile_.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), profile_.filePath(QStringLiteral("data")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder());
    environment.insert(QStringLiteral("USBMUXD_SOCKET_ADDRESS"), usbDaemonAddress_);
    // Without a display the program chooses its platform by itself.
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    // Nor does it show itself on the desktop of the user who runs the tests.
    environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    for (auto variable = extraEnvironment_.cbegin(); variable != extraEnvironment_.cend();
         ++variable) {
        environment.insert(variable.key(), variable.value());
    }
    process.setProcessEnvironment(environment);
    process.setProgram(binary());
    process.setArguments(arguments);
}

bool NavrelProcess::replaceFile(const QString& path, const QString& replacement) {
    // In a mount namespace of its own; tried out first, as a process that is about to be the
    // program cannot tell what failed.
    QProcess trial;
    trial.start(QStringLiteral("unshare"), {QStringLiteral("--mount"), QStringLiteral("mount"),
                                            QStringLiteral("--bind"), replacement, path});
    if (!trial.waitForFinished() || trial.exitStatus() != QProcess::NormalExit ||
        trial.exitCode() != 0) {
        return false;
    }
    process_.setChildProcessModifier(
        [from = QFile::encodeName(replacement), to = QFile::encodeName(path)] {
            const bool isReplaced =
                ::unshare(CLONE_NEWNS) == 0 &&
                ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                ::mount(from.constData(), to.constData(), nullptr, MS_BIND, nullptr) == 0;
            if (!isReplaced) {
                ::_exit(127);
            }
        });
    return true;
}

bool NavrelProcess::setLimit(const QByteArray& name, int value) {
    const QByteArray file = "/proc/sys/user/" + name;
    const QByteArray text = QByteArray::number(value);
    QProcess trial; // for the reason above
    trial.start(QStringLiteral("unshare"),
                {QStringLiteral("--user"), QStringLiteral("--map-current-user"),
                 QStringLiteral("sh"), QStringLiteral("-c"),
                 QString::fromLatin1("echo " + text + " > " + file)});
    if (!trial.waitForFinished() || trial.exitStatus() != QProcess::NormalExit ||
        trial.exitCode() != 0) {
        return false;
    }
    process_.setChildProcessModifier([file, text, user = sameUser(::geteuid())] {
        const bool isLimited = ::unshare(CLONE_NEWUSER) == 0 &&
                               writeWhole("/proc/self/uid_map", user) &&
                               writeWhole(file.constData(), text);
        if (!isLimited) {
            ::_exit(127);
        }
    });
    return true;
}

bool NavrelProcess::start() {
    log_.clear();
    prepare(process_, {});
    process_.start(QIODevice::ReadOnly);
    return process_.waitForStarted();
}

void NavrelProcess::kill() {
    process_.kill();
    process_.waitForFinished();
}

bool NavrelProcess::isRunning() const {
    return process_.state() == QProcess::Running;
}

std::optional<int> NavrelProcess::waitForExit() {
    if (!process_.waitForFinished(kExitMilliseconds) ||
        process_.exitStatus() != QProcess::NormalExit) {
        return std::nullopt;
    }
    return process_.exitCode();
}

QByteArray NavrelProcess::log() {
    log_ += process_.readAllStandardError();
    return log_;
}

bool NavrelProcess::waitForLog(const QByteArray& text) {
    return waitUntil([&] { return log().contains(text); });
}

NavrelProcess::Outcome NavrelProcess::runSecondInstance(const QStringList& arguments) {
    QProcess second;
    prepare(second, arguments);
    second.start(QIODevice::ReadOnly);
    if (!second.waitForFinished(kExitMilliseconds) || second.exitStatus() != QProcess::NormalExit) {
        return {};
    }
    return {second.exitCode(), second.readAllStandardError()};
}

} // namespace navrel
