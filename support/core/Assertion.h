#pragma once

namespace navrel {

/// Reports a broken invariant (function, source file and the condition's text) on the log and
/// stops the program. Any thread.
[[noreturn]] void assertionFailed(const char* condition, const char* function, const char* file,
                                  int line);

} // namespace navrel

/// Holds the program to an invariant, in release builds too: a broken one means that what follows
/// would work on wrong state.
#define NAVREL_ASSERT(condition) NAVREL_ASSERT_AS(condition, #condition)

/// The same, reporting `text` where the condition as written here is not the one people know.
#define NAVREL_ASSERT_AS(condition, text)                                                          \
    ((condition) ? static_cast<void>(0)                                                            \
                 : ::navrel::assertionFailed(text, __func__, __FILE__, __LINE__))
