#include "support/core/LogOutput.h"

namespace navrel {

void LogOutput::put(const QByteArray& line) {
    const bool isFlowing =
        lost_ == 0 || take("Lines of the log that were lost here, as nobody read them: " +
                           QByteArray::number(lost_));
    if (isFlowing) {
        lost_ = 0;
    }
    if (!isFlowing || !take(line)) {
        ++lost_;
    }
}

} // namespace navrel
