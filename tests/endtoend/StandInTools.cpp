#include "tests/endtoend/StandInTools.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {

namespace {

constexpr char kTools[] = "/usr/bin";

bool bindFolder(const QByteArray& from, const char* to) {
    return ::mount(from.constData(), to, nullptr, MS_BIND, nullptr) == 0;
}

} // namespace

StandInTools::StandInTools() {
    if (!enterNamespace() || !replaceFolder()) {
        failure_ = QByteArray("no mount namespace of its own: ") + std::strerror(errno);
    }
}

StandInTools::~StandInTools() {
    if (namespaceBefore_ >= 0) {
        // What was mounted ends with the namespace. Where it cannot be left nothing is cleaned up:
        // the real tools are still below the scratch folder.
        folder_.setAutoRemove(::setns(namespaceBefore_, CLONE_NEWNS) == 0);
        ::close(namespaceBefore_);
    }
}

bool StandInTools::enterNamespace() {
    namespaceBefore_ = ::open("/proc/thread-self/ns/mnt", O_RDONLY | O_CLOEXEC);
    return namespaceBefore_ >= 0 && ::unshare(CLONE_NEWNS) == 0 &&
           ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Puts a folder in the place of `/usr/bin` in which every tool is a link to the real one, so that
/// more can be added.
bool StandInTools::replaceFolder() {
    const QByteArray real = pathOf("real");
    const QByteArray shown = pathOf("shown");
    ::mkdir(real.constData(), 0755);
    ::mkdir(shown.constData(), 0755);
    constexpr unsigned long kMadeReadOnly = MS_BIND | MS_REMOUNT | MS_RDONLY;
    if (!bindFolder(kTools, real.constData()) ||
        ::mount(nullptr, real.constData(), nullptr, kMadeReadOnly, nullptr) != 0) {
        return false;
    }
    for (const auto& tool : std::filesystem::directory_iterator(real.toStdString())) {
        const auto link = std::filesystem::path(shown.toStdString()) / tool.path().filename();
        std::filesystem::create_symlink(tool.path(), link);
    }
    return bindFolder(shown, kTools);
}

void StandInTools::put(const char* name, const QByteArray& script) const {
    const QByteArray path = pathOf("shown/") + name;
    std::ofstream(path.toStdString()) << "#!/bin/sh\n" << script.toStdString();
    ::chmod(path.constData(), 0755);
}

} // namespace navrel
