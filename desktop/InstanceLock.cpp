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

// Closed on exec: an editor that we start must not hold a lock after we are gone.

OwnedDescriptor openSessionFile(const QString& path) {
    OwnedDescriptor file(::open(QFile::encodeName(path).constData(),
                                O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
    struct stat status = {};
    const bool isOurs = file.isValid() && ::fstat(file.value(), &status) == 0 &&
                        S_ISREG(status.st_mode) && status.st_uid == ::geteuid();
    return isOurs ? std::move(file) : OwnedDescriptor();
}

OwnedDescriptor openStoreFolder(const QByteArray& path) {
    return makeStoreFolder(path)
               ? OwnedDescriptor()
               : OwnedDescriptor(
                     ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
}

} // namespace

InstanceLock::InstanceLock(const std::optional<QString>& sessionFile, const QString& storeFolder)
    : sessionFile_(sessionFile ? openSessionFile(*sessionFile) : OwnedDescriptor()),
      storeFolder_(openStoreFolder(QFile::encodeName(storeFolder))) {
    lock(sessionFile_);
    lock(storeFolder_);
}

void InstanceLock::lock(const OwnedDescriptor& file) {
    if (file.isValid() && ::flock(file.value(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        isTaken_ = true;
    }
}

} // namespace navrel
