#pragma once

/// Which instructions this processor has. Any thread.
namespace navrel {

/// Whether it has all instructions for which the sources with "AVX2" in their names are compiled:
/// see CMakeLists.txt.
inline bool hasAVX2() {
#if defined(NAVREL_X86_SEARCHES)
    return __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("bmi") != 0 &&
           __builtin_cpu_supports("popcnt") != 0;
#else
    return false;
#endif
}

} // namespace navrel
