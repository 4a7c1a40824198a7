#pragma once

#include <QString>

#include <chrono>

namespace navrel {

/// What is waited for.
enum class Wait {
    navrel,  ///< that a Navrel of this user's answers
    project, ///< that it has read a project
};

/// One line for users: what is waited for, how long already, and what would help. Pure.
QString waitingText(Wait wait, std::chrono::seconds passed, std::chrono::seconds atMost,
                    bool isDevice);

} // namespace navrel
