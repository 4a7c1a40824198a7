#pragma once

#include "project/Editor.h"
#include "tests/WaitUntil.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>

namespace navrel {

/// Makes a request of an editor and runs the event loop until the editor says how it ended, on
/// whichever thread. `request` gets the observer to pass on. A request that does not end is a
/// failure.
template <typename Request>
EditorOutcome awaitOutcome(Request request) {
    const auto promise = std::make_shared<std::promise<EditorOutcome>>();
    std::future<EditorOutcome> outcome = promise->get_future();
    request([promise](const EditorOutcome& ended) { promise->set_value(ended); });
    const bool hasEnded = waitUntil([&outcome] {
        return outcome.wait_for(std::chrono::seconds::zero()) == std::future_status::ready;
    });
    EXPECT_TRUE(hasEnded) << "it never said how it ended";
    return hasEnded ? outcome.get() : EditorOutcome();
}

} // namespace navrel
