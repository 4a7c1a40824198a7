#pragma once

#include "support/core/Assertion.h"

namespace navrel {

/// Whether this is the thread on which the program was started. Any thread.
bool isMainThread();

} // namespace navrel

/// Stops the program where a class that is for the main thread alone is entered on another one: its
/// state has no lock, and would be corrupted sooner or later. In release builds too; it costs a
/// comparison.
#define NAVREL_ASSERT_MAIN_THREAD() NAVREL_ASSERT_AS(::navrel::isMainThread(), "on the main thread")
