#include "desktop/InstanceLock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace navrel {

InstanceLock::InstanceLock(const QString& filePath) {
    // Closed on exec: an editor that we start must not hold the lock after we are gone.
    descriptor_ = ::open(QFile::encodeName(filePath).constData(),
                         O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (descriptor_ >= 0) {
        isTaken_ = ::flock(descriptor_, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    }
}

InstanceLock::~InstanceLock() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

} // namespace navrel
