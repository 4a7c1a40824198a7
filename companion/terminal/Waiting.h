#pragma once

#include <QString>

#include <chrono>

namespace navrel {

/// What the companion waits for.
enum class Wait {
    navrel,  ///< for a Navrel to answer
    project, ///< for that Navrel to have read a project
};

/// One line for users: what the companion waits for, how long it has waited and will at most, and
/// what the user can do. `isDevice` says that it waits for Navrel as a device does, on its port,
/// rather than on the socket of the user's own Navrel. Pure.
QString waitingText(Wait wait, std::chrono::seconds passed, std::chrono::seconds atMost,
                    bool isDevice);

} // namespace navrel
