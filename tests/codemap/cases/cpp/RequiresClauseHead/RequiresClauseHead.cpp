template <typename T>
    requires std::integral<T> || std::floating_point<T>
T twice(T a) { return a + a; }
