#pragma once

#include <sys/types.h>

namespace navrel {

/// A process of another user that listens on the companion app's port. Only root can make one.
class ForeignListener {
public:
    /// Returns once it listens, or failed to.
    ForeignListener();
    ~ForeignListener();
    ForeignListener(const ForeignListener&) = delete;
    ForeignListener& operator=(const ForeignListener&) = delete;

    bool isReady() const { return isReady_; }

private:
    pid_t process_ = -1;
    bool isReady_ = false;
};

} // namespace navrel
