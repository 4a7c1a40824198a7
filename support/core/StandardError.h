#pragma once

#include "support/core/LogOutput.h"
#include "support/files/OwnedDescriptor.h"

#include <QByteArray>

#include <sys/types.h>

namespace navrel {

/// Standard error as an output of the log; each line begins with "Navrel: ". A pipe or terminal
/// that is full loses lines. If there is no standard error, lines are dropped and not counted as
/// lost.
class StandardError final : public LogOutput {
public:
    /// `descriptor` is not owned, and must outlive this. Tests pass another one.
    explicit StandardError(int descriptor = 2) : descriptor_(descriptor) {}

private:
    bool take(const QByteArray& line) override;
    bool write(const QByteArray& text);
    void openUnblocked(dev_t device, ino_t inode);

    int descriptor_;
    // The same pipe or terminal, opened again so that it does not block. The descriptor itself is
    // shared with other programs, which may expect it to block.
    OwnedDescriptor own_;
    dev_t ownDevice_ = 0;
    ino_t ownInode_ = 0;
    bool isInLine_ = false; ///< the last line was written in part
};

} // namespace navrel
