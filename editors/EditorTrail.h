#pragma once

#include "editors/RunningEditor.h"

#include <deque>
#include <optional>

namespace navrel {

/// The places that jumps came from, the last ones only. One thread at a time.
class EditorTrail {
public:
    /// More steps back than anybody takes.
    static constexpr std::size_t kMaximumPlaces = 50;

    /// Adds where the user was; a place without a file is no place to go back to.
    void add(const EditorPlace& place) {
        if (!place.path.startsWith('/')) {
            return;
        }
        places_.push_back(place);
        if (places_.size() > kMaximumPlaces) {
            places_.pop_front();
        }
    }

    /// Takes the place that was added last; nothing where there is none.
    std::optional<EditorPlace> takeLast() {
        if (places_.empty()) {
            return std::nullopt;
        }
        EditorPlace place = std::move(places_.back());
        places_.pop_back();
        return place;
    }

    /// Returns a place that was taken and that no editor went to. One that is refused for the
    /// second time is dropped: its file may be gone for good, and would be in the way of all places
    /// before it.
    void putBack(const EditorPlace& place, bool isRefused) {
        if (isRefused && refused_ == place) {
            refused_.reset();
            return;
        }
        refused_ = isRefused ? std::optional(place) : std::nullopt;
        add(place);
    }

private:
    std::deque<EditorPlace> places_;
    std::optional<EditorPlace> refused_; ///< the last one that was put back after a refusal
};

} // namespace navrel
