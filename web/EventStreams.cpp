#include "web/EventStreams.h"

#include <algorithm>
#include <iterator>

namespace navrel {

std::vector<EventStream*> EventStreams::of(int device) const {
    std::vector<EventStream*> found;
    std::copy_if(streams_.begin(), streams_.end(), std::back_inserter(found),
                 [device](const EventStream* stream) { return stream->device() == device; });
    return found;
}

void EventStreams::add(EventStream& stream, std::size_t limit) {
    const auto others = of(stream.device());
    streams_.push_back(&stream);
    if (stream.device() != kOwner && others.size() >= limit) {
        others.front()->end();
    }
}

void EventStreams::remove(EventStream& stream) {
    std::erase(streams_, &stream);
}

void EventStreams::deliverToAll(const std::string& event) const {
    for (EventStream* stream : streams_) {
        stream->deliver(event);
    }
}

void EventStreams::deliverTo(int device, const std::string& event) const {
    for (EventStream* stream : of(device)) {
        stream->deliver(event);
    }
}

void EventStreams::endAllOf(int device) {
    for (EventStream* stream : of(device)) {
        stream->end();
    }
}

} // namespace navrel
