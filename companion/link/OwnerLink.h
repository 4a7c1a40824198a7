#pragma once

#include "companion/link/EventReader.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace navrel {

/// Where a running Navrel of this user's listens for its owner; empty where the system gives users
/// no folder for such.
std::string ownerSocketPath();

/// Asks a running Navrel with its owner's rights, over its Unix socket. Blocks.
class OwnerLink {
public:
    explicit OwnerLink(std::string socketPath) : socketPath_(std::move(socketPath)) {}

    struct Answer {
        long status = 0;
        std::string body;
    };
    /// Nothing where no Navrel answers.
    std::optional<Answer> ask(const std::string& method, const std::string& target,
                              const std::string& body = {}) const;

    /// How reading events ended.
    enum class End {
        taken,      ///< no more was wanted
        lost,       ///< no Navrel answers, or it has gone
        timeIsOver, ///< nothing wanted came in time
        stopped,    ///< `stopDescriptor` can be read
    };
    /// Reads events until `take` wants no more, or one of the other ends. Sleeps in the kernel
    /// meanwhile. A negative descriptor stops nothing, and without `atMost` there is no hurry.
    End readEvents(const EventReader::Take& take, std::optional<std::chrono::milliseconds> atMost,
                   int stopDescriptor = -1) const;

private:
    const std::string socketPath_;
};

} // namespace navrel
