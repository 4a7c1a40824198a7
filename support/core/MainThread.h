#pragma once

#include "support/core/Assertion.h"

namespace navrel {

/// Whether this is the thread on which the program was started. Any thread.
bool isMainThread();

} // namespace navrel

/// Aborts the program on any thread but the main one. For functions of classes that only the main
/// thread may use: their state has no lock, and would be corrupted sooner or later. In release
/// builds too; it costs one comparison.
#define NAVREL_ASSERT_MAIN_THREAD() NAVREL_ASSERT_AS(::navrel::isMainThread(), "on the main thread")
