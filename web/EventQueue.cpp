#include "web/EventQueue.h"

#include <utility>

namespace navrel {

void EventQueue::add(std::string_view event) {
    if (lostSome_) {
        return;
    }
    if (unsent() + event.size() <= limit_) {
        waiting_ += event;
        return;
    }
    waiting_ = eventText("resync", "{}");
    lostSome_ = true;
}

std::string EventQueue::take() {
    lostSome_ = false;
    underWay_ = waiting_.size();
    return std::exchange(waiting_, {});
}

std::string eventText(std::string_view name, std::string_view data) {
    std::string text = "event: ";
    text.append(name).append("\ndata: ").append(data).append("\n\n");
    return text;
}

} // namespace navrel
