#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace navrel {

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
