#pragma once

#include <QString>

namespace navrel {

/// One instance a session: a lock that the kernel drops with the process, however it ends.
class InstanceLock {
public:
    /// Tries to take the lock in a file, which is made if need be and stays. No lock is taken where
    /// the file cannot be made: a session without a runtime folder does without.
    explicit InstanceLock(const QString& filePath);
    ~InstanceLock();
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;

    /// Whether another process holds the lock.
    bool isTaken() const { return isTaken_; }

private:
    int descriptor_ = -1;
    bool isTaken_ = false;
};

} // namespace navrel
