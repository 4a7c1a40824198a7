#include "companion/terminal/Waiting.h"

namespace navrel {

QString waitingText(Wait wait, std::chrono::seconds passed, std::chrono::seconds atMost,
                    bool isDevice) {
    const QString time = QStringLiteral(" (%1 of %2 s)").arg(passed.count()).arg(atMost.count());
    if (wait == Wait::project) {
        return QStringLiteral("Waiting for Navrel to read a project%1: open one in your editor, or "
                              "choose one in Navrel's menu.")
            .arg(time);
    }
    return isDevice
               ? QStringLiteral("Waiting for Navrel to connect to port 2345%1: start navrel, and "
                                "disconnect any other device.")
                     .arg(time)
               : QStringLiteral("Waiting for Navrel%1: start it with navrel, as the same user.")
                     .arg(time);
}

} // namespace navrel
