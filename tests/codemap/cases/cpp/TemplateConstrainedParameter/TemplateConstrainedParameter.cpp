template <std::integral T> T half(T a) { return a / 2; }
template <Number auto N> struct Fixed {};
void run(std::integral auto a) {}
