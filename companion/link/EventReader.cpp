#include "companion/link/EventReader.h"

namespace navrel {

bool EventReader::receive(std::string_view bytes) {
    unread_.append(bytes);
    for (;;) {
        const auto end = unread_.find("\n\n");
        if (end == std::string::npos) {
            return true;
        }
        const std::string event = unread_.substr(0, end + 1);
        unread_.erase(0, end + 2);
        if (!takeEvent(event)) {
            return false;
        }
    }
}

bool EventReader::takeEvent(std::string_view lines) const {
    std::string_view name;
    std::string_view data;
    while (!lines.empty()) {
        constexpr std::string_view kName = "event: ";
        constexpr std::string_view kData = "data: ";
        const auto end = lines.find('\n');
        const std::string_view line = lines.substr(0, end);
        lines.remove_prefix(end == std::string_view::npos ? lines.size() : end + 1);
        if (line.starts_with(kName)) {
            name = line.substr(kName.size());
        } else if (line.starts_with(kData)) {
            data = line.substr(kData.size());
        }
    }
    return name.empty() || take_(name, data); // what has no name is a heartbeat
}

} // namespace navrel
