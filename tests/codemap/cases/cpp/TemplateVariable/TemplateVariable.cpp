template <typename T> constexpr T pi = T(3.14);
