#pragma once

namespace navrel {

/// Logs a broken invariant (the condition's text, function, file and line), then aborts the
/// program. Any thread.
[[noreturn]] void assertionFailed(const char* condition, const char* function, const char* file,
                                  int line);

} // namespace navrel

/// Aborts the program unless the condition holds, in release builds too: going on would mean
/// working on wrong state. For invariants of the program, never for what comes from outside.
#define NAVREL_ASSERT(condition) NAVREL_ASSERT_AS(condition, #condition)

/// As NAVREL_ASSERT, with `text` in the log in place of the condition.
#define NAVREL_ASSERT_AS(condition, text)                                                          \
    ((condition) ? static_cast<void>(0)                                                            \
                 : ::navrel::assertionFailed(text, __func__, __FILE__, __LINE__))
