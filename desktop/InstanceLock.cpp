#include "desktop/InstanceLock.h"

#include "project/store/StoreFolder.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace navrel {

namespace {

constexpr int kNoDescriptor = -1;

// Closed on exec: an editor that we start must not hold a lock after we are gone.

int openSessionFile(const QString& path) {
    const int descriptor = ::open(QFile::encodeName(path).constData(),
                                  O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    struct stat status = {};
    const bool isOurs = descriptor != kNoDescriptor && ::fstat(descriptor, &status) == 0 &&
                        S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
    if (descriptor != kNoDescriptor && !isOurs) {
        ::close(descriptor);
    }
    return isOurs ? descriptor : kNoDescriptor;
}

int openStoreFolder(const QByteArray& path) {
    return makeStoreFolder(path)
               ? kNoDescriptor
               : ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK);
}

void close(int descriptor) {
    if (descriptor != kNoDescriptor) {
        ::close(descriptor);
    }
}

} // namespace

InstanceLock::InstanceLock(const std::optional<QString>& sessionFile, const QString& storeFolder)
    : sessionFile_(sessionFile ? openSessionFile(*sessionFile) : kNoDescriptor),
      storeFolder_(openStoreFolder(QFile::encodeName(storeFolder))) {
    lock(sessionFile_);
    lock(storeFolder_);
}

InstanceLock::~InstanceLock() {
    close(sessionFile_);
    close(storeFolder_);
}

void InstanceLock::lock(int descriptor) {
    if (descriptor != kNoDescriptor && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 &&
        errno == EWOULDBLOCK) {
        isTaken_ = true;
    }
}

} // namespace navrel
