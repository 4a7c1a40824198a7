template <typename T> requires Small<T> && (sizeof(T) > 1) void run(T) {}
template <typename T> void later(T) requires std::integral<T> { }
template <typename T> requires requires(T a) { a.x; } struct Needs { T a; };
