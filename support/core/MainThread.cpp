#include "support/core/MainThread.h"

#include <thread>

namespace navrel {

namespace {

// Set before `main`, on the thread that calls it.
const std::thread::id kMainThread = std::this_thread::get_id();

} // namespace

bool isMainThread() {
    return std::this_thread::get_id() == kMainThread;
}

} // namespace navrel
