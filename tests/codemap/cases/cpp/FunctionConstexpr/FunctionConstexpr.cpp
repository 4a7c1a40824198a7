constexpr int run(int a) noexcept { return a; }
static constexpr inline bool isOdd(int a) { return a & 1; }
