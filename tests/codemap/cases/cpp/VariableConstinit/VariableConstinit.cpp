constinit int a = 1;
inline constexpr double b = 2;
thread_local int c;
