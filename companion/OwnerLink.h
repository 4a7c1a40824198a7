#pragma once

#include <functional>
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

    /// Reads events until `take`, which gets their names and data, wants no more. False where no
    /// Navrel answers, or the stream ends before, or nothing wanted comes within half a minute.
    bool
    readEvents(const std::function<bool(std::string_view name, std::string_view data)>& take) const;

private:
    const std::string socketPath_;
};

/// Takes apart a stream of events as it arrives, in whatever pieces.
class EventReader {
public:
    using Take = std::function<bool(std::string_view name, std::string_view data)>;

    explicit EventReader(Take take) : take_(std::move(take)) {}

    /// False once no more is wanted.
    bool receive(std::string_view bytes);

private:
    bool takeEvent(std::string_view lines) const;

    const Take take_;
    std::string unread_;
};

} // namespace navrel
