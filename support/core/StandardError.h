#pragma once

#include "support/core/LogOutput.h"
#include "support/files/OwnedDescriptor.h"

#include <QByteArray>

#include <sys/types.h>

namespace navrel {

/// Standard error, each line behind "Navrel: ". A pipe or a terminal that nobody reads takes
/// nothing; where there is no standard error, nothing is lost.
class StandardError final : public LogOutput {
public:
    /// Another descriptor is for tests. It stays the caller's.
    explicit StandardError(int descriptor = 2) : descriptor_(descriptor) {}

private:
    bool take(const QByteArray& line) override;
    bool write(const QByteArray& text);
    void openUnblocked(dev_t device, ino_t inode);

    int descriptor_;
    // A second way to the same pipe or terminal, of which alone it is known that it does not block:
    // other programs share the first.
    OwnedDescriptor own_;
    dev_t ownDevice_ = 0;
    ino_t ownInode_ = 0;
    bool isInLine_ = false; ///< a line was cut short
};

} // namespace navrel
