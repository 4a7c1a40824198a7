#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QString>

#include <optional>

namespace navrel {

/// Allows one instance for each login session and each store, by locks that the kernel releases
/// with the process, however it ends. One is on a file in the session's runtime folder, the other
/// on the store's folder: a second instance, which would write records into the first one's store,
/// is detected even if one of the two cannot be locked.
class InstanceLock {
public:
    /// Tries to take the locks, without blocking. The session's file is created if it is missing,
    /// and not deleted; nil, or anything but a regular file of this user, is not locked. The
    /// store's folder is created too, for this user only; if that fails, there is no store to
    /// protect.
    InstanceLock(const std::optional<QString>& sessionFile, const QString& storeFolder);

    /// Whether another process holds one of the locks.
    bool isTaken() const { return isTaken_; }

private:
    void lock(const OwnedDescriptor& file);

    OwnedDescriptor sessionFile_;
    OwnedDescriptor storeFolder_;
    bool isTaken_ = false;
};

} // namespace navrel
