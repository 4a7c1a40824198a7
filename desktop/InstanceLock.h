#pragma once

#include "support/files/OwnedDescriptor.h"

#include <QString>

#include <optional>

namespace navrel {

/// One instance a session and a store: locks that the kernel drops with the process, however it
/// ends. They are on a file in the session's runtime folder and on the store's folder, so that a
/// second instance is found out also where one of the two cannot be locked: it would write records
/// into the first one's store.
class InstanceLock {
public:
    /// Tries to take the locks. The session's file is made if need be and stays; nil, and anything
    /// but a regular file of this user, means that there is none. The store's folder is made too,
    /// for the user alone; where it cannot be had, there is no store to protect.
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
