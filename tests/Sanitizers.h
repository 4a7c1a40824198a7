#pragma once

namespace navrel {

#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kIsSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kIsSanitized = __has_feature(address_sanitizer);
#else
inline constexpr bool kIsSanitized = false;
#endif

/// A size of a load: the whole of it, or a part where sanitizers make each step many times slower.
/// They look for errors of memory; whether the program bears the load is tested without them.
template <typename Size>
constexpr Size loadOf(Size whole, Size part) {
    return kIsSanitized ? part : whole;
}

} // namespace navrel
